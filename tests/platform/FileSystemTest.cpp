// File-system tasks on real temporary trees: facts of files, folders and links,
// attributes, creation and renaming, folder listings with every kind of entry, tree
// removal (deep, linked, vanishing) and block-wise comparison, with what is left on
// disk checked afterwards.
#include <corlith/platform/FileSystem.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace corlith::platform;
using corlith::test::ReadFile;
using corlith::test::TempFolder;

// Windows-style spelling of a path under the temporary folder: every "/" read as "\".
std::string Backslashed(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

mode_t PermissionsOf(const std::string& path) {
  struct stat st {};
  EXPECT_EQ(::stat(path.c_str(), &st), 0) << path;
  return st.st_mode & 07777;
}

struct Listed {
  bool isDirectory;
  bool isSymbolicLink;
  bool operator==(const Listed&) const = default;
};

std::map<std::string, Listed> ListAll(const std::string& folder, int& error) {
  std::map<std::string, Listed> seen;
  error = ListFolder(folder, [&](const ListingEntry& entry) {
    seen.emplace(std::string(entry.name), Listed{entry.isDirectory, entry.isSymbolicLink});
    return true;
  });
  return seen;
}

TEST(QueryFileFacts, DescribesFilesFoldersAndFollowedLinks) {
  TempFolder temp("facts");
  const std::string file = temp.Write("file.txt", "hello");
  fs::create_directory(temp.PathOf("folder"));
  fs::create_symlink(file, temp.PathOf("to-file"));
  fs::create_symlink(temp.PathOf("folder"), temp.PathOf("to-folder"));
  fs::create_symlink(temp.PathOf("missing"), temp.PathOf("dangling"));
  fs::create_hard_link(file, temp.PathOf("hard"));

  struct Row {
    std::string path;
    int error;
    FileKind kind;
    std::uint64_t size;
    std::string statPath;  // what stat() says the facts are about
  };
  const Row rows[] = {
      {file, 0, FileKind::Regular, 5, file},
      {Backslashed(file), 0, FileKind::Regular, 5, file},
      {temp.PathOf("folder"), 0, FileKind::Directory, 0, temp.PathOf("folder")},
      {temp.PathOf("to-file"), 0, FileKind::Regular, 5, file},
      {temp.PathOf("to-folder"), 0, FileKind::Directory, 0, temp.PathOf("folder")},
      {"/dev/null", 0, FileKind::Other, 0, "/dev/null"},
      {temp.PathOf("dangling"), ENOENT, FileKind::None, 0, ""},
      {temp.PathOf("missing"), ENOENT, FileKind::None, 0, ""},
      {temp.PathOf("file.txt/below"), ENOTDIR, FileKind::None, 0, ""},
  };
  const std::int64_t now = std::time(nullptr);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    FileFacts facts;
    ASSERT_EQ(QueryFileFacts(row.path, facts), row.error);
    EXPECT_EQ(facts.kind, row.kind);
    if (row.error != 0) {
      EXPECT_EQ(facts.inode, 0u);
      EXPECT_EQ(facts.mode, 0u);
      continue;
    }
    struct stat st {};
    ASSERT_EQ(::stat(row.statPath.c_str(), &st), 0);
    if (row.kind == FileKind::Regular) {
      EXPECT_EQ(facts.size, row.size);
    }
    EXPECT_EQ(facts.mode, st.st_mode);
    EXPECT_EQ(facts.inode, st.st_ino);
    EXPECT_EQ(facts.device, st.st_dev);
    EXPECT_EQ(facts.links, st.st_nlink);
    EXPECT_EQ(facts.modifiedTime, st.st_mtim.tv_sec);
    EXPECT_EQ(facts.accessTime, st.st_atim.tv_sec);
    EXPECT_EQ(facts.changeTime, st.st_ctim.tv_sec);
    // Birth time where recorded, else the change time: never later than either.
    EXPECT_GT(facts.creationTime, 0);
    EXPECT_LE(facts.creationTime, facts.changeTime);
    EXPECT_LE(facts.creationTime, now + 1);
    EXPECT_EQ(facts.readOnly, (st.st_mode & 0222) == 0);
  }
  FileFacts facts;
  ASSERT_EQ(QueryFileFacts(file, facts), 0);
  EXPECT_EQ(facts.links, 2u);  // file.txt and hard
}

