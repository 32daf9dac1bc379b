#include <corlith/framework/Format.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/Profile.h>
#include <corlith/framework/RecentFileList.h>
#include <corlith/platform/Path.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

std::string AbsolutePath(std::string_view path) {
  if (corlith::platform::IsAbsolutePath(path)) return corlith::platform::CombinePath("", path);
  std::error_code error;
  const std::filesystem::path current = std::filesystem::current_path(error);
  return corlith::platform::CombinePath(error ? std::string() : current.string(), path);
}

// "<first part>/.../<file name>" when it fits in maxLength; "" when it does not.
std::string ElidedName(std::string_view path, std::size_t maxLength) {
  const std::size_t last = corlith::platform::FindLastSeparator(path);
  if (last == std::string_view::npos) return {};
  // The first part runs to the first separator after any leading ones (the root).
  std::size_t start = 0;
  while (start < path.size() && corlith::platform::IsSeparator(path[start])) ++start;
  std::size_t first = start;
  while (first < path.size() && !corlith::platform::IsSeparator(path[first])) ++first;
  if (first >= last) return {};
  const char separator = path[last];
  std::string elided(path.substr(0, first + 1));
  elided += "...";
  elided += separator;
  elided += path.substr(last + 1);
  return elided.size() <= maxLength ? elided : std::string();
}

}  // namespace

CRecentFileList::CRecentFileList(UINT nStart, LPCTSTR lpszSection, LPCTSTR lpszEntryFormat, int nSize,
                                 int nMaxDispLen)
    : m_arrNames(static_cast<std::size_t>(std::clamp(nSize, 0, kRecentFileListMaxSize))),
      m_strSectionName(lpszSection),
      m_strEntryFormat(lpszEntryFormat),
      m_nStart(nStart),
      m_nMaxDisplayLength(nMaxDispLen) {}

CString& CRecentFileList::operator[](int nIndex) {
  if (nIndex < 0 || nIndex >= GetSize()) AfxThrowInvalidArgException();
  return m_arrNames[static_cast<std::size_t>(nIndex)];
}

const CString& CRecentFileList::operator[](int nIndex) const {
  if (nIndex < 0 || nIndex >= GetSize()) AfxThrowInvalidArgException();
  return m_arrNames[static_cast<std::size_t>(nIndex)];
}

void CRecentFileList::Add(LPCTSTR lpszPathName) {
  if (lpszPathName == nullptr || *lpszPathName == '\0' || m_arrNames.empty()) return;
  CString path(AbsolutePath(lpszPathName));
  // The slot the path comes from: its own among all but the last, else the last (whose
  // path drops out).
  const auto last = m_arrNames.end() - 1;
  const auto found = std::find(m_arrNames.begin(), last, path);
  std::move_backward(m_arrNames.begin(), found, found + 1);
  m_arrNames.front() = std::move(path);
}

void CRecentFileList::Remove(int nIndex) {
  if (nIndex < 0 || nIndex >= GetSize()) return;
  m_arrNames.erase(m_arrNames.begin() + nIndex);
  m_arrNames.emplace_back();
}

void CRecentFileList::ReadList() {
  const auto profile = corlith::GetApplicationProfile();
  for (std::size_t i = 0; i < m_arrNames.size(); ++i) {
    const std::string entry = corlith::FormatText(m_strEntryFormat.view(), static_cast<int>(i + 1));
    m_arrNames[i] = profile->GetProfileString(m_strSectionName, entry.c_str(), "");
  }
}

void CRecentFileList::WriteList() {
  const auto profile = corlith::GetApplicationProfile();
  profile->WriteProfileString(m_strSectionName, nullptr, nullptr);
  if (m_arrNames.empty() || m_arrNames.front().IsEmpty()) return;
  for (std::size_t i = 0; i < m_arrNames.size(); ++i) {
    if (m_arrNames[i].IsEmpty()) continue;
    const std::string entry = corlith::FormatText(m_strEntryFormat.view(), static_cast<int>(i + 1));
    profile->WriteProfileString(m_strSectionName, entry.c_str(), m_arrNames[i]);
  }
}

