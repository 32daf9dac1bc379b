// CLRecentFileList: whole paths with "/" as display names, and the menu items it puts in
// place of the anchor (numbers modulo 10, "&" doubled, the 260-character limit, items
// replaced in place), driven through the framework's menu update pass without a window;
// the list itself read from a real profile file under a temporary XDG_CONFIG_HOME.
#include <corlith/environment/LRecentFileList.h>
#include <corlith/framework/Menu.h>
#include <corlith/framework/Profile.h>
#include <corlith/test/DesktopRecorder.h>
#include <corlith/test/RecentMenu.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

using corlith::test::FileMenu;
using corlith::test::Item;
using corlith::test::MenuItems;
using corlith::test::RunUpdatePass;
constexpr UINT kFirstId = corlith::test::kRecentAnchorId;
constexpr UINT kOpenId = corlith::test::kOpenItemId;
constexpr UINT kExitId = corlith::test::kExitItemId;

// The slots from the newest: Add takes the oldest first.
void Fill(CLRecentFileList& list, const std::vector<std::string>& newestFirst) {
  for (auto it = newestFirst.rbegin(); it != newestFirst.rend(); ++it) list.Add(it->c_str());
}

std::string PathOfLength(std::size_t length) {
  std::string path = "/long/";
  path += std::string(length - path.size() - 4, 'x');
  return path + ".pcb";
}

TEST(LRecentFileListNames, WholePathWithForwardSlashes) {
  const std::string longPath = PathOfLength(300);
  const struct {
    const char* stored;
    BOOL found;
    const char* shown;
  } kRows[] = {
      {"C:\\a&b\\x.dat", TRUE, "C:/a&b/x.dat"},
      {"\\\\server\\share\\doc.pcb", TRUE, "//server/share/doc.pcb"},
      {"/work/mixed\\name.pcb", TRUE, "/work/mixed/name.pcb"},
      {longPath.c_str(), TRUE, longPath.c_str()},
      {"", FALSE, ""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.stored);
    CLRecentFileList list(kFirstId, "Recent File List", "File%d", 4, 10);
    list[1] = row.stored;
    CString name("unchanged");
    // The current folder and the short display length do not apply.
    EXPECT_EQ(list.GetDisplayName(name, 1, "C:\\", 3, FALSE), row.found);
    EXPECT_EQ(name, row.found ? row.shown : "unchanged");
    EXPECT_EQ(list.GetDisplayName_in_FullPath(1), row.shown);
  }
  const CLRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  EXPECT_EQ(list.GetDisplayName_in_FullPath(4), "");
  EXPECT_EQ(list.GetDisplayName_in_FullPath(-1), "");
}

