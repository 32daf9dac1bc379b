#include <corlith/environment/LPath.h>

#include <corlith/platform/Path.h>

#include <string_view>

namespace {

namespace platform = corlith::platform;

CString FolderOf(std::string_view path) {
  const std::size_t last = platform::FindLastSeparator(path);
  return last == std::string_view::npos ? CString() : CString(path.substr(0, last));
}

}  // namespace

CString CLPath::GetParentPath() const { return GetParentPath(m_strPath); }

CString CLPath::GetParentPath(const CString& path) {
  std::string_view rest = path.view();
  for (;;) {
    const std::size_t last = platform::FindLastSeparator(rest);
    if (last == std::string_view::npos) return {};
    const bool wasLast = last + 1 == rest.size();
    rest = rest.substr(0, last);
    if (!wasLast) return CString(rest);
  }
}

CString CLPath::GetCurModuleDir() { return FolderOf(platform::ExecutablePath()); }

CString CLPath::GetModuleDir(const CString& moduleName) {
  return FolderOf(platform::LoadedModulePath(moduleName.view()));
}

int CLPath::IsAbsolutePath(const CString& path) {
  CString text(path);
  text.MakeUpper();
  text.Trim();
  if (text.IsEmpty()) return 0;
  if (text.Find(':') == 1) return 1;
  const std::string_view view = text.view();
  if (view.size() >= 2 && platform::IsSeparator(view[0]) && platform::IsSeparator(view[1])) return 1;
  return platform::IsAbsolutePath(view) ? 1 : 0;
}