TEST(Attributes, ReadOnlyClearsEveryWriteBitAndWritableAddsTheOwners) {
  struct Row {
    mode_t initial;
    mode_t readOnly;
    mode_t writable;
  };
  const Row rows[] = {
      {0666, 0444, 0644}, {0600, 0400, 0600}, {0755, 0555, 0755},
      {0444, 0444, 0644}, {0000, 0000, 0200}, {0622, 0400, 0600},
  };
  TempFolder temp("attr");
  const std::string file = temp.Write("f.txt", "x");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.initial);
    ASSERT_EQ(::chmod(file.c_str(), row.initial), 0);
    ASSERT_EQ(SetReadOnly(Backslashed(file), true), 0);
    EXPECT_EQ(PermissionsOf(file), row.readOnly);
    FileFacts facts;
    ASSERT_EQ(QueryFileFacts(file, facts), 0);
    EXPECT_TRUE(facts.readOnly);
    ASSERT_EQ(SetReadOnly(file, false), 0);
    EXPECT_EQ(PermissionsOf(file), row.writable);
    ASSERT_EQ(QueryFileFacts(file, facts), 0);
    EXPECT_FALSE(facts.readOnly);
  }
  EXPECT_EQ(SetReadOnly(temp.PathOf("missing"), true), ENOENT);

  // A folder takes the attribute too.
  fs::create_directory(temp.PathOf("dir"));
  ASSERT_EQ(::chmod(temp.PathOf("dir").c_str(), 0775), 0);
  ASSERT_EQ(SetReadOnly(temp.PathOf("dir"), true), 0);
  EXPECT_EQ(PermissionsOf(temp.PathOf("dir")), 0555u);
  ASSERT_EQ(SetReadOnly(temp.PathOf("dir"), false), 0);
  EXPECT_EQ(PermissionsOf(temp.PathOf("dir")), 0755u);
}

TEST(Attributes, WritableFollowsPermissionsAndHiddenOnlyChecksExistence) {
  TempFolder temp("writable");
  const std::string file = temp.Write("f.txt", "x");
  EXPECT_TRUE(IsWritable(file));
  EXPECT_TRUE(IsWritable(Backslashed(temp.Path().string())));
  EXPECT_FALSE(IsWritable(temp.PathOf("missing")));
  ASSERT_EQ(SetReadOnly(file, true), 0);
  // The super-user may write whatever the permission bits say.
  if (::geteuid() != 0) {
    EXPECT_FALSE(IsWritable(file));
  }

  EXPECT_EQ(SetHidden(Backslashed(file)), 0);
  EXPECT_EQ(SetHidden(temp.Path().string()), 0);
  EXPECT_EQ(SetHidden(temp.PathOf("missing")), ENOENT);
  // No renaming to a dot-name, no change of content or mode.
  EXPECT_EQ(ReadFile(file), "x");
  EXPECT_EQ(PermissionsOf(file), 0444u);
  EXPECT_FALSE(fs::exists(temp.PathOf(".f.txt")));
}

