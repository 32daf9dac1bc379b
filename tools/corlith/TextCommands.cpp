#include "TextCommands.h"

#include <corlith/framework/Exceptions.h>
#include <corlith/text/LString.h>
#include <corlith/text/Tokenizer.h>

#include <istream>
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

}  // namespace corlith::cli
