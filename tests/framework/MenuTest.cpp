// Menus and command UI: the "&" mnemonic rules, where InsertMenu puts an item and what
// DeleteMenu removes (by position and by command), the state bits that Enable and Check
// report, what CCmdUI changes, and the update pass that goes on after a handler inserted
// or deleted items (the recent-file list's way of filling a menu).
#include <corlith/framework/Menu.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

constexpr UINT kNoItem = 0xFFFFFFFF;

// "Text:id" for every item, "-" for a separator.
std::vector<std::string> Describe(const CMenu& menu) {
  std::vector<std::string> out;
  for (int i = 0; i < menu.GetMenuItemCount(); ++i) {
    const UINT id = menu.GetMenuItemID(i);
    CString text;
    menu.GetMenuString(static_cast<UINT>(i), text, MF_BYPOSITION);
    out.push_back(id == 0 ? std::string("-") : std::string(text.view()) + ":" + std::to_string(id));
  }
  return out;
}

CMenu MenuOf(std::initializer_list<std::pair<UINT, const char*>> items) {
  CMenu menu;
  for (const auto& [id, text] : items) menu.AppendMenu(text ? MF_STRING : MF_SEPARATOR, id, text);
  return menu;
}

TEST(MenuText, AmpersandsMarkMnemonicsAndDoubledOnesShowOnce) {
  const struct {
    const char* text;
    const char* shown;
    char mnemonic;
  } kRows[] = {
      {"&File", "File", 'F'},
      {"E&xit", "Exit", 'x'},
      {"a&&b", "a&b", '\0'},
      {"&&&Save", "&Save", 'S'},
      {"a&b&c", "abc", 'b'},
      {"trail&", "trail", '\0'},
      {"&", "", '\0'},
      {"", "", '\0'},
      {"&1 C:/a&&b/x.dat", "1 C:/a&b/x.dat", '1'},
      {"&Open\tCtrl+O", "Open\tCtrl+O", 'O'},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(corlith::MenuDisplayText(row.text), row.shown);
    EXPECT_EQ(corlith::MenuMnemonic(row.text), row.mnemonic);
    // Escaping shows any text literally, with no mnemonic.
    const std::string escaped = corlith::EscapeMenuText(row.text);
    EXPECT_EQ(corlith::MenuDisplayText(escaped), row.text);
    EXPECT_EQ(corlith::MenuMnemonic(escaped), '\0');
  }
  EXPECT_EQ(corlith::EscapeMenuText("C:/a&b/x.dat"), "C:/a&&b/x.dat");
}

