// corlith diag: what a host's diagnostics would report about this process and machine:
// the memory report as the library writes it, the account test (with the user's name),
// whether the debug marker is beside the tool, how many scalable font families there
// are, and whether a spreadsheet application is installed. Nothing is changed.
#include "Commands.h"

#include <corlith/environment/Utility.h>
#include <corlith/platform/Diagnostics.h>
#include <corlith/platform/Path.h>

#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace corlith::cli {

namespace {

constexpr const char* kDebugMarker = "DEBUG_FILE";

struct Diagnosis {
  std::vector<std::string> memoryReport;
  int accountType = -1;
  std::string userName;
  std::string loginName;
  std::string debugMarkerPath;
  bool debugMarker = false;
  std::size_t fontFamilies = 0;
  int spreadsheetApplication = 0;
};

Diagnosis Gather() {
  KTUtility& u = *KTUtility::GetInstance();
  Diagnosis d;
  CStringArray lines;
  u.GetMemoryInfoByCurrentProcess(lines);
  for (const CString& line : lines) d.memoryReport.push_back(line.str());
  d.accountType = u.GetUserAccountType();
  platform::UserAccount account;
  if (platform::CurrentUserAccount(account) == 0) {
    d.userName = account.name;
    d.loginName = account.loginName;
  }
  d.debugMarkerPath = platform::CombinePath(u.GetCurModuleDir().view(), kDebugMarker);
  d.debugMarker = u.IsExistDebugFile(CString()) == 1;
  CStringArray families;
  u.GetWindowsTrueTypeFontNames(families);
  d.fontFamilies = static_cast<std::size_t>(families.GetSize());
  d.spreadsheetApplication = u.IsMSExcelInstalled();
  return d;
}

void PrintText(const Diagnosis& d) {
  // The report's lines as the library formats them: each begins or ends its own line.
  for (const std::string& line : d.memoryReport) std::cout << line;
  std::cout << "account: " << d.accountType;
  if (!d.userName.empty()) std::cout << " (" << d.userName << ')';
  std::cout << '\n'
            << "login name: " << (d.loginName.empty() ? "(no login session)" : d.loginName) << '\n'
            << "debug marker: " << d.debugMarkerPath << (d.debugMarker ? " (present)" : " (absent)") << '\n'
            << "font families: " << d.fontFamilies << '\n'
            << "spreadsheet application: " << d.spreadsheetApplication << '\n';
}

void PrintJson(const Diagnosis& d) {
  nlohmann::ordered_json out;
  out["memoryReport"] = d.memoryReport;
  out["accountType"] = d.accountType;
  out["userName"] = d.userName;
  out["loginName"] = d.loginName;
  out["debugMarker"] = {{"path", d.debugMarkerPath}, {"present", d.debugMarker}};
  out["fontFamilies"] = d.fontFamilies;
  out["spreadsheetApplication"] = d.spreadsheetApplication;
  // Paths and names are bytes, not necessarily UTF-8: replace what JSON cannot carry.
  std::cout << out.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace

void AddDiagCommand(CLI::App& app, CommandContext& context) {
  auto json = std::make_shared<bool>(false);
  auto* command = app.add_subcommand(
      "diag",
      "Print the memory report, the account test, the debug marker, the number of font families and "
      "whether a spreadsheet application is installed");
  command->add_flag("--json", *json, "Print them as JSON");
  command->callback([json, &context] {
    const Diagnosis diagnosis = Gather();
    if (*json) {
      PrintJson(diagnosis);
    } else {
      PrintText(diagnosis);
    }
    context.exitStatus = 0;
  });
}

}  // namespace corlith::cli
