#include "TextCommands.h"

#include "Commands.h"

#include <corlith/framework/Exceptions.h>
#include <corlith/text/LString.h>
#include <corlith/text/Tokenizer.h>

#include <iostream>
#include <istream>
#include <memory>
#include <ostream>

namespace corlith::cli {

namespace {

// Files written on Windows end their lines in CR LF; the carriage return is not part of
// the name.
void StripCarriageReturn(std::string& line) {
  if (!line.empty() && line.back() == '\r') line.pop_back();
}

}  // namespace

int RunFilter(const std::string& pattern, std::istream& in, std::ostream& out) {
  CString filter(pattern);
  bool any = false;
  std::string line;
  while (std::getline(in, line)) {
    StripCarriageReturn(line);
    CString target(line);
    int match = 0;
    try {
      match = CLString::IsSuitedForFilter(target, filter);
    } catch (const CInvalidArgException&) {
      match = 0;  // the line lacks a character the filter must look at
    }
    if (match) {
      out << line << '\n';
      any = true;
    }
  }
  return any ? 0 : 1;
}

int RunSplit(const std::string& delimiters, const SplitOptions& options, std::istream& in,
             std::ostream& out) {
  std::string line;
  while (std::getline(in, line)) {
    StripCarriageReturn(line);
    CStringArray tokens;
    XTokenString(line.c_str(), delimiters.c_str(), tokens, options.maxTokens, options.trim, options.escape,
                 options.quote, options.keepEmpty);
    for (INT_PTR i = 0; i < tokens.GetSize(); ++i) out << tokens[i].str() << '\n';
  }
  return 0;
}

void AddTextCommands(CLI::App& app, CommandContext& context) {
  auto pattern = std::make_shared<std::string>();
  auto* filter = app.add_subcommand("filter", "Print the lines of standard input that match a name filter");
  filter->add_option("PATTERN", *pattern, "Name filter, e.g. NET_[*], [*]_GND, R[N*]")->required();
  filter->callback([pattern, &context] { context.exitStatus = RunFilter(*pattern, std::cin, std::cout); });

  auto delimiters = std::make_shared<std::string>();
  auto options = std::make_shared<SplitOptions>();
  auto* split = app.add_subcommand("split", "Print the tokens of each line of standard input");
  split->add_option("DELIMITERS", *delimiters, "Delimiter characters (any one splits)")->required();
  split->add_option("--max", options->maxTokens, "At most N tokens per line (0: no limit)");
  split->add_flag("--trim", options->trim, "Remove white space around each token");
  split->add_flag("--escape", options->escape, "A backslash takes the next character literally");
  split->add_flag("--quote", options->quote, "Delimiters inside double quotes are text");
  split->add_flag("--keep-empty", options->keepEmpty, "Keep empty fields");
  split->callback([delimiters, options, &context] {
    context.exitStatus = RunSplit(*delimiters, *options, std::cin, std::cout);
  });
}

}  // namespace corlith::cli
