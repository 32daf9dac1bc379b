// KTUtility: the hidden batch file with its time limit, waiting with the user interface
// alive, the tool locators, and the splitting and running of tool command lines.
#include <corlith/environment/ToolCommandLine.h>
#include <corlith/environment/Utility.h>

#include <corlith/framework/DesktopHooks.h>
#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/platform/Process.h>

#include <chrono>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

namespace platform = corlith::platform;

// The platform's names of the tools the original shipped as "tar.exe", "gzip.exe",
// "7zr.exe" and "TesselZip.exe".
constexpr const char* kTarName = "tar";
constexpr const char* kGzipName = "gzip";
constexpr const char* k7zName = "7zr";
constexpr const char* kTesselZipName = "TesselZip";

// The shell that runs a batch file, as the shell's "open" ran a ".bat" on the original.
constexpr const char* kShell = "/bin/sh";

// The longest time limit waited for as such; beyond it the wait has no limit.
constexpr double kLongestLimitSeconds = 365.0 * 24 * 3600;

bool HasNul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

// An executable regular file (links followed).
bool IsProgram(const std::string& path) {
  platform::FileFacts facts;
  return platform::QueryFileFacts(path, facts) == 0 && facts.kind == platform::FileKind::Regular &&
         (facts.mode & 0111) != 0;
}

// The name found on PATH as Spawn would find it: no PATH means "/bin:/usr/bin", empty
// entries are skipped. Empty when it is nowhere.
CString FindOnPath(std::string_view name) {
  std::string path;
  if (!platform::GetEnvironmentVariable("PATH", path)) path = "/bin:/usr/bin";
  std::size_t start = 0;
  while (start <= path.size()) {
    std::size_t end = path.find(':', start);
    if (end == std::string::npos) end = path.size();
    const std::string_view folder = std::string_view(path).substr(start, end - start);
    start = end + 1;
    if (folder.empty()) continue;
    std::string candidate(folder);
    if (candidate.back() != '/') candidate += '/';
    candidate += name;
    if (IsProgram(candidate)) return CString(std::move(candidate));
  }
  return {};
}

CString NativeJoin(const CString& folder, std::string_view name) {
  std::string joined(folder.view());
  joined += platform::kNativeSeparator;
  joined += name;
  return CString(std::move(joined));
}

CString LocateTool(KTUtility& utility, const char* name, const char* fallbackName) {
  const CString executableFolder = utility.GetCurModuleDir();
  CString beside = NativeJoin(executableFolder, name);
  if (utility.DoesFileExist(beside, "KTUtility", __LINE__)) return beside;
  CString fallback = NativeJoin(NativeJoin(utility.GetParentDir(executableFolder), "Corlith"), fallbackName);
  if (utility.DoesFileExist(fallback, "KTUtility", __LINE__)) return fallback;
  CString onPath = FindOnPath(name);
  return onPath.IsEmpty() ? fallback : onPath;
}

// The wait for a limit of `timeoutHours`: none for 0, a negative value or not a number.
std::chrono::milliseconds TimeLimit(double timeoutHours) {
  const double seconds = timeoutHours * 3600.0;
  if (!(seconds > 0.0) || seconds > kLongestLimitSeconds) return std::chrono::milliseconds::max();
  return std::chrono::milliseconds(static_cast<long long>(std::ceil(seconds * 1000.0)));
}

}  // namespace

// --- splitting and running command lines --------------------------------------------

std::vector<std::string> corlith::SplitToolCommandLine(std::string_view commandLine) {
  std::vector<std::string> arguments;
  std::string current;
  bool inArgument = false;
  bool quoted = false;
  std::size_t i = 0;
  while (i < commandLine.size()) {
    const char c = commandLine[i];
    if ((c == ' ' || c == '\t') && !quoted) {
      if (inArgument) arguments.push_back(std::move(current));
      current.clear();
      inArgument = false;
      ++i;
      continue;
    }
    inArgument = true;
    if (c == '\\') {
      std::size_t run = 0;
      while (i < commandLine.size() && commandLine[i] == '\\') {
        ++run;
        ++i;
      }
      if (i < commandLine.size() && commandLine[i] == '"') {
        current.append(run / 2, '\\');
        if (run % 2 == 1) {
          current += '"';
          ++i;
        }
        // An even run leaves the quote to act on the next round.
      } else {
        current.append(run, '\\');
      }
      continue;
    }
    if (c == '"') {
      quoted = !quoted;
    } else {
      current += c;
    }
    ++i;
  }
  if (inArgument) arguments.push_back(std::move(current));
  return arguments;
}

std::optional<corlith::platform::ExitStatus> corlith::RunTool(std::string_view program,
                                                              std::string_view commandLine,
                                                              std::string_view workingFolder) {
  if (program.empty() || HasNul(program) || HasNul(commandLine) || HasNul(workingFolder)) return std::nullopt;
  platform::SpawnOptions options;
  options.program = platform::ToNativeSeparators(program);
  options.arguments = SplitToolCommandLine(commandLine);
  if (!workingFolder.empty()) options.workingFolder = platform::ToNativeSeparators(workingFolder);
  platform::Process process;
  if (platform::Spawn(options, process) != 0) return std::nullopt;
  return process.Wait();
}

// --- the batch file -----------------------------------------------------------------

int KTUtility::ShellExecuteHideMode(const CString& commandLine, const CString& batchFile, BOOL deleteBatch,
                                    double timeoutHours) {
  if (batchFile.IsEmpty() || HasNul(batchFile.view())) return 0;
  const std::string batch = platform::ToNativeSeparators(batchFile.view());
  {
    const std::string_view command = commandLine.view();
    std::string line;
    if (command.find(' ') != std::string_view::npos && !command.starts_with('"')) {
      line = "\"" + std::string(command) + "\"\n";
    } else {
      line = std::string(command) + "\n";
    }
    platform::FileHandle file;
    platform::FileOpenOptions options;
    options.access = platform::FileAccess::Write;
    options.create = true;
    options.truncate = true;
    if (file.Open(batch, options) != 0) return 0;
    if (file.Write(line.data(), line.size()) != 0 || file.Close() != 0) return 0;
  }
  if (!DoesFileExist(batchFile, "KTUtility", __LINE__)) return 0;

  platform::SpawnOptions options;
  options.program = kShell;
  options.arguments = {"--", batch};
  // Waits on the child's handle (RunHidden: poll on a pidfd), so the thread sleeps, and a
  // time-out ends the script's whole process group, not the shell alone.
  const platform::RunResult result = platform::RunHidden(options, TimeLimit(timeoutHours));
  if (result.error != 0) return 0;
  if (deleteBatch) platform::RemoveFilePath(batch);
  return result.timedOut ? 2 : 1;
}

void KTUtility::Wait(DWORD milliseconds) { corlith::GetDesktopHooks()->Wait(milliseconds); }

void KTUtility::ProcessWindowMessage() { corlith::GetDesktopHooks()->ProcessWindowMessage(); }

// --- the tool locators --------------------------------------------------------------

CString KTUtility::GetTarExeFilePathUtility() { return LocateTool(*this, kTarName, kTarName); }

CString KTUtility::GetGZipExeFilePathUtility() { return LocateTool(*this, kGzipName, kGzipName); }

CString KTUtility::Get7zExeFilePathUtility() { return LocateTool(*this, k7zName, k7zName); }

CString KTUtility::GetTesselZipExeFilePathUtility() { return LocateTool(*this, kTesselZipName, k7zName); }