TEST(MenuEdit, InsertMenuPutsTheItemBeforeTheOneNamed) {
  const struct {
    const char* name;
    UINT position;
    UINT flags;
    BOOL result;
    std::vector<std::string> items;
  } kRows[] = {
      {"first", 0, MF_BYPOSITION, TRUE, {"X:9", "A:1", "B:2", "C:3"}},
      {"middle", 1, MF_BYPOSITION, TRUE, {"A:1", "X:9", "B:2", "C:3"}},
      {"at the end", 3, MF_BYPOSITION, TRUE, {"A:1", "B:2", "C:3", "X:9"}},
      {"past the end appends", 7, MF_BYPOSITION, TRUE, {"A:1", "B:2", "C:3", "X:9"}},
      {"-1 appends", kNoItem, MF_BYPOSITION, TRUE, {"A:1", "B:2", "C:3", "X:9"}},
      {"by command", 2, MF_BYCOMMAND, TRUE, {"A:1", "X:9", "B:2", "C:3"}},
      {"unknown command", 4, MF_BYCOMMAND, FALSE, {"A:1", "B:2", "C:3"}},
      {"separator", 1, MF_BYPOSITION | MF_SEPARATOR, TRUE, {"A:1", "-", "B:2", "C:3"}},
      {"pop-up refused", 1, MF_BYPOSITION | MF_POPUP, FALSE, {"A:1", "B:2", "C:3"}},
      {"bitmap refused", 1, MF_BYPOSITION | MF_BITMAP, FALSE, {"A:1", "B:2", "C:3"}},
      {"owner-draw refused", 1, MF_BYPOSITION | MF_OWNERDRAW, FALSE, {"A:1", "B:2", "C:3"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = MenuOf({{1, "A"}, {2, "B"}, {3, "C"}});
    EXPECT_EQ(menu.InsertMenu(row.position, row.flags | MF_STRING, 9, "X"), row.result);
    EXPECT_EQ(Describe(menu), row.items);
  }
}

TEST(MenuEdit, DeleteMenuRemovesOnlyAnItemThatExists) {
  const struct {
    const char* name;
    UINT position;
    UINT flags;
    BOOL result;
    std::vector<std::string> items;
  } kRows[] = {
      {"first", 0, MF_BYPOSITION, TRUE, {"-", "B:2", "B2:2"}},
      {"separator by position", 1, MF_BYPOSITION, TRUE, {"A:1", "B:2", "B2:2"}},
      {"last", 3, MF_BYPOSITION, TRUE, {"A:1", "-", "B:2"}},
      {"past the end", 4, MF_BYPOSITION, FALSE, {"A:1", "-", "B:2", "B2:2"}},
      {"-1", kNoItem, MF_BYPOSITION, FALSE, {"A:1", "-", "B:2", "B2:2"}},
      {"first of a command", 2, MF_BYCOMMAND, TRUE, {"A:1", "-", "B2:2"}},
      {"unknown command", 7, MF_BYCOMMAND, FALSE, {"A:1", "-", "B:2", "B2:2"}},
      {"separators have no command", 0, MF_BYCOMMAND, FALSE, {"A:1", "-", "B:2", "B2:2"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = MenuOf({{1, "A"}, {0, nullptr}, {2, "B"}, {2, "B2"}});
    EXPECT_EQ(menu.DeleteMenu(row.position, row.flags), row.result);
    EXPECT_EQ(Describe(menu), row.items);
  }
}

TEST(MenuQuery, MissingItemsGiveTheOriginalsMarkers) {
  CMenu menu = MenuOf({{1, "&Open"}, {0, nullptr}, {2, "E&xit"}});
  const struct {
    const char* name;
    UINT item;
    UINT flags;
    int length;
    const char* text;
    UINT state;
  } kRows[] = {
      {"by position", 0, MF_BYPOSITION, 5, "&Open", 0},
      {"separator", 1, MF_BYPOSITION, 0, "", MF_SEPARATOR},
      {"by command", 2, MF_BYCOMMAND, 5, "E&xit", 0},
      {"past the end", 3, MF_BYPOSITION, 0, "", kNoItem},
      {"unknown command", 3, MF_BYCOMMAND, 0, "", kNoItem},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CString text("stale");
    EXPECT_EQ(menu.GetMenuString(row.item, text, row.flags), row.length);
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(menu.GetMenuState(row.item, row.flags), row.state);
  }
  EXPECT_EQ(menu.GetMenuItemID(-1), kNoItem);
  EXPECT_EQ(menu.GetMenuItemID(3), kNoItem);
  EXPECT_EQ(menu.GetMenuItemID(1), 0u);
  EXPECT_EQ(menu.GetMenuItemID(2), 2u);
}

TEST(MenuState, EnableAndCheckReturnThePreviousBits) {
  CMenu menu = MenuOf({{1, "A"}, {2, "B"}});
  const struct {
    const char* name;
    bool check;  // CheckMenuItem, else EnableMenuItem
    UINT item;
    UINT flags;
    UINT previous;
    UINT stateAfter;  // of item B
  } kSteps[] = {
      {"gray", false, 1, MF_BYPOSITION | MF_GRAYED, MF_ENABLED, MF_GRAYED},
      {"gray and disable", false, 1, MF_BYPOSITION | MF_GRAYED | MF_DISABLED, MF_GRAYED,
       MF_GRAYED | MF_DISABLED},
      {"check", true, 1, MF_BYPOSITION | MF_CHECKED, MF_UNCHECKED, MF_GRAYED | MF_DISABLED | MF_CHECKED},
      {"enable by command", false, 2, MF_BYCOMMAND | MF_ENABLED, MF_GRAYED | MF_DISABLED, MF_CHECKED},
      {"uncheck by command", true, 2, MF_BYCOMMAND | MF_UNCHECKED, MF_CHECKED, 0},
      {"no item by position", false, 2, MF_BYPOSITION | MF_GRAYED, kNoItem, 0},
      {"no item by command", true, 9, MF_BYCOMMAND | MF_CHECKED, kNoItem, 0},
  };
  for (const auto& step : kSteps) {
    SCOPED_TRACE(step.name);
    const UINT previous =
        step.check ? menu.CheckMenuItem(step.item, step.flags) : menu.EnableMenuItem(step.item, step.flags);
    EXPECT_EQ(previous, step.previous);
    EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION), step.stateAfter);
    EXPECT_EQ(menu.GetMenuState(0, MF_BYPOSITION), 0u);
  }
}

TEST(CmdUI, ChangesTheItemAtItsIndexAndKeepsWhatItDoesNotSet) {
  CMenu menu = MenuOf({{10, "A"}, {11, "&Open"}});
  menu.CheckMenuItem(1, MF_BYPOSITION | MF_CHECKED);
  CCmdUI ui;
  ui.m_pMenu = &menu;
  ui.m_nIndex = 1;
  ui.m_nID = 11;
  ui.m_nIndexMax = 2;

  ui.Enable(FALSE);
  EXPECT_TRUE(ui.m_bEnableChanged);
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION), MF_CHECKED | MF_GRAYED | MF_DISABLED);
  ui.SetText("&Close");
  EXPECT_EQ(Describe(menu), (std::vector<std::string>{"A:10", "&Close:11"}));
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION), MF_CHECKED | MF_GRAYED | MF_DISABLED);
  ui.SetCheck(0);
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION), MF_GRAYED | MF_DISABLED);
  ui.SetCheck(2);  // any non-zero check shows the mark
  ui.Enable();
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION), MF_CHECKED);
  ui.SetText(nullptr);
  EXPECT_EQ(Describe(menu), (std::vector<std::string>{"A:10", ":11"}));
  EXPECT_EQ(menu.GetMenuState(0, MF_BYPOSITION), 0u);

  // An index that names no item, or no menu at all: nothing changes but the flag.
  for (CMenu* target : {&menu, static_cast<CMenu*>(nullptr)}) {
    SCOPED_TRACE(target ? "index past the end" : "no menu");
    CCmdUI other;
    other.m_pMenu = target;
    other.m_nIndex = 5;
    other.Enable(FALSE);
    other.SetCheck(1);
    other.SetText("X");
    EXPECT_TRUE(other.m_bEnableChanged);
    EXPECT_EQ(Describe(menu), (std::vector<std::string>{"A:10", ":11"}));
  }
}

