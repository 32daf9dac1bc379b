// corlith autosave: the back-up files a host would find in its back-up folder at
// start-up (CAutoSaveManager::GetBackupFileNames with the given extension), with their
// numbers, modification times and sizes, newest first: the largest number first, as
// the manager numbers later back-ups higher; equal numbers by time, then by name. What
// a person runs to find the copy to recover after a crash. Nothing is changed on disk.
#include "Commands.h"

#include <corlith/platform/FileSystem.h>
#include <corlith/services/AutoSave.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace corlith::cli {

namespace {

struct AutoSaveOptions {
  std::string folder;
  std::string extension = ".bak";
  bool json = false;
};

struct Backup {
  std::string path;
  int number = 0;
  std::int64_t modified = 0;  // seconds since 1970
  std::uint64_t size = 0;
};

// Local time as "2025-01-31 14:05:09" (TZ decides, as for ls).
std::string LocalTime(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  if (!localtime_r(&time, &parts)) return "?";
  char text[32];
  return std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts) ? std::string(text) : std::string("?");
}

std::string Right(std::string text, std::size_t width) {
  if (text.size() < width) text.insert(0, width - text.size(), ' ');
  return text;
}

int RunAutoSave(const AutoSaveOptions& options, std::ostream& out, std::ostream& err) {
  platform::FileFacts folderFacts;
  if (platform::QueryFileFacts(options.folder, folderFacts) != 0 ||
      folderFacts.kind != platform::FileKind::Directory) {
    err << "corlith autosave: " << options.folder << " is not a folder\n";
    return 2;
  }
  CAutoSaveManager manager;
  manager.SetExtName(CString(options.extension));
  CStringArray names;
  manager.GetBackupFileNames(CString(options.folder), names);

  std::vector<Backup> backups;
  backups.reserve(static_cast<std::size_t>(names.GetSize()));
  for (const CString& name : names) {
    Backup backup{name.str(), manager.GetBackupNumber(name)};
    platform::FileFacts facts;
    if (platform::QueryFileFacts(backup.path, facts) == 0) {
      backup.modified = facts.modifiedTime;
      backup.size = facts.size;
    }
    backups.push_back(std::move(backup));
  }
  std::sort(backups.begin(), backups.end(), [](const Backup& a, const Backup& b) {
    return std::tie(b.number, b.modified, a.path) < std::tie(a.number, a.modified, b.path);
  });

  if (options.json) {
    nlohmann::ordered_json report;
    report["folder"] = options.folder;
    report["extension"] = options.extension;
    report["backups"] = nlohmann::ordered_json::array();
    for (const Backup& backup : backups) {
      report["backups"].push_back({{"path", backup.path},
                                   {"number", backup.number},
                                   {"modified", LocalTime(backup.modified)},
                                   {"modifiedUnix", backup.modified},
                                   {"size", backup.size}});
    }
    // Paths are bytes, not necessarily UTF-8: replace what JSON cannot carry.
    out << report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
    return 0;
  }
  if (backups.empty()) {
    out << "no back-up files (names holding \"" << options.extension << "\") in " << options.folder << '\n';
    return 0;
  }
  out << Right("number", 6) << "  " << std::string("modified").append(11, ' ') << "  " << Right("size", 10)
      << "  path\n";
  for (const Backup& backup : backups) {
    out << Right(std::to_string(backup.number), 6) << "  " << LocalTime(backup.modified) << "  "
        << Right(std::to_string(backup.size), 10) << "  " << backup.path << '\n';
  }
  return 0;
}

}  // namespace

void AddAutoSaveCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<AutoSaveOptions>();
  auto* command = app.add_subcommand(
      "autosave",
      "List the back-up files of an auto-save folder, newest first, with their numbers and times");
  command->add_option("FOLDER", options->folder, "The back-up folder")->required();
  command->add_option("--ext", options->extension, "The back-up extension, with its dot (default .bak)");
  command->add_flag("--json", options->json, "Print them as JSON");
  command->callback(
      [options, &context] { context.exitStatus = RunAutoSave(*options, std::cout, std::cerr); });
}

}  // namespace corlith::cli
