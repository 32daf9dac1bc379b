#include <corlith/environment/Installation.h>

#include <corlith/Version.h>
#include <corlith/framework/Ascii.h>
#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/text/Tokenizer.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace corlith {

namespace {

// An installer writes a few lines; anything beyond this is not an installation file.
constexpr std::size_t kInstallationFileLimit = std::size_t{64} * 1024;

constexpr std::string_view kWhiteSpace = " \t\r\v\f";

std::string_view TrimWhiteSpace(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(kWhiteSpace);
  return text.substr(first, last - first + 1);
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (ascii::ToLower(a[i]) != ascii::ToLower(b[i])) return false;
  }
  return true;
}

// Applies one line to `info`; false when the line is not of the file's form.
bool ApplyLine(std::string_view line, InstallationInfo& info) {
  if (line.find('\0') != std::string_view::npos) return false;
  const std::string_view content = TrimWhiteSpace(line);
  if (content.empty() || content.front() == '#' || content.front() == ';') return true;
  const std::size_t equals = content.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view key = TrimWhiteSpace(content.substr(0, equals));
  const std::string_view value = TrimWhiteSpace(content.substr(equals + 1));
  if (EqualsNoCase(key, "layout")) {
    if (EqualsNoCase(value, "installed")) {
      info.installedLayout = true;
    } else if (EqualsNoCase(value, "uninstalled")) {
      info.installedLayout = false;
    } else {
      return false;
    }
    return true;
  }
  if (EqualsNoCase(key, "edition")) {
    if (EqualsNoCase(value, "ecad")) {
      info.edition = 1;
    } else if (EqualsNoCase(value, "standard")) {
      info.edition = 0;
    } else {
      return false;
    }
    return true;
  }
  return false;
}

CString Native(std::string_view relative) { return CString(platform::ToNativeSeparators(relative)); }

}  // namespace

InstallationInfo ReadInstallationFile(std::string_view text) {
  InstallationInfo info;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    if (!ApplyLine(text.substr(start, end - start), info)) break;
    start = end + 1;
  }
  return info;
}

InstallationInfo ReadInstallationFileIn(const CString& folder) {
  if (folder.IsEmpty()) return {};
  const std::string path = platform::CombinePath(folder.view(), kInstallationFileName);
  // Only a regular file is read: opening a pipe of that name would wait for a writer.
  platform::FileFacts facts;
  if (platform::QueryFileFacts(path, facts) != 0 || facts.kind != platform::FileKind::Regular) return {};
  platform::FileHandle file;
  if (file.Open(path, platform::FileOpenOptions{}) != 0) return {};
  // One byte beyond the limit tells a file that ends there from a longer one.
  std::string text(kInstallationFileLimit + 1, '\0');
  std::size_t done = 0;
  if (file.Read(text.data(), text.size(), done) != 0) return {};
  text.resize(done);
  if (text.size() > kInstallationFileLimit) {
    const std::size_t lastLineEnd = text.rfind('\n', kInstallationFileLimit - 1);
    text.resize(lastLineEnd == std::string::npos ? 0 : lastLineEnd + 1);
  }
  std::string_view content = text;
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  InstallationInfo info = ReadInstallationFile(content);
  info.found = true;
  return info;
}

CString DataFolderVersionLabel(const CString& versionText) {
  CTokenizer tokenizer(versionText, ".");
  CStringArray pieces;
  tokenizer.GetTokenArray(pieces);
  if (pieces.GetSize() <= 2) return {};
  if (pieces[1] == "0") return pieces[0];
  return pieces[0] + "." + pieces[1];
}

CString DataSubFolder(int edition, const CString& label) {
  switch (edition) {
    case 0:
      return Native("Orvane/Tessel/") + label;
    case 1:
      return Native("Orvane/TesselForEcad/") + label;
    default:
      return {};
  }
}

CString UserDataSubFolder() { return Native("Orvane/Tessel"); }

CString ResolveDataFolder(const DataFolderState& state, KTUtility& utility) {
  if (state.installedLayout == 0) return utility.GetCurModuleDir();
  if (state.versionedDataFolder != 1) {
    return CString(platform::CombinePath(utility.GetAppDataFolderPath().view(), UserDataSubFolder().view()));
  }
  const CString subFolder = DataSubFolder(state.edition, DataFolderVersionLabel(kVersionText));
  if (!state.configurationPath.IsEmpty() &&
      utility.DoesFileExist(state.configurationPath, "KTUtility", __LINE__)) {
    return state.configurationPath;
  }
  return CString(platform::CombinePath(utility.GetProgramDataFolderPath().view(), subFolder.view()));
}

CString TesselTempFolderOf(const CString& dataPath) { return dataPath + Native("/Data/Temp"); }

CString SolverTempRootOf(const CString& base) { return base + Native("/Data/Analysis/Temp"); }

CString SolverTempFolderOf(const CString& base, int processId, const CString& name) {
  const CString separator(platform::kNativeSeparator);
  return SolverTempRootOf(base) + separator + CString(std::to_string(processId)) + separator + name;
}

}  // namespace corlith
