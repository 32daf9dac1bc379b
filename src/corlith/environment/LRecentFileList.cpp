#include <corlith/environment/LRecentFileList.h>
#include <corlith/framework/Format.h>

#include <string>

namespace {

constexpr UINT kNoItem = 0xFFFFFFFF;

}  // namespace

BOOL CLRecentFileList::GetDisplayName(CString& strName, int nIndex, LPCTSTR /*lpszCurDir*/, int /*nCurDir*/,
                                      BOOL /*bAtLeastName*/) const {
  if (nIndex < 0 || nIndex >= GetSize() || m_arrNames[static_cast<std::size_t>(nIndex)].IsEmpty())
    return FALSE;
  strName = m_arrNames[static_cast<std::size_t>(nIndex)];
  strName.Replace('\\', '/');
  return TRUE;
}

CString CLRecentFileList::GetDisplayName_in_FullPath(int nIndex) const {
  CString name;
  if (!GetDisplayName(name, nIndex, nullptr, 0)) return {};
  return name;
}

void CLRecentFileList::UpdateMenu(CCmdUI* pCmdUI) {
  if (pCmdUI == nullptr || pCmdUI->m_pMenu == nullptr) return;
  CMenu& menu = *pCmdUI->m_pMenu;
  const UINT anchor = pCmdUI->m_nIndex;
  if (m_strOriginal.IsEmpty()) menu.GetMenuString(anchor, m_strOriginal, MF_BYPOSITION);

  const auto size = static_cast<UINT>(GetSize());
  const auto insertedByUs = [&](UINT position) {
    const UINT id = menu.GetMenuItemID(static_cast<int>(position));
    return id != kNoItem && id >= m_nStart && id - m_nStart < size;
  };

  if (size == 0 || m_arrNames.front().IsEmpty()) {
    while (insertedByUs(anchor + 1)) menu.DeleteMenu(anchor + 1, MF_BYPOSITION);
    if (insertedByUs(anchor)) {
      menu.ModifyMenu(anchor, MF_STRING | MF_BYPOSITION, m_nStart, m_strOriginal);
    }
    pCmdUI->m_nIndexMax = static_cast<UINT>(menu.GetMenuItemCount());
    return;
  }

  while (insertedByUs(anchor)) menu.DeleteMenu(anchor, MF_BYPOSITION);

  UINT inserted = 0;
  for (UINT i = 0; i < size; ++i) {
    CString name;
    if (!GetDisplayName(name, static_cast<int>(i), nullptr, 0)) continue;
    if (name.GetLength() >= kRecentFileMenuPathLimit) continue;
    std::string text = corlith::FormatText("&%d ", static_cast<int>((i + 1) % 10));
    text += corlith::EscapeMenuText(name.view());
    menu.InsertMenu(anchor + inserted, MF_STRING | MF_BYPOSITION, m_nStart + i, text.c_str());
    ++inserted;
  }
  if (inserted == 0) {
    menu.InsertMenu(anchor, MF_STRING | MF_BYPOSITION, m_nStart, m_strOriginal);
    inserted = 1;
  }
  pCmdUI->m_nIndex = anchor + inserted - 1;
  pCmdUI->m_nIndexMax = static_cast<UINT>(menu.GetMenuItemCount());
  pCmdUI->m_bEnableChanged = TRUE;
}