TEST(MenuUpdatePass, AsksEveryCommandAndDisablesThoseWithoutHandler) {
  const struct {
    const char* name;
    BOOL disableIfNoHandler;
    std::vector<UINT> states;  // of the four items after the pass
  } kRows[] = {
      // Open has a handler (enabled again), Save none (grayed), Print disabled itself.
      {"disable", TRUE, {0, MF_SEPARATOR, MF_GRAYED | MF_DISABLED, MF_GRAYED | MF_DISABLED, 0}},
      {"leave alone", FALSE, {MF_GRAYED, MF_SEPARATOR, 0, MF_GRAYED | MF_DISABLED, 0}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = MenuOf({{100, "Open"}, {0, nullptr}, {101, "Save"}, {102, "Print"}, {103, "Exit"}});
    menu.EnableMenuItem(100, MF_BYCOMMAND | MF_GRAYED);
    std::vector<UINT> asked;
    corlith::UpdateMenuCommandUI(
        menu,
        [&](CCmdUI& ui) {
          asked.push_back(ui.m_nID);
          EXPECT_FALSE(ui.m_bEnableChanged);
          EXPECT_EQ(ui.m_pMenu, &menu);
          if (ui.m_nID == 102) ui.Enable(FALSE);
          return ui.m_nID == 101 ? FALSE : TRUE;
        },
        row.disableIfNoHandler);
    EXPECT_EQ(asked, (std::vector<UINT>{100, 101, 102, 103}));
    std::vector<UINT> states;
    states.reserve(static_cast<std::size_t>(menu.GetMenuItemCount()));
    for (int i = 0; i < menu.GetMenuItemCount(); ++i) states.push_back(menu.GetMenuState(i, MF_BYPOSITION));
    EXPECT_EQ(states, row.states);
  }
}

// The recent-file list's handler, as the framework's own does it: remove the items it
// inserted last time (by command), insert the current ones at its place, point m_nIndex
// at the last one and store the new count.
constexpr UINT kAnchor = 0xE110;

BOOL FillRecentFiles(CCmdUI& ui, const std::vector<std::string>& files) {
  for (UINT i = 0; i < 4; ++i) ui.m_pMenu->DeleteMenu(kAnchor + i, MF_BYCOMMAND);
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string text = "&" + std::to_string(i + 1) + " " + corlith::EscapeMenuText(files[i]);
    ui.m_pMenu->InsertMenu(ui.m_nIndex++, MF_STRING | MF_BYPOSITION, ui.m_nID++, text.c_str());
  }
  ui.m_nIndex--;
  ui.m_nIndexMax = static_cast<UINT>(ui.m_pMenu->GetMenuItemCount());
  ui.m_bEnableChanged = TRUE;
  return TRUE;
}

