// The framework's recent-file list: the order Add and Remove leave, the slot count, the
// profile file it reads and writes (a real INI file under a temporary XDG_CONFIG_HOME),
// the shortened display names and the menu items it puts in place of its anchor.
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/Menu.h>
#include <corlith/framework/Profile.h>
#include <corlith/framework/RecentFileList.h>
#include <corlith/test/DesktopRecorder.h>
#include <corlith/test/RecentMenu.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;
using Names = std::vector<std::string>;

using corlith::test::FileMenu;
using corlith::test::Item;
using corlith::test::MenuItems;
using corlith::test::RunUpdatePass;
constexpr UINT kFirstId = corlith::test::kRecentAnchorId;

Names Slots(const CRecentFileList& list) {
  Names names;
  for (int i = 0; i < list.GetSize(); ++i) names.push_back(list[i].str());
  return names;
}

TEST(RecentFileListOrder, AddPutsThePathOnTopWithoutDuplicates) {
  const struct {
    const char* name;
    Names added;
    Names slots;
  } kRows[] = {
      {"fills from the top", {"/a", "/b"}, {"/b", "/a", "", ""}},
      {"oldest drops out", {"/a", "/b", "/c", "/d", "/e"}, {"/e", "/d", "/c", "/b"}},
      {"known path moves up", {"/a", "/b", "/c", "/a"}, {"/a", "/c", "/b", ""}},
      {"top stays top", {"/a", "/b", "/b"}, {"/b", "/a", "", ""}},
      {"path in the last slot", {"/a", "/b", "/c", "/d", "/a"}, {"/a", "/d", "/c", "/b"}},
      {"compared exactly", {"/A", "/a"}, {"/a", "/A", "", ""}},
      {"normalised first", {"/x/./y/../f.txt", "/x//f.txt"}, {"/x/f.txt", "", "", ""}},
      {"empty path ignored", {"/a", ""}, {"/a", "", "", ""}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
    for (const std::string& path : row.added) list.Add(path.c_str());
    EXPECT_EQ(Slots(list), row.slots);
  }
}

TEST(RecentFileListOrder, RelativePathsAreMadeAbsoluteAgainstTheCurrentFolder) {
  const TempFolder folder("recent");
  const fs::path previous = fs::current_path();
  fs::current_path(folder.Path());
  CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  list.Add("sub/../doc.pcb");
  list.Add("doc.pcb");
  fs::current_path(previous);
  EXPECT_EQ(Slots(list), (Names{folder.PathOf("doc.pcb"), "", "", ""}));
}

TEST(RecentFileListOrder, RemoveMovesLaterSlotsUp) {
  const struct {
    int index;
    Names slots;
  } kRows[] = {
      {0, {"/c", "/b", "", ""}},   {1, {"/d", "/b", "", ""}},   {2, {"/d", "/c", "", ""}},
      {3, {"/d", "/c", "/b", ""}}, {4, {"/d", "/c", "/b", ""}}, {-1, {"/d", "/c", "/b", ""}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.index);
    CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
    for (const char* path : {"/b", "/c", "/d"}) list.Add(path);
    list.Remove(row.index);
    EXPECT_EQ(Slots(list), row.slots);
  }
}

TEST(RecentFileListSize, SlotCountIsClampedToSixteen) {
  const struct {
    int asked;
    int slots;
  } kRows[] = {{4, 4}, {16, 16}, {17, 16}, {100, 16}, {0, 0}, {-3, 0}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.asked);
    CRecentFileList list(kFirstId, "Recent File List", "File%d", row.asked);
    EXPECT_EQ(list.GetSize(), row.slots);
    for (int i = 0; i < 20; ++i) list.Add(("/f" + std::to_string(i)).c_str());
    EXPECT_EQ(static_cast<int>(Slots(list).size()), row.slots);
    if (row.slots > 0) {
      EXPECT_EQ(list[0], "/f19");
    }
    EXPECT_THROW(list[row.slots], CInvalidArgException);
    EXPECT_THROW(list[-1], CInvalidArgException);
  }
}

