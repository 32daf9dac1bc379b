// KTUtility's listing and searching on one real tree: names with blanks, non-ASCII
// names, names without an extension, hidden files and folders, links to files and
// folders and a dangling link, a folder whose name matches a file pattern, and the
// tail-match quirk. Folders are given with "/" and with "\", with and without a closing
// separator. The system's order is arbitrary, so lists are compared as sorted sets.
#include <corlith/environment/Utility.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

std::string Backslashed(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

class ListingTree : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_temp = new TempFolder("listing");
    const fs::path root = s_temp->Path() / "root";
    for (const char* file : {"a.txt", "b.TXT", "a.btxt", "noext", "with blank.txt", "ünïcode.txt",
                             ".hidden.txt", ".hidden-folder/inner.txt", "sub/c.txt", "sub/deeper/d.txt",
                             "sub/deeper/e.dat", "sub.txt/f.txt", "sub.txt/g.dat"}) {
      const fs::path path = s_temp->Path() / "root" / file;
      fs::create_directories(path.parent_path());
      corlith::test::WriteFile(path, "x");
    }
    fs::create_directories(root / "empty");
    fs::create_directories(s_temp->Path() / "outside");
    s_temp->Write("outside/secret.txt", "s");
    fs::create_symlink(root / "sub", root / "link-to-sub");
    fs::create_symlink(root / "a.txt", root / "link-to-a.txt");
    fs::create_symlink(root / "nowhere", root / "dangling");
    fs::create_symlink(s_temp->Path() / "outside", root / "link-out");
  }
  static void TearDownTestSuite() {
    delete s_temp;
    s_temp = nullptr;
  }

  static std::string Root() { return (s_temp->Path() / "root").string(); }

  // The ways a caller may write the root folder.
  static std::vector<std::string> RootSpellings() {
    return {Root(), Root() + "/", Backslashed(Root()), Backslashed(Root()) + "\\"};
  }

  // Full native paths of relative names under the root, sorted.
  static std::vector<std::string> Under(const std::vector<std::string>& names) {
    std::vector<std::string> out;
    out.reserve(names.size());
    for (const std::string& name : names) out.push_back((fs::path(Root()) / name).string());
    std::sort(out.begin(), out.end());
    return out;
  }

  static std::vector<std::string> Sorted(const CStringArray& list) {
    std::vector<std::string> out = corlith::test::ToStrings(list);
    std::sort(out.begin(), out.end());
    return out;
  }

  static TempFolder* s_temp;
};

TempFolder* ListingTree::s_temp = nullptr;

std::vector<std::string> TopFiles() {
  return {"a.txt",       "b.TXT",       "a.btxt",        "noext",   "with blank.txt",
          "ünïcode.txt", ".hidden.txt", "link-to-a.txt", "dangling"};
}

TEST_F(ListingTree, AllFilesByExtensionWithTheTailMatchAndItsEdges) {
  struct Row {
    const char* extension;
    BOOL recursive;
    std::vector<std::string> expected;
  };
  std::vector<std::string> everything = TopFiles();
  for (const char* deep : {".hidden-folder/inner.txt", "sub/c.txt", "sub/deeper/d.txt", "sub/deeper/e.dat",
                           "sub.txt/f.txt", "sub.txt/g.dat"}) {
    everything.emplace_back(deep);
  }
  const std::vector<std::string> topTxt = {"a.txt",       "b.TXT",       "a.btxt",       "with blank.txt",
                                           "ünïcode.txt", ".hidden.txt", "link-to-a.txt"};
  const std::vector<Row> rows = {
      {"*.*", FALSE, TopFiles()},
      {"*.*", TRUE, everything},
      // A tail match on the whole name: "txt" also takes a.btxt (kept so).
      {"txt", FALSE, topTxt},
      {"*.txt", FALSE, topTxt},
      {".TXT", FALSE, topTxt},
      {"**..txt", FALSE, topTxt},
      {"dat", TRUE, {"sub/deeper/e.dat", "sub.txt/g.dat"}},
      {"btxt", FALSE, {"a.btxt"}},
      // An extension that ends in "*" and is not "*.*" takes nothing.
      {"*", TRUE, {}},
      {"*.t*", TRUE, {}},
      // Nothing left to match: every name with a dot.
      {"",
       FALSE,
       {"a.txt", "b.TXT", "a.btxt", "with blank.txt", "ünïcode.txt", ".hidden.txt", "link-to-a.txt"}},
  };
  for (const std::string& root : RootSpellings()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(root + " extension \"" + row.extension + "\" recursive " + std::to_string(row.recursive));
      CStringArray list;
      Utility().GetAllFileListIn(root.c_str(), list, row.extension, row.recursive);
      EXPECT_EQ(Sorted(list), Under(row.expected));
    }
  }
}

TEST_F(ListingTree, AllFilesAppendsToTheListAndIgnoresWhatIsNoFolder) {
  CStringArray list;
  list.Add("kept");
  Utility().GetAllFileListIn(Root().c_str(), list, "btxt", FALSE);
  EXPECT_EQ(corlith::test::ToStrings(list), (std::vector<std::string>{"kept", Under({"a.btxt"})[0]}));
  Utility().GetAllFileListIn((Root() + "/a.txt").c_str(), list, "*.*", TRUE);
  Utility().GetAllFileListIn((Root() + "/missing").c_str(), list, "*.*", TRUE);
  EXPECT_EQ(list.GetSize(), 2);
}