TEST(MenuUpdatePass, GoesOnAfterTheItemsAHandlerInserted) {
  CMenu menu = MenuOf({{1, "&New"}, {kAnchor, "Recent File"}, {0, nullptr}, {2, "E&xit"}});
  const std::vector<std::string> files = {"/b/one.brd", "/b/a&b.brd", "/b/three.brd"};
  const std::vector<std::string> expected = {
      "&New:1", "&1 /b/one.brd:57616", "&2 /b/a&&b.brd:57617", "&3 /b/three.brd:57618", "-", "E&xit:2"};
  // The second opening finds the items of the first in place of the anchor.
  for (const char* opening : {"first opening", "second opening"}) {
    SCOPED_TRACE(opening);
    std::vector<UINT> asked;
    corlith::UpdateMenuCommandUI(
        menu,
        [&](CCmdUI& ui) {
          asked.push_back(ui.m_nID);
          return ui.m_nID == kAnchor ? FillRecentFiles(ui, files) : TRUE;
        },
        TRUE);
    EXPECT_EQ(asked, (std::vector<UINT>{1, kAnchor, 2}));
    EXPECT_EQ(Describe(menu), expected);
  }
}

TEST(MenuUpdatePass, GoesOnAfterItemsAHandlerDeletedWithoutSaying) {
  const struct {
    const char* name;
    std::set<UINT> deleted;
    std::vector<std::string> left;
  } kRows[] = {
      {"first", {1}, {"B:2", "C:3"}},
      {"middle", {2}, {"A:1", "C:3"}},
      {"last", {3}, {"A:1", "B:2"}},
      {"every one", {1, 2, 3}, {}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = MenuOf({{1, "A"}, {2, "B"}, {3, "C"}});
    std::vector<UINT> asked;
    corlith::UpdateMenuCommandUI(
        menu,
        [&](CCmdUI& ui) {
          asked.push_back(ui.m_nID);
          if (row.deleted.count(ui.m_nID) != 0) ui.m_pMenu->DeleteMenu(ui.m_nIndex, MF_BYPOSITION);
          ui.m_bEnableChanged = TRUE;
          return TRUE;
        },
        TRUE);
    EXPECT_EQ(asked, (std::vector<UINT>{1, 2, 3}));
    EXPECT_EQ(Describe(menu), row.left);
  }
}

TEST(MenuAdapter, CMenuDrivesAnyItemList) {
  // A list that keeps a log shows that CMenu reaches its items only through IMenu.
  struct LoggingMenu : corlith::IMenu {
    corlith::MemoryMenu items;
    std::vector<std::string>* log;
    explicit LoggingMenu(std::vector<std::string>* l) : log(l) {}
    int GetItemCount() const override { return items.GetItemCount(); }
    corlith::MenuItem GetItem(int p) const override { return items.GetItem(p); }
    void InsertItem(int p, const corlith::MenuItem& item) override {
      log->push_back("insert " + std::to_string(p) + " " + item.text);
      items.InsertItem(p, item);
    }
    void SetItem(int p, const corlith::MenuItem& item) override {
      log->push_back("set " + std::to_string(p) + " " + std::to_string(item.state));
      items.SetItem(p, item);
    }
    void DeleteItem(int p) override {
      log->push_back("delete " + std::to_string(p));
      items.DeleteItem(p);
    }
  };
  std::vector<std::string> log;
  CMenu menu(std::make_unique<LoggingMenu>(&log));
  menu.AppendMenu(MF_STRING, 1, "A");
  menu.InsertMenu(0, MF_BYPOSITION | MF_GRAYED, 2, "B");
  menu.EnableMenuItem(2, MF_BYCOMMAND | MF_ENABLED);
  menu.DeleteMenu(5, MF_BYPOSITION);  // refused before it reaches the list
  menu.DeleteMenu(1, MF_BYCOMMAND);
  EXPECT_EQ(log, (std::vector<std::string>{"insert 0 A", "insert 0 B", "set 0 0", "delete 1"}));
  EXPECT_EQ(Describe(menu), (std::vector<std::string>{"B:2"}));
  EXPECT_EQ(CMenu(nullptr).GetMenuItemCount(), 0);
}

}  // namespace