// A profile under a temporary XDG_CONFIG_HOME, installed as the application's.
class RecentFileListProfile : public ::testing::Test {
 protected:
  RecentFileListProfile()
      : m_environment({"XDG_CONFIG_HOME=" + m_config.Path().string()}, {}),
        m_profile(std::make_shared<corlith::ApplicationProfile>("Orvane", "Tessel")),
        m_scope(m_profile) {}

  fs::path File() const { return m_config.Path() / "Orvane" / "Tessel.ini"; }
  corlith::ApplicationProfile& Profile() { return *m_profile; }

 private:
  TempFolder m_config{"recentcfg"};
  corlith::test::ScopedEnvironment m_environment;
  std::shared_ptr<corlith::ApplicationProfile> m_profile;
  corlith::ScopedApplicationProfile m_scope;
};

TEST_F(RecentFileListProfile, WriteListReplacesTheSectionWithTheUsedSlots) {
  // Stale entries of an earlier, longer list and a neighbouring section.
  Profile().WriteProfileString("Recent File List", "File4", "/old/four");
  Profile().WriteProfileString("Settings", "Units", "mm");

  CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  for (const char* path : {"/w/a b.pcb", "/w/c=d.pcb", "/w/e.pcb"}) list.Add(path);
  list.Remove(1);
  list.WriteList();
  EXPECT_EQ(corlith::test::ReadFile(File()),
            "[Settings]\nUnits=mm\n\n[Recent File List]\nFile1=/w/e.pcb\nFile2=/w/a b.pcb\n");

  CRecentFileList reread(kFirstId, "recent file list", "FILE%d", 4);
  reread.Add("/something/else");
  reread.ReadList();
  EXPECT_EQ(Slots(reread), (Names{"/w/e.pcb", "/w/a b.pcb", "", ""}));
}

TEST_F(RecentFileListProfile, AnEmptyListLeavesNoSection) {
  CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  list.Add("/w/a.pcb");
  list.WriteList();
  EXPECT_EQ(Profile().GetProfileString("Recent File List", "File1"), "/w/a.pcb");
  list.Remove(0);
  list.WriteList();
  EXPECT_EQ(corlith::test::ReadFile(File()), "");
}

TEST_F(RecentFileListProfile, ReadListTakesEachSlotsOwnEntryAndTheFormatAsGiven) {
  Profile().WriteProfileString("MRU", "Doc03", "/three");
  Profile().WriteProfileString("MRU", "Doc01", "/one");
  Profile().WriteProfileString("MRU", "Doc05", "/beyond the list");
  CRecentFileList list(kFirstId, "MRU", "Doc%02d", 4);
  list.ReadList();
  EXPECT_EQ(Slots(list), (Names{"/one", "", "/three", ""}));
  list.WriteList();
  EXPECT_EQ(corlith::test::ReadFile(File()), "[MRU]\nDoc01=/one\nDoc03=/three\n");
}

