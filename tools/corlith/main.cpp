// The corlith command-line tool: the library's front door for people.
//   corlith --version
//   corlith self-check [--json] [--scratch FOLDER]
//   corlith filter PATTERN            < lines
//   corlith split DELIMITERS [--max N] [--trim] [--escape] [--quote] [--keep-empty] < lines
#include "SelfCheck.h"
#include "TextCommands.h"

#include <corlith/Corlith.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>

namespace {

int RunSelfCheckCommand(bool json, const std::string& scratch) {
  const auto results = corlith::cli::RunSelfCheck(scratch);
  int passed = 0;
  for (const auto& r : results) passed += r.passed ? 1 : 0;
  const int failed = static_cast<int>(results.size()) - passed;
  if (json) {
    nlohmann::json out;
    out["version"] = corlith::kVersionText;
    out["passed"] = passed;
    out["failed"] = failed;
    for (const auto& r : results) {
      nlohmann::json check{{"name", r.name}, {"passed", r.passed}};
      if (!r.passed) check["detail"] = r.detail;
      out["checks"].push_back(std::move(check));
    }
    std::cout << out.dump(2) << '\n';
  } else {
    std::cout << "Corlith " << corlith::kVersionText << " archive self-check\n";
    for (const auto& r : results) {
      std::cout << (r.passed ? "  ok      " : "  FAILED  ") << r.name;
      if (!r.passed) std::cout << ": " << r.detail;
      std::cout << '\n';
    }
    std::cout << "self-check: " << passed << " passed, " << failed << " failed\n";
  }
  return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Corlith, the foundation library of the PCB checking applications"};
  app.set_version_flag("--version", std::string("corlith ") + corlith::kVersionText);
  app.require_subcommand(0, 1);

  bool json = false;
  std::string scratch = std::filesystem::temp_directory_path().string();
  auto* selfCheck =
      app.add_subcommand("self-check", "Check the archive layer against the original's byte forms");
  selfCheck->add_flag("--json", json, "Print the results as JSON");
  selfCheck->add_option("--scratch", scratch, "Folder for the temporary archive file")
      ->check(CLI::ExistingDirectory);

  std::string pattern;
  auto* filter = app.add_subcommand("filter", "Print the lines of standard input that match a name filter");
  filter->add_option("PATTERN", pattern, "Name filter, e.g. NET_[*], [*]_GND, R[N*]")->required();

  std::string delimiters;
  corlith::cli::SplitOptions split;
  auto* splitCommand = app.add_subcommand("split", "Print the tokens of each line of standard input");
  splitCommand->add_option("DELIMITERS", delimiters, "Delimiter characters (any one splits)")->required();
  splitCommand->add_option("--max", split.maxTokens, "At most N tokens per line (0: no limit)");
  splitCommand->add_flag("--trim", split.trim, "Remove white space around each token");
  splitCommand->add_flag("--escape", split.escape, "A backslash takes the next character literally");
  splitCommand->add_flag("--quote", split.quote, "Delimiters inside double quotes are text");
  splitCommand->add_flag("--keep-empty", split.keepEmpty, "Keep empty fields");

  CLI11_PARSE(app, argc, argv);

  try {
    if (selfCheck->parsed()) return RunSelfCheckCommand(json, scratch);
    if (filter->parsed()) return corlith::cli::RunFilter(pattern, std::cin, std::cout);
    if (splitCommand->parsed()) return corlith::cli::RunSplit(delimiters, split, std::cin, std::cout);
  } catch (const std::exception& e) {
    std::cerr << "corlith: " << e.what() << '\n';
    return 2;
  }
  std::cout << app.help();
  return 0;
}
