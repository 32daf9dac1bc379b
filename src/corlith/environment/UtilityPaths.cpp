#include <corlith/environment/Installation.h>
#include <corlith/environment/Utility.h>

#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>

#include <exception>
#include <string>
#include <string_view>

namespace {

namespace platform = corlith::platform;

// A guarded join up to this many characters together goes through the platform's join.
constexpr int kCombineLimit = 256;

// The folder part of a full file path: everything before its last separator.
CString FolderOf(std::string_view path) {
  const std::size_t last = platform::FindLastSeparator(path);
  return last == std::string_view::npos ? CString() : CString(path.substr(0, last));
}

std::string_view WithoutLeadingSeparators(std::string_view text) {
  while (!text.empty() && platform::IsSeparator(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view WithoutTrailingSeparators(std::string_view text) {
  while (!text.empty() && platform::IsSeparator(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

KTUtility* KTUtility::GetInstance() {
  // Deliberately never destroyed: hosts may still use it from their own static
  // destructors. The local static makes the first creation safe from any thread.
  static KTUtility* const instance = [] {
    auto* utility = new KTUtility();
    utility->Init();
    return utility;
  }();
  return instance;
}

KTUtility::KTUtility() : m_configurationPath(GetEnvironmentValue("ORVANE_K2_TESSEL_CONFIG_PATH")) {}

void KTUtility::Init() {
  const corlith::InstallationInfo installation = corlith::ReadInstallationFileIn(GetCurModuleDir());
  m_installedLayout = installation.installedLayout ? 1 : 0;
  m_edition = installation.edition == 1 ? 1 : 0;
  m_compareMatchCase = 1;
  m_versionedDataFolder = 1;
}

int KTUtility::GetProcessID() { return platform::CurrentProcessId(); }

CString KTUtility::GetEnvironmentValue(const CString& name) {
  // A name with a NUL byte or "=" names no variable (not the text before the NUL).
  std::string value;
  if (name.view().find('\0') != std::string_view::npos ||
      !platform::GetEnvironmentVariable(name.GetString(), value)) {
    return {};
  }
  return CString(std::move(value));
}

CString KTUtility::ExpandEnvironmentStringsA(const CString& text) {
  const std::string_view in = text.view();
  std::string out;
  out.reserve(in.size());
  std::size_t i = 0;
  while (i < in.size()) {
    const std::size_t open = in.find('%', i);
    if (open == std::string_view::npos) {
      out.append(in.substr(i));
      break;
    }
    out.append(in.substr(i, open - i));
    const std::size_t close = in.find('%', open + 1);
    if (close == std::string_view::npos) {
      out.append(in.substr(open));
      break;
    }
    const std::string_view name = in.substr(open + 1, close - open - 1);
    std::string value;
    const bool known = !name.empty() &&
                       name.find_first_of(std::string_view("=\0", 2)) == std::string_view::npos &&
                       platform::GetEnvironmentVariable(std::string(name).c_str(), value);
    if (known) {
      out.append(value);
      i = close + 1;
    } else {
      // An unknown name stays as written, and its closing "%" may open the next reference.
      out.append(in.substr(open, close - open));
      i = close;
    }
  }
  return CString(std::move(out));
}

CString KTUtility::GetCurModuleDir() { return FolderOf(platform::ExecutablePath()); }

CString KTUtility::GetModuleDir(const CString& moduleName) {
  return FolderOf(platform::LoadedModulePath(moduleName.view()));
}

CString KTUtility::GetParentDir(const CString& path) {
  std::string_view rest = path.view();
  while (true) {
    const std::size_t last = platform::FindLastSeparator(rest);
    if (last == std::string_view::npos) return {};
    const bool wasLast = last + 1 == rest.size();
    rest = rest.substr(0, last);
    if (!wasLast) return CString(rest);
  }
}

int KTUtility::IsWritingPermission(const CString& path) { return platform::IsWritable(path.view()) ? 1 : 0; }

CString KTUtility::GetAppDataFolderPath() { return CString(platform::UserDataFolder()); }

CString KTUtility::GetProgramDataFolderPath() { return CString(platform::MachineDataFolder()); }

CString KTUtility::GetDataPath() {
  return corlith::ResolveDataFolder(
      {m_installedLayout, m_versionedDataFolder, m_edition, m_configurationPath}, *this);
}

CString KTUtility::GetOrvaneHelpTesselDir() {
  return KTPathCombine(GetParentDir(GetCurModuleDir()), CString(platform::ToNativeSeparators("help/Tessel")),
                       "KTUtility", __LINE__);
}

CString KTUtility::GetTesselTempFolderPath() {
  CString path = corlith::TesselTempFolderOf(GetDataPath());
  if (!DoesFileExist(path, "KTUtility", __LINE__)) platform::MakeFolder(path.view());
  return path;
}

CString KTUtility::GetSolverTempFolderPath(const CString& name) {
  const CString base = m_installedLayout != 0 ? GetDataPath() : GetCurModuleDir();
  CString path = corlith::SolverTempFolderOf(base, GetProcessID(), name);
  MakeDirectory(path);
  return path;
}

CString KTUtility::KTPathCombine(const CString& dir, const CString& file, const char* sourceFile, int line) {
  if (static_cast<long long>(dir.GetLength()) + file.GetLength() <= kCombineLimit) {
    CString joined(platform::CombinePath(dir.view(), WithoutLeadingSeparators(file.view())));
    Trace("KTPathCombine", joined, sourceFile, line);
    return joined;
  }
  // Beyond the limit the platform's join would have failed: plain concatenation, untraced.
  std::string joined(WithoutTrailingSeparators(dir.view()));
  joined += platform::kNativeSeparator;
  joined += WithoutLeadingSeparators(file.view());
  return CString(std::move(joined));
}

bool KTUtility::DoesFileExist(const CString& path, const char* sourceFile, int line) {
  Trace("DoesFileOrDirExist", path, sourceFile, line);
  std::string_view stripped = WithoutTrailingSeparators(path.view());
  // POSIX has no drives, so "C:" is an ordinary relative name here. Its counterpart of a
  // bare drive tested as its root is a path of separators only, tested as "/".
  if (stripped.empty() && !path.IsEmpty()) stripped = "/";
  if (stripped.empty()) return false;
  platform::FileFacts facts;
  if (platform::QueryFileFacts(stripped, facts) != 0) return false;
  return facts.kind == platform::FileKind::Regular || facts.kind == platform::FileKind::Directory;
}

int KTUtility::ForceDirectories(const CString& path) {
  try {
    const std::string_view text = path.view();
    for (std::size_t i = 1; i < text.size(); ++i) {
      if (platform::IsSeparator(text[i]) && text[i - 1] != ':') platform::MakeFolder(text.substr(0, i));
    }
    if (!text.empty()) platform::MakeFolder(text);
  } catch (const std::exception&) {
    return 0;
  }
  return 1;
}

void KTUtility::MakeDirectory(const CString& path) { ForceDirectories(path); }