TEST(RecentFileListDisplay, NamesAreShortenedForTheMenu) {
  const struct {
    const char* path;
    const char* current;
    int maxLength;
    BOOL atLeastName;
    const char* shown;
  } kRows[] = {
      {"/w/doc.pcb", "/elsewhere/", 30, TRUE, "/w/doc.pcb"},
      {"/w/doc.pcb", "/w/", 30, TRUE, "doc.pcb"},
      {"/w/sub/doc.pcb", "/w/", 30, TRUE, "sub/doc.pcb"},
      {"/w/doc.pcb", "/w", 30, TRUE, "/doc.pcb"},  // the caller's prefix is taken as given
      {"/projects/board/rev2/doc.pcb", "", 21, TRUE, "/projects/.../doc.pcb"},
      {"/projects/board/rev2/doc.pcb", "", 20, TRUE, "doc.pcb"},
      {"/projects/board/rev2/doc.pcb", "", 12, TRUE, "doc.pcb"},
      {"/projects/board/rev2/a-very-long-name.pcb", "", 12, TRUE, "a-very-long-name.pcb"},
      {"/projects/board/rev2/a-very-long-name.pcb", "", 12, FALSE, ""},
      {"/projects/board/rev2/doc.pcb", "", 0, TRUE, "/projects/board/rev2/doc.pcb"},
      {"C:\\w\\sub\\doc.pcb", "", 14, TRUE, "C:\\...\\doc.pcb"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.path + std::string(" ") + std::to_string(row.maxLength));
    CRecentFileList list(kFirstId, "Recent File List", "File%d", 4, row.maxLength);
    list[0] = row.path;
    CString name("unchanged");
    EXPECT_TRUE(list.GetDisplayName(name, 0, row.current, static_cast<int>(std::string(row.current).size()),
                                    row.atLeastName));
    EXPECT_EQ(name, row.shown);
    EXPECT_FALSE(list.GetDisplayName(name, 1, row.current, 0));
    EXPECT_FALSE(list.GetDisplayName(name, 9, row.current, 0));
  }
}

TEST(RecentFileListMenu, ItemsReplaceTheAnchorAndAreReplacedInPlace) {
  CMenu menu = FileMenu();
  CRecentFileList list(kFirstId, "Recent File List", "File%d", 16, 0);
  list.Add("/w/a&b.pcb");
  list.Add("/w/c.pcb");
  RunUpdatePass(menu, list);
  EXPECT_EQ(MenuItems(menu),
            (std::vector<std::string>{Item(100, "&Open..."), Item(kFirstId, "&1 /w/c.pcb"),
                                      Item(kFirstId + 1, "&2 /w/a&&b.pcb"), "0:", Item(200, "E&xit")}));
  for (int i = 0; i < menu.GetMenuItemCount(); ++i)
    EXPECT_EQ(menu.GetMenuState(i, MF_BYPOSITION) & MF_GRAYED, 0u);

  for (int i = 0; i < 10; ++i) list.Add(("/n" + std::to_string(i)).c_str());
  RunUpdatePass(menu, list);
  const std::vector<std::string> texts = MenuItems(menu);
  ASSERT_EQ(texts.size(), 15u);
  EXPECT_EQ(texts[1], Item(kFirstId, "&1 /n9"));
  EXPECT_EQ(texts[9], Item(kFirstId + 8, "&9 /n1"));
  EXPECT_EQ(texts[10], Item(kFirstId + 9, "1&0 /n0"));
  EXPECT_EQ(texts[11], Item(kFirstId + 10, "11 /w/c.pcb"));
  EXPECT_EQ(texts[12], Item(kFirstId + 11, "12 /w/a&&b.pcb"));
  EXPECT_EQ(texts[14], Item(200, "E&xit"));
}

TEST(RecentFileListMenu, AnEmptyListShowsTheAnchorTextDisabled) {
  CMenu menu = FileMenu();
  CRecentFileList list(kFirstId, "Recent File List", "File%d", 4);
  RunUpdatePass(menu, list);
  EXPECT_EQ(MenuItems(menu)[1], Item(kFirstId, "Recent File"));
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION) & MF_GRAYED, MF_GRAYED);

  list.Add("/w/a.pcb");
  RunUpdatePass(menu, list);
  EXPECT_EQ(MenuItems(menu)[1], Item(kFirstId, "&1 /w/a.pcb"));
  list.Remove(0);
  RunUpdatePass(menu, list);
  EXPECT_EQ(MenuItems(menu), (std::vector<std::string>{Item(100, "&Open..."), Item(kFirstId, "Recent File"),
                                                       "0:", Item(200, "E&xit")}));
  EXPECT_EQ(menu.GetMenuState(1, MF_BYPOSITION) & MF_GRAYED, MF_GRAYED);
}

}  // namespace