TEST(FolderTasks, MakeRenameAndRemoveFileReportTheSystemsErrors) {
  TempFolder temp("tasks");
  const std::string root = temp.Path().string();
  const std::string file = temp.Write("file.txt", "content");

  EXPECT_EQ(MakeFolder(Backslashed(root + "/new")), 0);
  EXPECT_TRUE(fs::is_directory(root + "/new"));
  EXPECT_EQ(MakeFolder(root + "/new"), EEXIST);
  EXPECT_EQ(MakeFolder(file), EEXIST);
  EXPECT_EQ(MakeFolder(root + "/absent/child"), ENOENT);  // one level only
  EXPECT_FALSE(fs::exists(root + "/absent"));

  EXPECT_EQ(RenamePath(Backslashed(file), Backslashed(root + "/new/moved.txt")), 0);
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(ReadFile(root + "/new/moved.txt"), "content");
  temp.Write("other.txt", "other");
  EXPECT_EQ(RenamePath(root + "/other.txt", root + "/new/moved.txt"), 0);  // replaces a file
  EXPECT_EQ(ReadFile(root + "/new/moved.txt"), "other");
  EXPECT_EQ(RenamePath(root + "/new", root + "/renamed"), 0);
  EXPECT_TRUE(fs::is_regular_file(root + "/renamed/moved.txt"));
  EXPECT_EQ(RenamePath(root + "/nothing", root + "/x"), ENOENT);

  fs::create_symlink(root + "/renamed/moved.txt", root + "/link");
  EXPECT_EQ(RemoveFilePath(Backslashed(root + "/link")), 0);
  EXPECT_FALSE(fs::is_symlink(root + "/link"));
  EXPECT_EQ(ReadFile(root + "/renamed/moved.txt"), "other");  // the target stays
  EXPECT_EQ(RemoveFilePath(root + "/renamed"), EISDIR);
  EXPECT_EQ(RemoveFilePath(root + "/renamed/moved.txt"), 0);
  EXPECT_EQ(RemoveFilePath(root + "/renamed/moved.txt"), ENOENT);
}

class ListFolderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_root = m_temp.PathOf("tree");
    fs::create_directory(m_root);
    for (const char* name : {"plain.txt", "with blank.doc", "no extension", ".hidden", "\xC3\xA4rger.txt",
                             "UPPER.TXT", "a.b.c"}) {
      corlith::test::WriteFile(m_root + "/" + name, name);
    }
    fs::create_directory(m_root + "/sub folder");
    fs::create_directory(m_root + "/.hidden dir");
    corlith::test::WriteFile(m_root + "/sub folder/inner.txt", "inner");
    fs::create_directory(m_temp.PathOf("outside"));
    fs::create_symlink(m_root + "/plain.txt", m_root + "/link to file");
    fs::create_symlink(m_temp.PathOf("outside"), m_root + "/link to folder");
    fs::create_symlink(m_root + "/nowhere", m_root + "/dangling");
  }

  TempFolder m_temp{"list"};
  std::string m_root;
};

