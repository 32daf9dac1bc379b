// corlith md5, sort, match and format: the digest of files, the natural order of lines,
// the combination filter over lines, and significant-digit formatting of numbers.
#include "Commands.h"

#include <corlith/text/MD5Main.h>
#include <corlith/text/PCTruncationDouble.h>
#include <corlith/text/StringEx.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace corlith::cli {

namespace {

// Files written on Windows end their lines in CR LF; the carriage return is not text.
void StripCarriageReturn(std::string& line) {
  if (!line.empty() && line.back() == '\r') line.pop_back();
}

int RunMd5(const std::vector<std::string>& files) {
  int status = 0;
  for (const std::string& path : files) {
    CString digest;
    if (CMD5Main::CalculateMD5(CString(path), digest)) {
      std::cout << digest.GetString() << "  " << path << '\n';
    } else {
      std::cerr << "corlith md5: " << path << ": cannot read\n";
      status = 1;
    }
  }
  return status;
}

int RunSort() {
  CStringArray lines;
  std::string line;
  while (std::getline(std::cin, line)) {
    StripCarriageReturn(line);
    lines.Add(CString(line));
  }
  CStringSorter::SortStringArray(lines);
  for (const CString& s : lines) std::cout << s.view() << '\n';
  return 0;
}

int RunMatch(const std::string& filter, bool rich) {
  const CString pattern(filter);
  bool any = false;
  std::string line;
  while (std::getline(std::cin, line)) {
    StripCarriageReturn(line);
    const CString target(line);
    const int match = rich ? CStringEx::DoesTargetStrMatchWithFilterStrCheckingCombination(target, pattern)
                           : CStringEx::DoesTargetStrMatchFilterStrCheckingCombination(target, pattern);
    if (match) {
      std::cout << line << '\n';
      any = true;
    }
  }
  return any ? 0 : 1;
}

struct FormatOptions {
  int digits = -1;
  int places = -1;
  std::string cut = "round";
  std::vector<std::string> values;
};

int RunFormat(const FormatOptions& o) {
  const int display = o.cut == "ceil" ? 0 : o.cut == "round" ? 1 : 2;
  const CPCTruncationDouble rule = o.digits >= 0 ? CPCTruncationDouble(1, display, o.digits, 0)
                                                 : CPCTruncationDouble(0, display, 3, o.places);
  int status = 0;
  for (const std::string& text : o.values) {
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0') {
      std::cerr << "corlith format: not a number: " << text << '\n';
      status = 1;
      continue;
    }
    std::cout << rule.ExpressFloatingPointValue(v).GetString() << '\n';
  }
  return status;
}

}  // namespace

void AddStringCommands(CLI::App& app, CommandContext& context) {
  auto files = std::make_shared<std::vector<std::string>>();
  auto* md5 = app.add_subcommand("md5", "Print the MD5 digest of each file, as md5sum does");
  md5->add_option("FILE", *files, "Files to hash")->required();
  md5->callback([files, &context] { context.exitStatus = RunMd5(*files); });

  auto* sort = app.add_subcommand("sort", "Print the lines of standard input in natural order");
  sort->callback([&context] { context.exitStatus = RunSort(); });

  auto filter = std::make_shared<std::string>();
  auto rich = std::make_shared<bool>(false);
  auto* match =
      app.add_subcommand("match", "Print the lines of standard input that match a combination filter");
  match->add_option("FILTER", *filter, "Bracketed terms joined by & , ~, e.g. [R#],[C*]~[C1?]")->required();
  match->add_flag("--rich", *rich, "Case-insensitive terms with ' escapes and <m..n> ranges");
  match->callback([filter, rich, &context] { context.exitStatus = RunMatch(*filter, *rich); });

  auto options = std::make_shared<FormatOptions>();
  auto* format = app.add_subcommand("format", "Print each value cut to significant digits or decimal places");
  auto* digits =
      format->add_option("--digits", options->digits, "Significant digits")->check(CLI::Range(0, 340));
  auto* places = format->add_option("--places", options->places, "Decimal places")->check(CLI::Range(0, 340));
  digits->excludes(places);
  format->add_option("--cut", options->cut, "ceil, round (halves away from zero) or floor")
      ->check(CLI::IsMember({"ceil", "round", "floor"}));
  format->add_option("VALUE", options->values, "Numbers")->required();
  format->callback([options, &context] {
    if (options->digits < 0 && options->places < 0) {
      std::cerr << "corlith format: give --digits N or --places N\n";
      context.exitStatus = 2;
      return;
    }
    context.exitStatus = RunFormat(*options);
  });
}

}  // namespace corlith::cli
