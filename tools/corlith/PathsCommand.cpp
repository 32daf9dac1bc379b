// corlith paths: where a program in the tool's folder finds its installation, data,
// help and temporary folders, and whether tracing is on. The temporary folders are
// computed, not asked for: GetTesselTempFolderPath and GetSolverTempFolderPath create
// folders, and a look at the layout should leave the disk as it was. (With tracing on,
// the library's own look-ups append their entries to the trace logs as usual.)
#include "Commands.h"

#include <corlith/environment/Installation.h>
#include <corlith/environment/Utility.h>
#include <corlith/platform/Path.h>

#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <string>

namespace corlith::cli {

namespace {

constexpr const char* kConfigVariable = "ORVANE_K2_TESSEL_CONFIG_PATH";

struct Layout {
  bool installed = false;
  int edition = 0;
  std::string installationFile;
  bool installationFileFound = false;
  std::string executableFolder;
  std::string dataFolder;
  std::string helpFolder;
  std::string temporaryFolder;
  std::string solverTemporaryRoot;
  std::string configuration;
  bool tracing = false;
};

Layout Gather() {
  KTUtility& u = *KTUtility::GetInstance();
  Layout layout;
  layout.installed = u.GetInstalledLayout() != 0;
  layout.edition = u.GetEdition();
  layout.executableFolder = u.GetCurModuleDir().str();
  layout.installationFile = platform::CombinePath(layout.executableFolder, kInstallationFileName);
  layout.installationFileFound = ReadInstallationFileIn(CString(layout.executableFolder)).found;
  const CString data = u.GetDataPath();
  layout.dataFolder = data.str();
  layout.helpFolder = u.GetOrvaneHelpTesselDir().str();
  layout.temporaryFolder = TesselTempFolderOf(data).str();
  layout.solverTemporaryRoot = SolverTempRootOf(layout.installed ? data : u.GetCurModuleDir()).str();
  layout.configuration = u.GetConfigurationPath().str();
  layout.tracing = u.IsTracing();
  return layout;
}

const char* EditionName(int edition) { return edition == 1 ? "ecad" : "standard"; }

void PrintText(const Layout& l) {
  std::cout << "layout: " << (l.installed ? "installed" : "uninstalled") << '\n'
            << "edition: " << EditionName(l.edition) << '\n'
            << "installation file: " << l.installationFile << (l.installationFileFound ? "" : " (absent)")
            << '\n'
            << "executable folder: " << l.executableFolder << '\n'
            << "data folder: " << l.dataFolder << '\n'
            << "help folder: " << l.helpFolder << '\n'
            << "temporary folder: " << l.temporaryFolder << '\n'
            << "solver temporary folders: " << l.solverTemporaryRoot << platform::kNativeSeparator
            << "<process id>" << platform::kNativeSeparator << "<name>\n"
            << kConfigVariable << ": " << (l.configuration.empty() ? "(not set)" : l.configuration) << '\n'
            << "tracing: " << (l.tracing ? "on" : "off") << '\n';
}

void PrintJson(const Layout& l) {
  nlohmann::ordered_json out;
  out["layout"] = l.installed ? "installed" : "uninstalled";
  out["edition"] = EditionName(l.edition);
  out["installationFile"] = {{"path", l.installationFile}, {"found", l.installationFileFound}};
  out["executableFolder"] = l.executableFolder;
  out["dataFolder"] = l.dataFolder;
  out["helpFolder"] = l.helpFolder;
  out["temporaryFolder"] = l.temporaryFolder;
  out["solverTemporaryRoot"] = l.solverTemporaryRoot;
  out["configurationVariable"] = {{"name", kConfigVariable}, {"value", l.configuration}};
  out["tracing"] = l.tracing;
  // Paths are bytes, not necessarily UTF-8: replace what JSON cannot carry.
  std::cout << out.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace

void AddPathsCommand(CLI::App& app, CommandContext& context) {
  auto json = std::make_shared<bool>(false);
  auto* command = app.add_subcommand(
      "paths",
      "Print the installation layout and edition and the executable, data, help and temporary folders");
  command->add_flag("--json", *json, "Print them as JSON");
  command->callback([json, &context] {
    const Layout layout = Gather();
    if (*json) {
      PrintJson(layout);
    } else {
      PrintText(layout);
    }
    context.exitStatus = 0;
  });
}

}  // namespace corlith::cli