BOOL CRecentFileList::GetDisplayName(CString& strName, int nIndex, LPCTSTR lpszCurDir, int nCurDir,
                                     BOOL bAtLeastName) const {
  if (nIndex < 0 || nIndex >= GetSize() || m_arrNames[static_cast<std::size_t>(nIndex)].IsEmpty())
    return FALSE;
  std::string_view path = m_arrNames[static_cast<std::size_t>(nIndex)].view();
  if (lpszCurDir != nullptr && nCurDir > 0) {
    const std::string_view current(lpszCurDir, std::min<std::size_t>(static_cast<std::size_t>(nCurDir),
                                                                     std::string_view(lpszCurDir).size()));
    if (path.size() > current.size() && path.starts_with(current)) path.remove_prefix(current.size());
  }
  if (m_nMaxDisplayLength < 1 || path.size() <= static_cast<std::size_t>(m_nMaxDisplayLength)) {
    strName = CString(path);
    return TRUE;
  }
  std::string shown = ElidedName(path, static_cast<std::size_t>(m_nMaxDisplayLength));
  if (shown.empty()) {
    const std::size_t last = corlith::platform::FindLastSeparator(path);
    const std::string_view fileName = last == std::string_view::npos ? path : path.substr(last + 1);
    if (bAtLeastName || fileName.size() <= static_cast<std::size_t>(m_nMaxDisplayLength)) shown = fileName;
  }
  strName = CString(std::move(shown));
  return TRUE;
}

void CRecentFileList::UpdateMenu(CCmdUI* pCmdUI) {
  if (pCmdUI == nullptr) return;
  CMenu* menu = pCmdUI->m_pMenu;
  if (m_strOriginal.IsEmpty() && menu != nullptr) {
    menu->GetMenuString(pCmdUI->m_nIndex, m_strOriginal, MF_BYPOSITION);
  }
  if (m_arrNames.empty() || m_arrNames.front().IsEmpty()) {
    if (!m_strOriginal.IsEmpty()) pCmdUI->SetText(m_strOriginal);
    pCmdUI->Enable(FALSE);
    return;
  }
  if (menu == nullptr) return;

  const UINT anchor = pCmdUI->m_nIndex;
  const auto size = static_cast<UINT>(m_arrNames.size());
  for (;;) {
    const UINT id = menu->GetMenuItemID(static_cast<int>(anchor));
    if (id == 0xFFFFFFFF || id < m_nStart || id - m_nStart >= size) break;
    menu->DeleteMenu(anchor, MF_BYPOSITION);
  }

  std::error_code error;
  std::string current = std::filesystem::current_path(error).string();
  if (!current.empty() && !corlith::platform::IsSeparator(current.back())) {
    current += corlith::platform::kNativeSeparator;
  }
  UINT inserted = 0;
  for (UINT i = 0; i < size; ++i) {
    CString name;
    if (!GetDisplayName(name, static_cast<int>(i), current.c_str(), static_cast<int>(current.size()))) break;
    const UINT number = i + 1;
    std::string text = number < 10    ? corlith::FormatText("&%u ", number)
                       : number == 10 ? std::string("1&0 ")
                                      : corlith::FormatText("%u ", number);
    text += corlith::EscapeMenuText(name.view());
    menu->InsertMenu(anchor + inserted, MF_STRING | MF_BYPOSITION, m_nStart + i, text.c_str());
    ++inserted;
  }
  // Slot 0 is not empty, so at least one item went in.
  pCmdUI->m_nIndex = anchor + inserted - 1;
  pCmdUI->m_nID = m_nStart + inserted - 1;
  pCmdUI->m_nIndexMax = static_cast<UINT>(menu->GetMenuItemCount());
  pCmdUI->m_bEnableChanged = TRUE;
}
