#include <corlith/framework/Menu.h>

namespace {

constexpr UINT kNoItem = 0xFFFFFFFF;
constexpr UINT kStateBits = MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_SEPARATOR;
constexpr UINT kEnableBits = MF_GRAYED | MF_DISABLED;

// Sets the `mask` bits of the item's state from `bits`; returns what they were.
UINT ReplaceStateBits(corlith::IMenu& menu, int position, UINT mask, UINT bits) {
  corlith::MenuItem item = menu.GetItem(position);
  const UINT previous = item.state & mask;
  item.state = (item.state & ~mask) | (bits & mask);
  menu.SetItem(position, item);
  return previous;
}

}  // namespace

namespace corlith {

void MemoryMenu::InsertItem(int position, const MenuItem& item) {
  m_items.insert(m_items.begin() + position, item);
}

void MemoryMenu::DeleteItem(int position) { m_items.erase(m_items.begin() + position); }

std::string MenuDisplayText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '&') {
      out += text[i];
    } else if (i + 1 < text.size()) {
      out += text[++i];  // "&&" gives "&"; "&x" gives "x"
    }
  }
  return out;
}

char MenuMnemonic(std::string_view text) {
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != '&') continue;
    if (text[i + 1] != '&') return text[i + 1];
    ++i;
  }
  return '\0';
}

std::string EscapeMenuText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (c == '&') out += '&';
    out += c;
  }
  return out;
}

}  // namespace corlith

CMenu::CMenu() : m_menu(std::make_unique<corlith::MemoryMenu>()) {}

CMenu::CMenu(std::unique_ptr<corlith::IMenu> menu)
    : m_menu(menu ? std::move(menu) : std::make_unique<corlith::MemoryMenu>()) {}

std::optional<int> CMenu::Find(UINT nID, UINT nFlags) const {
  const int count = m_menu->GetItemCount();
  if ((nFlags & MF_BYPOSITION) != 0) {
    if (nID < static_cast<UINT>(count)) return static_cast<int>(nID);
    return std::nullopt;
  }
  for (int i = 0; i < count; ++i) {
    const corlith::MenuItem item = m_menu->GetItem(i);
    if ((item.state & MF_SEPARATOR) == 0 && item.id == nID) return i;
  }
  return std::nullopt;
}

std::optional<corlith::MenuItem> CMenu::MakeItem(UINT nFlags, UINT_PTR nID, LPCTSTR lpszText) {
  if ((nFlags & (MF_POPUP | MF_BITMAP | MF_OWNERDRAW)) != 0) return std::nullopt;
  corlith::MenuItem item;
  item.state = nFlags & kStateBits;
  if ((nFlags & MF_SEPARATOR) == 0) {
    item.id = static_cast<UINT>(nID);
    item.text = lpszText != nullptr ? lpszText : "";
  }
  return item;
}

int CMenu::GetMenuItemCount() const { return m_menu->GetItemCount(); }

UINT CMenu::GetMenuItemID(int nPos) const {
  if (nPos < 0 || nPos >= m_menu->GetItemCount()) return kNoItem;
  const corlith::MenuItem item = m_menu->GetItem(nPos);
  return (item.state & MF_SEPARATOR) != 0 ? 0 : item.id;
}

int CMenu::GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const {
  const std::optional<int> position = Find(nIDItem, nFlags);
  if (!position) {
    rString.Empty();
    return 0;
  }
  rString = m_menu->GetItem(*position).text;
  return rString.GetLength();
}

UINT CMenu::GetMenuState(UINT nID, UINT nFlags) const {
  const std::optional<int> position = Find(nID, nFlags);
  return position ? m_menu->GetItem(*position).state : kNoItem;
}

BOOL CMenu::InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem, LPCTSTR lpszNewItem) {
  const std::optional<corlith::MenuItem> item = MakeItem(nFlags, nIDNewItem, lpszNewItem);
  if (!item) return FALSE;
  const int count = m_menu->GetItemCount();
  std::optional<int> position;
  if ((nFlags & MF_BYPOSITION) != 0) {
    position = nPosition < static_cast<UINT>(count) ? static_cast<int>(nPosition) : count;
  } else {
    position = Find(nPosition, MF_BYCOMMAND);
  }
  if (!position) return FALSE;
  m_menu->InsertItem(*position, *item);
  return TRUE;
}