TEST(LRecentFileListMenu, EntriesAreNumberedModuloTenWithAmpersandsDoubled) {
  const struct {
    const char* name;
    std::vector<std::string> entries;
    Texts list;  // the items between Open and the separator
  } kRows[] = {
      {"one", {"C:\\a&b\\x.dat"}, {Item(kFirstId, "&1 C:/a&&b/x.dat")}},
      {"two ampersands", {"/a&&b/&c"}, {Item(kFirstId, "&1 /a&&&&b/&&c")}},
      {"twelve",
       {"/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8", "/9", "/10", "/11", "/12"},
       {Item(kFirstId, "&1 /1"), Item(kFirstId + 1, "&2 /2"), Item(kFirstId + 2, "&3 /3"),
        Item(kFirstId + 3, "&4 /4"), Item(kFirstId + 4, "&5 /5"), Item(kFirstId + 5, "&6 /6"),
        Item(kFirstId + 6, "&7 /7"), Item(kFirstId + 7, "&8 /8"), Item(kFirstId + 8, "&9 /9"),
        Item(kFirstId + 9, "&0 /10"), Item(kFirstId + 10, "&1 /11"), Item(kFirstId + 11, "&2 /12")}},
      {"259 characters shown, 260 left out with its number",
       {PathOfLength(259), PathOfLength(260), "/short"},
       {Item(kFirstId, "&1 " + PathOfLength(259)), Item(kFirstId + 2, "&3 /short")}},
      {"every entry too long: the anchor stays",
       {PathOfLength(260), PathOfLength(400)},
       {Item(kFirstId, "Recent File")}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = FileMenu();
    CLRecentFileList list(kFirstId, "Recent File List", "File%d", 16);
    Fill(list, row.entries);
    RunUpdatePass(menu, list);
    Texts expected{Item(kOpenId, "&Open...")};
    expected.insert(expected.end(), row.list.begin(), row.list.end());
    expected.push_back("0:");
    expected.push_back(Item(kExitId, "E&xit"));
    EXPECT_EQ(MenuItems(menu), expected);
    for (int i = 0; i < menu.GetMenuItemCount(); ++i) {
      EXPECT_EQ(menu.GetMenuState(static_cast<UINT>(i), MF_BYPOSITION) & MF_GRAYED, 0u) << i;
    }
  }
  // What the menu shows for the ampersand entry: one literal "&", mnemonic "1".
  EXPECT_EQ(corlith::MenuDisplayText("&1 C:/a&&b/x.dat"), "1 C:/a&b/x.dat");
  EXPECT_EQ(corlith::MenuMnemonic("&1 C:/a&&b/x.dat"), '1');
}

TEST(LRecentFileListMenu, LaterUpdatesReplaceTheItemsInPlace) {
  const struct {
    const char* name;
    std::vector<std::string> before;
    int removed;  // slot removed between the two updates; -1: none
    std::vector<std::string> added;
    Texts list;
  } kRows[] = {
      {"shorter list", {"/a", "/b", "/c"}, 1, {}, {Item(kFirstId, "&1 /a"), Item(kFirstId + 1, "&2 /c")}},
      {"longer list",
       {"/a"},
       -1,
       {"/b", "/c"},
       {Item(kFirstId, "&1 /c"), Item(kFirstId + 1, "&2 /b"), Item(kFirstId + 2, "&3 /a")}},
      {"known file moves up",
       {"/a", "/b", "/c"},
       -1,
       {"/c"},
       {Item(kFirstId, "&1 /c"), Item(kFirstId + 1, "&2 /a"), Item(kFirstId + 2, "&3 /b")}},
      {"emptied: the remembered text comes back", {"/a", "/b"}, 0, {}, {}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = FileMenu();
    CLRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
    Fill(list, row.before);
    RunUpdatePass(menu, list);
    if (row.removed >= 0) list.Remove(row.removed);
    if (row.list.empty()) list.Remove(0);
    for (const std::string& path : row.added) list.Add(path.c_str());
    RunUpdatePass(menu, list);
    Texts expected{Item(kOpenId, "&Open...")};
    if (row.list.empty()) {
      expected.push_back(Item(kFirstId, "Recent File"));
    } else {
      expected.insert(expected.end(), row.list.begin(), row.list.end());
    }
    expected.push_back("0:");
    expected.push_back(Item(kExitId, "E&xit"));
    EXPECT_EQ(MenuItems(menu), expected);
  }
}

TEST(LRecentFileListMenu, TheCommandUiLearnsTheNewCountAndThatItChanged) {
  const struct {
    const char* name;
    std::vector<std::string> entries;
    UINT indexMax;
    UINT index;
    BOOL changed;
  } kRows[] = {
      {"three entries", {"/a", "/b", "/c"}, 6, 3, TRUE},
      {"empty list", {}, 4, 1, FALSE},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CMenu menu = FileMenu();
    CLRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
    Fill(list, row.entries);
    CCmdUI ui;
    ui.m_pMenu = &menu;
    ui.m_nID = kFirstId;
    ui.m_nIndex = 1;
    ui.m_nIndexMax = 4;
    list.UpdateMenu(&ui);
    EXPECT_EQ(ui.m_nIndexMax, row.indexMax);
    EXPECT_EQ(ui.m_nIndex, row.index);
    EXPECT_EQ(ui.m_bEnableChanged, row.changed);
    EXPECT_EQ(menu.GetMenuItemCount(), static_cast<int>(row.indexMax));
  }
}

TEST(LRecentFileListProfile, ListFromTheProfileFileShowsForwardSlashes) {
  const corlith::test::TempFolder config("recentcfg");
  const corlith::test::ScopedEnvironment environment({"XDG_CONFIG_HOME=" + config.Path().string()}, {});
  std::filesystem::create_directories(config.Path() / "Orvane");
  config.Write("Orvane/Tessel.ini",
               "[Recent File List]\r\nFile1=C:\\Work\\a&b.pcb\r\nFile2=/home/u/board.pcb\r\nFile3=\r\n");
  auto profile = std::make_shared<corlith::ApplicationProfile>("Orvane", "Tessel");
  const corlith::ScopedApplicationProfile scope(profile);

  CLRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  list.ReadList();
  EXPECT_EQ(list.GetDisplayName_in_FullPath(0), "C:/Work/a&b.pcb");
  EXPECT_EQ(list.GetDisplayName_in_FullPath(1), "/home/u/board.pcb");
  EXPECT_EQ(list.GetDisplayName_in_FullPath(2), "");
  CMenu menu = FileMenu();
  RunUpdatePass(menu, list);
  EXPECT_EQ(MenuItems(menu)[1], Item(kFirstId, "&1 C:/Work/a&&b.pcb"));
  EXPECT_EQ(MenuItems(menu)[2], Item(kFirstId + 1, "&2 /home/u/board.pcb"));

  // Written back as stored: the display form never reaches the file.
  list.Add("/home/u/new.pcb");
  list.WriteList();
  EXPECT_EQ(profile->GetProfileString("Recent File List", "File2"), "C:\\Work\\a&b.pcb");
  EXPECT_EQ(profile->GetProfileString("Recent File List", "File1"), "/home/u/new.pcb");
}

}  // namespace