TEST_F(ListFolderTest, ReportsEveryEntryWithItsKindAndNothingElse) {
  const std::map<std::string, Listed> expected = {
      {"plain.txt", {false, false}},   {"with blank.doc", {false, false}},   {"no extension", {false, false}},
      {".hidden", {false, false}},     {"\xC3\xA4rger.txt", {false, false}}, {"UPPER.TXT", {false, false}},
      {"a.b.c", {false, false}},       {"sub folder", {true, false}},        {".hidden dir", {true, false}},
      {"link to file", {false, true}}, {"link to folder", {true, true}},     {"dangling", {false, true}},
  };
  for (const std::string& spelling :
       {m_root, Backslashed(m_root), m_root + "/", Backslashed(m_root) + "\\"}) {
    SCOPED_TRACE(spelling);
    int error = -1;
    const std::map<std::string, Listed> seen = ListAll(spelling, error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(seen, expected);
  }
  // Through a link to a folder the target's entries are listed.
  int error = -1;
  corlith::test::WriteFile(m_temp.PathOf("outside/far.txt"), "far");
  EXPECT_EQ(ListAll(m_root + "/link to folder", error),
            (std::map<std::string, Listed>{{"far.txt", {false, false}}}));
  EXPECT_EQ(error, 0);
}

TEST_F(ListFolderTest, StopsWhenAskedAndFailsOnlyForTheFolderItself) {
  int calls = 0;
  EXPECT_EQ(ListFolder(m_root, [&](const ListingEntry&) { return ++calls < 3; }), 0);
  EXPECT_EQ(calls, 3);

  struct Row {
    std::string path;
    int error;
  };
  const Row rows[] = {
      {m_root + "/missing", ENOENT},
      {m_root + "/plain.txt", ENOTDIR},
      {m_root + "/dangling", ENOENT},
      {"", ENOENT},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    calls = 0;
    EXPECT_EQ(ListFolder(row.path, [&](const ListingEntry&) { return ++calls, true; }), row.error);
    EXPECT_EQ(calls, 0);
  }
  int error = -1;
  EXPECT_TRUE(ListAll(m_root + "/.hidden dir", error).empty());
  EXPECT_EQ(error, 0);
}

TEST_F(ListFolderTest, EntriesThatVanishDuringTheListingDoNotFailIt) {
  // The first entry seen removes everything else, the link's target folder included;
  // the listing goes on, reports only names that were there, and a link reported after
  // its target went is a file.
  std::set<std::string> original;
  for (const auto& entry : fs::directory_iterator(m_root)) original.insert(entry.path().filename().string());
  std::vector<std::string> reported;
  bool removed = false;
  bool linkAfterRemoval = false;
  bool linkToFolderIsDirectory = true;
  const int error = ListFolder(m_root, [&](const ListingEntry& entry) {
    const std::string name(entry.name);
    reported.push_back(name);
    if (name == "link to folder" && removed) {
      linkAfterRemoval = true;
      linkToFolderIsDirectory = entry.isDirectory;
    }
    if (!removed) {
      removed = true;
      fs::remove_all(m_temp.PathOf("outside"));
      for (const std::string& other : original) {
        if (other != name && other != "link to folder") fs::remove_all(m_root + "/" + other);
      }
    }
    return true;
  });
  EXPECT_EQ(error, 0);
  ASSERT_FALSE(reported.empty());
  for (const std::string& name : reported) EXPECT_EQ(original.count(name), 1u) << name;
  EXPECT_EQ(std::set<std::string>(reported.begin(), reported.end()).size(), reported.size());
  if (linkAfterRemoval) {
    EXPECT_FALSE(linkToFolderIsDirectory);
  }
}

// A chain of `depth` folders named `name`, made relative to open handles so that no
// full path is ever spelt out; a file at every level.
void MakeDeepTree(const std::string& top, const std::string& name, int depth) {
  ASSERT_EQ(::mkdir(top.c_str(), 0777), 0);
  int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_GE(fd, 0);
  for (int level = 0; level < depth; ++level) {
    const int file = ::openat(fd, "f", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    ASSERT_GE(file, 0);
    ::close(file);
    ASSERT_EQ(::mkdirat(fd, name.c_str(), 0777), 0);
    const int child = ::openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::close(fd);
    fd = child;
    ASSERT_GE(fd, 0);
  }
  ::close(fd);
}

TEST(RemoveTree, RemovesWholeTreesOfAnyShape) {
  TempFolder temp("remove");
  const std::string root = temp.Path().string();

  // Files of every kind, hidden and read-only ones, nested folders, blanks.
  fs::create_directories(root + "/full/a b/c/.d");
  corlith::test::WriteFile(root + "/full/a b/c/.d/.hidden", "h");
  corlith::test::WriteFile(root + "/full/a b/read only.txt", "r");
  ::chmod((root + "/full/a b/read only.txt").c_str(), 0444);
  corlith::test::WriteFile(root + "/full/top.txt", "t");
  for (int i = 0; i < 300; ++i) fs::create_directory(root + "/full/wide" + std::to_string(i));
  ASSERT_EQ(::mkfifo((root + "/full/a b/fifo").c_str(), 0600), 0);
  EXPECT_EQ(RemoveTree(Backslashed(root + "/full")), 0);
  EXPECT_FALSE(fs::exists(root + "/full"));

  // A closing separator, an empty folder, and a file standing at the top.
  fs::create_directory(root + "/empty");
  EXPECT_EQ(RemoveTree(root + "/empty\\"), 0);
  EXPECT_FALSE(fs::exists(root + "/empty"));
  temp.Write("alone.txt", "x");
  EXPECT_EQ(RemoveTree(root + "/alone.txt"), 0);
  EXPECT_FALSE(fs::exists(root + "/alone.txt"));

  struct Row {
    std::string path;
    int error;
  };
  const Row rows[] = {
      {root + "/missing", ENOENT}, {"/", EINVAL},         {"\\", EINVAL}, {".", EINVAL},
      {root + "/..", EINVAL},      {root + "/.", EINVAL}, {"", ENOENT},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(RemoveTree(row.path), row.error);
  }
  EXPECT_TRUE(fs::is_directory(root));
}

TEST(RemoveTree, NeverFollowsSymbolicLinks) {
  TempFolder temp("remove-links");
  const std::string root = temp.Path().string();
  fs::create_directories(root + "/outside/deeper");
  corlith::test::WriteFile(root + "/outside/keep.txt", "keep");
  corlith::test::WriteFile(root + "/outside/deeper/keep2.txt", "keep2");

  fs::create_directories(root + "/tree/sub");
  fs::create_directory_symlink(root + "/outside", root + "/tree/sub/to-outside");
  fs::create_symlink(root + "/outside/keep.txt", root + "/tree/to-file");
  fs::create_symlink(root + "/nowhere", root + "/tree/dangling");
  EXPECT_EQ(RemoveTree(root + "/tree"), 0);
  EXPECT_FALSE(fs::exists(fs::symlink_status(root + "/tree")));

  // A link at the top goes alone, also when written with a closing separator.
  fs::create_directory_symlink(root + "/outside", root + "/top-link");
  EXPECT_EQ(RemoveTree(root + "/top-link/"), 0);
  EXPECT_FALSE(fs::exists(fs::symlink_status(root + "/top-link")));

  EXPECT_EQ(ReadFile(root + "/outside/keep.txt"), "keep");
  EXPECT_EQ(ReadFile(root + "/outside/deeper/keep2.txt"), "keep2");
}

TEST(RemoveTree, RemovesTreesDeeperThanThePathLimitAndTheHandleBudget) {
  TempFolder temp("remove-deep");
  struct Row {
    std::string name;
    int depth;
  };
  // Long names take the full path beyond PATH_MAX; the thin chain goes far deeper
  // than any number of handles kept open at once.
  const Row rows[] = {{std::string(200, 'n'), 40}, {"dddd", 1100}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.depth);
    const std::string top = temp.PathOf("deep");
    MakeDeepTree(top, row.name, row.depth);
    ASSERT_GT(row.depth * static_cast<int>(row.name.size() + 1), 5000);
    EXPECT_EQ(RemoveTree(top), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(top)));
  }
}