BOOL CMenu::AppendMenu(UINT nFlags, UINT_PTR nIDNewItem, LPCTSTR lpszNewItem) {
  return InsertMenu(kNoItem, nFlags | MF_BYPOSITION, nIDNewItem, lpszNewItem);
}

BOOL CMenu::ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem, LPCTSTR lpszNewItem) {
  const std::optional<corlith::MenuItem> item = MakeItem(nFlags, nIDNewItem, lpszNewItem);
  const std::optional<int> position = Find(nPosition, nFlags);
  if (!item || !position) return FALSE;
  m_menu->SetItem(*position, *item);
  return TRUE;
}

BOOL CMenu::DeleteMenu(UINT nPosition, UINT nFlags) {
  const std::optional<int> position = Find(nPosition, nFlags);
  if (!position) return FALSE;
  m_menu->DeleteItem(*position);
  return TRUE;
}

UINT CMenu::EnableMenuItem(UINT nIDEnableItem, UINT nEnable) {
  const std::optional<int> position = Find(nIDEnableItem, nEnable);
  if (!position) return kNoItem;
  return ReplaceStateBits(*m_menu, *position, kEnableBits, nEnable);
}

UINT CMenu::CheckMenuItem(UINT nIDCheckItem, UINT nCheck) {
  const std::optional<int> position = Find(nIDCheckItem, nCheck);
  if (!position) return kNoItem;
  return ReplaceStateBits(*m_menu, *position, MF_CHECKED, nCheck);
}

void CCmdUI::Enable(BOOL bOn) {
  if (m_pMenu != nullptr) {
    m_pMenu->EnableMenuItem(m_nIndex, MF_BYPOSITION | (bOn ? MF_ENABLED : (MF_DISABLED | MF_GRAYED)));
  }
  m_bEnableChanged = TRUE;
}

void CCmdUI::SetCheck(int nCheck) {
  if (m_pMenu != nullptr)
    m_pMenu->CheckMenuItem(m_nIndex, MF_BYPOSITION | (nCheck ? MF_CHECKED : MF_UNCHECKED));
}

void CCmdUI::SetText(LPCTSTR lpszText) {
  if (m_pMenu == nullptr) return;
  const UINT state = m_pMenu->GetMenuState(m_nIndex, MF_BYPOSITION);
  if (state == kNoItem) return;
  m_pMenu->ModifyMenu(m_nIndex, MF_BYPOSITION | MF_STRING | (state & ~MF_SEPARATOR), m_nID, lpszText);
}

namespace corlith {

void UpdateMenuCommandUI(CMenu& menu, const std::function<BOOL(CCmdUI&)>& update, BOOL disableIfNoHandler) {
  CCmdUI state;
  state.m_pMenu = &menu;
  state.m_nIndexMax = static_cast<UINT>(menu.GetMenuItemCount());
  // Unsigned arithmetic on purpose, as in the original loop: a handler that deletes the
  // first item moves m_nIndex to 0xFFFFFFFF, and the loop's increment brings it back to 0.
  for (state.m_nIndex = 0; state.m_nIndex < state.m_nIndexMax; ++state.m_nIndex) {
    state.m_nID = menu.GetMenuItemID(static_cast<int>(state.m_nIndex));
    if (state.m_nID == 0) continue;  // a separator
    state.m_bEnableChanged = FALSE;
    const BOOL handled = update(state);
    if (disableIfNoHandler && !state.m_bEnableChanged) state.Enable(handled);

    const auto count = static_cast<UINT>(menu.GetMenuItemCount());
    if (count < state.m_nIndexMax) {
      state.m_nIndex -= state.m_nIndexMax - count;
      while (state.m_nIndex < count && menu.GetMenuItemID(static_cast<int>(state.m_nIndex)) == state.m_nID) {
        ++state.m_nIndex;
      }
    }
    state.m_nIndexMax = count;
  }
}

}  // namespace corlith
