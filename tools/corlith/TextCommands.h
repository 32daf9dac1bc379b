// The text subcommands of the corlith tool: `filter` keeps the lines of a stream that
// match a name filter, `split` prints the tokens of each line, one per line.
#pragma once

#include <iosfwd>
#include <string>

namespace corlith::cli {

struct SplitOptions {
  int maxTokens = 0;  ///< per line; 0 for no limit
  bool trim = false;
  bool escape = false;
  bool quote = false;
  bool keepEmpty = false;
};

/// Writes every input line that matches `pattern`; returns 0 when one did, 1 otherwise.
/// A line for which the filter needs a character the line lacks does not match.
int RunFilter(const std::string& pattern, std::istream& in, std::ostream& out);

/// Splits every input line with XTokenString and writes one token per line; returns 0.
int RunSplit(const std::string& delimiters, const SplitOptions& options, std::istream& in, std::ostream& out);

}  // namespace corlith::cli