TEST_F(ListingTree, SubFoldersListLinksButNeverDescendThem) {
  for (const std::string& root : RootSpellings()) {
    SCOPED_TRACE(root);
    CStringArray top;
    Utility().GetAllSubDirListIn(root.c_str(), top, FALSE);
    EXPECT_EQ(Sorted(top), Under({".hidden-folder", "sub", "sub.txt", "empty", "link-to-sub", "link-out"}));
    CStringArray all;
    Utility().GetAllSubDirListIn(root.c_str(), all, TRUE);
    EXPECT_EQ(Sorted(all),
              Under({".hidden-folder", "sub", "sub/deeper", "sub.txt", "empty", "link-to-sub", "link-out"}));
  }
}

TEST_F(ListingTree, PatternListFiltersFilesAndTheFoldersItDescends) {
  struct Row {
    const char* pattern;
    BOOL recursive;
    std::vector<std::string> expected;
  };
  const std::vector<Row> rows = {
      // sub.txt matches the pattern, so it is descended; sub does not (kept so).
      {"*.txt",
       TRUE,
       {"a.txt", "b.TXT", "with blank.txt", "ünïcode.txt", ".hidden.txt", "link-to-a.txt", "sub.txt/f.txt"}},
      {"*.txt", FALSE, {"a.txt", "b.TXT", "with blank.txt", "ünïcode.txt", ".hidden.txt", "link-to-a.txt"}},
      {"*.*",
       TRUE,
       {"a.txt", "b.TXT", "a.btxt", "noext", "with blank.txt", "ünïcode.txt", ".hidden.txt", "link-to-a.txt",
        "dangling", ".hidden-folder/inner.txt", "sub/c.txt", "sub/deeper/d.txt", "sub/deeper/e.dat",
        "sub.txt/f.txt", "sub.txt/g.dat"}},
      {"?.txt", FALSE, {"a.txt", "b.TXT"}},
      {"*.", TRUE, {"noext", "dangling"}},
      {"with blank.*", FALSE, {"with blank.txt"}},
      // ASCII letters fold, other characters compare exactly.
      {"ünïCODE.TXT", FALSE, {"ünïcode.txt"}},
      {"ÜNÏCODE.TXT", FALSE, {}},
      // A folder part in the pattern names the folder that is read.
      {"sub/*.txt", FALSE, {"sub/c.txt"}},
      {"sub\\deeper\\?.*", FALSE, {"sub/deeper/d.txt", "sub/deeper/e.dat"}},
      {"", TRUE, {}},
  };
  for (const std::string& root : RootSpellings()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(root + " pattern \"" + row.pattern + "\"");
      CStringArray list;
      BOOL recursive = row.recursive;
      Utility().GetFilePathListIn(root.c_str(), list, row.pattern, recursive);
      EXPECT_EQ(Sorted(list), Under(row.expected));
      EXPECT_EQ(recursive, row.recursive);
    }
  }
}

TEST_F(ListingTree, SearchesByNameAndByFolderPath) {
  struct FileRow {
    const char* name;
    std::string expected;  // relative to the root; "-" for nothing
  };
  // GetFilePathUnderDir reads "*.<extension>", which also filters the folders descended.
  const std::vector<FileRow> underDir = {
      {"a.txt", "a.txt"}, {"f.txt", "sub.txt/f.txt"}, {"noext", "noext"}, {"c.txt", "-"},
      {"A.TXT", "-"},     {"missing.txt", "-"},
  };
  for (const std::string& root : RootSpellings()) {
    for (const FileRow& row : underDir) {
      SCOPED_TRACE(root + " " + row.name);
      const std::string expected = row.expected == "-" ? "" : Under({row.expected})[0];
      EXPECT_EQ(Utility().GetFilePathUnderDir(root.c_str(), row.name).str(), expected);
    }
  }

  struct FolderRow {
    const char* name;
    BOOL recursive;
    std::string expected;  // relative to the root; "." the root itself; "-" nothing
  };
  const std::vector<FolderRow> holders = {
      {"a.txt", FALSE, "."},     {"d.txt", TRUE, "sub/deeper"},
      {"d.txt", FALSE, "-"},     {"inner.txt", TRUE, ".hidden-folder"},
      {"secret.txt", TRUE, "-"},  // only behind a link, which is not descended
      {"deeper", TRUE, "-"},      // a folder is not a file
  };
  for (const std::string& root : RootSpellings()) {
    for (const FolderRow& row : holders) {
      SCOPED_TRACE(root + " " + row.name);
      const std::string expected = row.expected == "-"   ? ""
                                   : row.expected == "." ? Root()
                                                         : Under({row.expected})[0];
      EXPECT_EQ(Utility().FindDirFromFileNameIn(root.c_str(), row.name, row.recursive).str(), expected);
    }
  }

  const std::vector<FolderRow> subDirs = {
      {"deep", TRUE, "sub/deeper"},
      {"deep", FALSE, "-"},
      {"empty", FALSE, "empty"},
      {"hidden", FALSE, ".hidden-folder"},
      {"nothing-like-it", TRUE, "-"},
      // A path fragment matches whichever separator it is written with.
      {"sub\\deep", TRUE, "sub/deeper"},
      {"sub/deep", TRUE, "sub/deeper"},
  };
  for (const std::string& root : RootSpellings()) {
    for (const FolderRow& row : subDirs) {
      SCOPED_TRACE(root + " " + row.name);
      const std::string expected = row.expected == "-" ? "" : Under({row.expected})[0];
      EXPECT_EQ(Utility().GetSubDirFullPath(root.c_str(), row.name, row.recursive).str(), expected);
    }
  }
  // The whole path counts: a name in the root's own path matches its first sub-folder.
  const std::string first = Utility().GetSubDirFullPath(Root().c_str(), "root", FALSE).str();
  EXPECT_EQ(first.rfind(Root() + "/", 0), 0u) << first;
}

}  // namespace
