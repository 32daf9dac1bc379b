// A File menu with a recent-file anchor between other items, the framework's update pass
// over it and its items as "ID:text", for the tests of the recent-file lists.
#pragma once

#include <corlith/framework/Menu.h>
#include <corlith/framework/RecentFileList.h>

#include <string>
#include <vector>

namespace corlith::test {

constexpr UINT kRecentAnchorId = 0xE110;
constexpr UINT kOpenItemId = 100;
constexpr UINT kExitItemId = 200;

inline std::string Item(UINT id, const std::string& text) { return std::to_string(id) + ":" + text; }

/// Every item of `menu` as Item(id, text), in order.
inline std::vector<std::string> MenuItems(const CMenu& menu) {
  std::vector<std::string> texts;
  for (int i = 0; i < menu.GetMenuItemCount(); ++i) {
    CString text;
    menu.GetMenuString(static_cast<UINT>(i), text, MF_BYPOSITION);
    texts.push_back(Item(menu.GetMenuItemID(i), text.str()));
  }
  return texts;
}

/// "&Open...", the anchor "Recent File", a separator, "E&xit".
inline CMenu FileMenu() {
  CMenu menu;
  menu.AppendMenu(MF_STRING, kOpenItemId, "&Open...");
  menu.AppendMenu(MF_STRING, kRecentAnchorId, "Recent File");
  menu.AppendMenu(MF_SEPARATOR);
  menu.AppendMenu(MF_STRING, kExitItemId, "E&xit");
  return menu;
}

/// The framework's pass as a frame runs it when the menu opens, with `list` handling the
/// anchor; items nobody handles would be grayed, so a test sees when the pass asked the
/// wrong items.
inline void RunUpdatePass(CMenu& menu, CRecentFileList& list) {
  corlith::UpdateMenuCommandUI(
      menu,
      [&list](CCmdUI& ui) {
        if (ui.m_nID == kRecentAnchorId) {
          list.UpdateMenu(&ui);
          return TRUE;
        }
        return static_cast<BOOL>(ui.m_nID == kOpenItemId || ui.m_nID == kExitItemId);
      },
      TRUE);
}

}  // namespace corlith::test