// RemoveTree in a child process that is not the super-user (the super-user's child
// becomes "nobody", owning everything under `top`), so permission bits really stop it.
// Returns the child's result, or -1 when it cannot run without privileges.
int RemoveTreeUnprivileged(const std::string& top) {
  constexpr uid_t kNobody = 65534;
  const bool root = ::geteuid() == 0;
  if (root) {
    for (const auto& entry : fs::recursive_directory_iterator(top)) {
      if (::lchown(entry.path().c_str(), kNobody, kNobody) != 0) return -1;
    }
    if (::lchown(top.c_str(), kNobody, kNobody) != 0) return -1;
  }
  const pid_t child = ::fork();
  if (child < 0) return -1;
  if (child == 0) {
    if (root && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(255);
    ::_exit(RemoveTree(top) & 0x7F);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == 255) return -1;
  return WEXITSTATUS(status);
}

TEST(RemoveTree, AFolderItCannotEmptyStopsItWithTheError) {
  TempFolder temp("remove-denied");
  const std::string root = temp.Path().string();
  fs::create_directories(root + "/tree/locked");
  fs::create_directories(root + "/tree/open");
  corlith::test::WriteFile(root + "/tree/locked/stuck.txt", "s");
  corlith::test::WriteFile(root + "/tree/open/gone.txt", "g");
  // Reachable for the unprivileged child, whatever the temporary folder's mode.
  ASSERT_EQ(::chmod(root.c_str(), 0777), 0);
  ASSERT_EQ(::chmod((root + "/tree/locked").c_str(), 0555), 0);
  const int result = RemoveTreeUnprivileged(root + "/tree");
  ::chmod((root + "/tree/locked").c_str(), 0755);
  if (result == -1) GTEST_SKIP() << "no unprivileged child could be started";
  EXPECT_EQ(result, EACCES);
  EXPECT_TRUE(fs::exists(root + "/tree/locked/stuck.txt"));
}

TEST(CompareFileContents, ComparesBlockByBlockAndSaysWhyItCannot) {
  TempFolder temp("compare");
  const std::size_t big = (std::size_t{2} << 20) + 17;  // crosses the block size twice
  std::string bytes(big, '\0');
  for (std::size_t i = 0; i < big; ++i) bytes[i] = static_cast<char>(i * 131 % 251);
  std::string lastDiffers = bytes;
  lastDiffers.back() ^= 1;
  std::string firstDiffers = bytes;
  firstDiffers.front() ^= 1;
  std::string atBoundary(std::size_t{1} << 20, 'b');
  std::string boundaryDiffers = atBoundary;
  boundaryDiffers.back() = 'c';

  temp.Write("big", bytes);
  temp.Write("big-copy", bytes);
  temp.Write("big-last", lastDiffers);
  temp.Write("big-first", firstDiffers);
  temp.Write("big-shorter", bytes.substr(0, big - 1));
  temp.Write("block", atBoundary);
  temp.Write("block-copy", atBoundary);
  temp.Write("block-last", boundaryDiffers);
  temp.Write("empty", "");
  temp.Write("empty2", "");
  temp.Write("small", "abc");
  temp.Write("small-upper", "ABC");
  fs::create_hard_link(temp.PathOf("big"), temp.PathOf("big-hard"));
  fs::create_directory(temp.PathOf("folder"));

  struct Row {
    const char* a;
    const char* b;
    int error;
    bool equal;
  };
  const Row rows[] = {
      {"big", "big-copy", 0, true},        {"big", "big", 0, true},
      {"big", "big-hard", 0, true},        {"big", "big-last", 0, false},
      {"big", "big-first", 0, false},      {"big", "big-shorter", 0, false},
      {"big-shorter", "big", 0, false},    {"block", "block-copy", 0, true},
      {"block", "block-last", 0, false},   {"empty", "empty2", 0, true},
      {"empty", "small", 0, false},        {"small", "small-upper", 0, false},
      {"small", "missing", ENOENT, false}, {"missing", "small", ENOENT, false},
      {"small", "folder", EISDIR, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.a) + " vs " + row.b);
    bool equal = !row.equal;
    const bool untouched = equal;
    EXPECT_EQ(CompareFileContents(Backslashed(temp.PathOf(row.a)), temp.PathOf(row.b), equal), row.error);
    EXPECT_EQ(equal, row.error == 0 ? row.equal : untouched);
  }
}

}  // namespace

// A NUL byte would make the system act on the text before it: such a path names nothing.
TEST(FolderTasks, APathWithANulByteNamesNothing) {
  TempFolder temp("nul");
  const std::string root = temp.Path().string();
  const std::string file = temp.Write("x", "kept");
  const std::string withNul = file + std::string("\0/y", 3);
  FileFacts facts;
  bool equal = false;
  EXPECT_EQ(QueryFileFacts(withNul, facts), EINVAL);
  EXPECT_EQ(RemoveTree(withNul), EINVAL);
  EXPECT_EQ(RemoveFilePath(withNul), EINVAL);
  EXPECT_EQ(RenamePath(withNul, root + "/z"), EINVAL);
  EXPECT_EQ(SetReadOnly(withNul, true), EINVAL);
  EXPECT_EQ(CompareFileContents(withNul, file, equal), EINVAL);
  EXPECT_EQ(ListFolder(root + std::string("\0", 1), [](const ListingEntry&) { return true; }), EINVAL);
  EXPECT_FALSE(IsWritable(withNul));
  EXPECT_EQ(ReadFile(file), "kept");
  EXPECT_FALSE(fs::exists(root + "/z"));
}
