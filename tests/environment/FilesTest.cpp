// KTUtility's existence, attribute, size, time, copy, rename and delete members on real
// folders, and their faults: files that vanish, folders the process may not write (as
// an unprivileged child, since permission bits do not stop root), and copies whose
// writes fail (a child with a small file-size limit, which the copy process inherits).
#include <corlith/environment/Utility.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <grp.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::ChildProcess;
using corlith::test::ReadFile;
using corlith::test::StartThisTest;
using corlith::test::TempFolder;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

constexpr const char* kRootVariable = "CORLITH_ENVFILES_ROOT";

// The folder the parent prepared, in a child started by StartThisTest; null in the parent.
const char* ChildRoot() { return std::getenv(kRootVariable); }

std::string Backslashed(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

std::string Pattern(std::size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  unsigned state = seed;
  for (char& c : bytes) {
    state = state * 1103515245u + 12345u;
    c = static_cast<char>(state >> 24);
  }
  return bytes;
}

// Writes a file under the folder, creating the folders on its way.
std::string Put(const TempFolder& temp, const std::string& name, std::string_view bytes) {
  fs::create_directories((temp.Path() / name).parent_path());
  return temp.Write(name, bytes);
}

fs::perms Permissions(const fs::path& path) { return fs::symlink_status(path).permissions(); }

std::int64_t Seconds(fs::file_time_type time) {
  return std::chrono::duration_cast<std::chrono::seconds>(
             std::chrono::file_clock::to_sys(time).time_since_epoch())
      .count();
}

// Drops root's privileges for the rest of a child's life, so that permission bits
// bind it as they bind a person's process. False when that is impossible.
bool BecomeUnprivileged() {
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0 && ::geteuid() != 0;
}

// --- existence and kind -------------------------------------------------------------

TEST(FileKinds, FilesFoldersLinksAndNothingWhateverTheSeparators) {
  TempFolder temp("kinds");
  const std::string file = temp.Write("file.txt", "abc");
  const std::string folder = temp.PathOf("folder");
  fs::create_directory(folder);
  fs::create_symlink(file, temp.PathOf("file-link"));
  fs::create_symlink(folder, temp.PathOf("folder-link"));
  fs::create_symlink(temp.PathOf("nowhere"), temp.PathOf("dangling"));
  ASSERT_EQ(::mkfifo(temp.PathOf("fifo").c_str(), 0600), 0);

  struct Row {
    std::string path;
    bool dir;
    bool file;
    int stat;
  };
  const std::vector<Row> rows = {
      {file, false, true, 0},
      {Backslashed(file), false, true, 0},
      {folder, true, false, 0},
      {folder + "/", true, false, 0},
      {folder + "\\\\", true, false, 0},
      {Backslashed(folder), true, false, 0},
      {temp.PathOf("file-link"), false, true, 0},
      {temp.PathOf("folder-link"), true, false, 0},
      {temp.PathOf("dangling"), false, false, -1},
      {temp.PathOf("missing"), false, false, -1},
      {temp.PathOf("fifo"), false, false, 0},
      {"/", true, false, 0},
      {"", false, false, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().IsDir(row.path.c_str()), row.dir);
    EXPECT_EQ(Utility().IsFile(row.path.c_str()), row.file);
    KTStat64 stat;
    stat.st_size = 77;
    EXPECT_EQ(Utility().GetStatInfo(row.path.c_str(), stat), row.stat);
    if (row.stat != 0) {
      EXPECT_EQ(stat.st_size, 0) << "a failed status call leaves the record zero-filled";
    }
  }
}

TEST(FileStatus, RecordsSizeModeAndTimes) {
  TempFolder temp("status");
  const std::string file = temp.Write("data.bin", Pattern(12345, 1));
  const auto when =
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1'600'000'000)));
  fs::last_write_time(file, when);

  KTStat64 stat;
  ASSERT_EQ(Utility().GetStatInfo(file.c_str(), stat), 0);
  EXPECT_EQ(stat.st_size, 12345);
  EXPECT_EQ(stat.st_mode & 0xF000, 0x8000);
  EXPECT_EQ(stat.st_mtime64, 1'600'000'000);
  EXPECT_EQ(stat.st_nlink, 1);
  EXPECT_EQ(Utility().GetFileModifiedTime(file.c_str()), 1'600'000'000);
  // Creation is the birth time where recorded, else the status change: never before the
  // file was made in this test, never 0.
  const auto now =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
          .count();
  EXPECT_GT(Utility().GetFileCreationTime(file.c_str()), now - 600);
  EXPECT_LE(Utility().GetFileCreationTime(file.c_str()), now + 1);
  EXPECT_EQ(Utility().GetFileCreationTime(temp.PathOf("missing").c_str()), 0);
  EXPECT_EQ(Utility().GetFileModifiedTime(temp.PathOf("missing").c_str()), 0);

  KTStat64 folder;
  ASSERT_EQ(Utility().GetStatInfo((temp.Path().string() + "/").c_str(), folder), 0);
  EXPECT_EQ(folder.st_mode & 0xF000, 0x4000);
}

TEST(FileSize, LowThirtyTwoBitsAndTheFailureValues) {
  TempFolder temp("sizes");
  const std::string small = temp.Write("small.bin", Pattern(12345, 2));
  const std::string empty = temp.Write("empty.bin", "");
  // Sparse: 4 GiB and 7 bytes cost no disk space.
  const std::string huge = temp.Write("huge.bin", "");
  fs::resize_file(huge, (std::uint64_t{1} << 32) + 7);
  fs::create_directory(temp.PathOf("folder"));

  struct Row {
    std::string path;
    DWORD size;
    DWORD sizeInfo;
  };
  const std::vector<Row> rows = {
      {small, 12345, 12345},
      {Backslashed(small), 12345, 12345},
      {empty, 0, 0},
      {huge, 7, 7},  // wraps, deliberately kept
      {temp.PathOf("folder"), 0, 0},
      {temp.PathOf("missing"), 0, 0xFFFFFFFF},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().GetFileSize(row.path.c_str()), row.size);
    EXPECT_EQ(Utility().GetFileSizeInfo(row.path.c_str()), row.sizeInfo);
  }
}

TEST(SameFile, EqualOnlyForTwoRegularFilesWithTheSameBytes) {
  TempFolder temp("same");
  const std::string big = Pattern((std::size_t{3} << 20) + 17, 3);  // several comparison blocks
  std::string middle = big;
  middle[middle.size() / 2] ^= 1;
  std::string last = big;
  last.back() ^= 1;
  const std::string a = temp.Write("a.bin", big);
  const std::string b = temp.Write("b.bin", big);
  const std::string m = temp.Write("middle.bin", middle);
  const std::string l = temp.Write("last.bin", last);
  const std::string shorter = temp.Write("short.bin", big.substr(0, big.size() - 1));
  const std::string e1 = temp.Write("e1", "");
  const std::string e2 = temp.Write("e2", "");
  fs::create_directory(temp.PathOf("d1"));
  fs::create_directory(temp.PathOf("d2"));
  fs::create_symlink(a, temp.PathOf("link-to-a"));

  struct Row {
    std::string a;
    std::string b;
    int expected;
  };
  const std::vector<Row> rows = {
      {a, b, 1},
      {a, Backslashed(b), 1},
      {a, a, 1},
      {a, temp.PathOf("link-to-a"), 1},
      {e1, e2, 1},
      {a, m, 0},
      {a, l, 0},
      {a, shorter, 0},
      {a, temp.PathOf("missing"), 0},
      {temp.PathOf("missing"), temp.PathOf("missing2"), 0},
      {temp.PathOf("d1"), temp.PathOf("d2"), 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.a + " / " + row.b);
    EXPECT_EQ(Utility().IsSameFile(row.a.c_str(), row.b.c_str()), row.expected);
    EXPECT_EQ(Utility().IsSameFile(row.b.c_str(), row.a.c_str()), row.expected);
  }
}

TEST(ReadOnlyAttribute, NoWriteBitForAnyoneAndClearingAddsTheOwnersOnly) {
  TempFolder temp("readonly");
  const std::string file = temp.Write("locked.txt", "x");
  const auto when =
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1'500'000'000)));
  fs::last_write_time(file, when);
  fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  const std::string writable = temp.Write("open.txt", "x");

  EXPECT_TRUE(Utility().IsReadOnlyFile(file.c_str()));
  EXPECT_FALSE(Utility().IsReadOnlyFile(writable.c_str()));
  EXPECT_FALSE(Utility().IsReadOnlyFile(temp.PathOf("missing").c_str()));

  Utility().RemoveFileAttribute_ReadOnly(file.c_str());
  EXPECT_FALSE(Utility().IsReadOnlyFile(file.c_str()));
  EXPECT_EQ(Permissions(file),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read);
  EXPECT_EQ(Seconds(fs::last_write_time(file)), 1'500'000'000) << "times are kept";

  // A file that is not read-only is left exactly as it is.
  fs::permissions(writable, fs::perms::owner_all | fs::perms::group_write);
  Utility().RemoveFileAttribute_ReadOnly(writable.c_str());
  EXPECT_EQ(Permissions(writable), fs::perms::owner_all | fs::perms::group_write);

  // POSIX has no hidden attribute: nothing changes.
  const fs::perms before = Permissions(temp.Path());
  Utility().ChangeDirAttributeToHidden(temp.Path().c_str());
  EXPECT_EQ(Permissions(temp.Path()), before);
}

// --- rename and delete --------------------------------------------------------------

TEST(Rename, FoldersAndFilesAndTheFailures) {
  TempFolder temp("rename");
  fs::create_directories(temp.Path() / "old" / "inner");
  temp.Write("old/inner/f.txt", "content");
  temp.Write("file.txt", "x");

  EXPECT_EQ(Utility().RenameDirectory(temp.PathOf("old").c_str(), Backslashed(temp.PathOf("new")).c_str()),
            1);
  EXPECT_FALSE(fs::exists(temp.Path() / "old"));
  EXPECT_EQ(ReadFile(temp.Path() / "new" / "inner" / "f.txt"), "content");

  EXPECT_EQ(Utility().RenameDirectory(temp.PathOf("file.txt").c_str(), temp.PathOf("moved.txt").c_str()), 1);
  EXPECT_EQ(ReadFile(temp.Path() / "moved.txt"), "x");

  EXPECT_EQ(Utility().RenameDirectory(temp.PathOf("missing").c_str(), temp.PathOf("other").c_str()), 0);
  EXPECT_EQ(Utility().RenameDirectory(temp.PathOf("moved.txt").c_str(), temp.PathOf("no/such/x").c_str()), 0);
  EXPECT_TRUE(fs::exists(temp.Path() / "moved.txt"));
}

// A tree with what a deletion must take: hidden and read-only entries, an empty and a
// read-only folder, and links in and out of the tree.
void MakeAwkwardTree(const fs::path& root, const fs::path& outside) {
  fs::create_directories(root / "sub" / "empty");
  fs::create_directories(root / ".hidden-folder");
  fs::create_directories(outside);
  corlith::test::WriteFile(root / ".hidden", "h");
  corlith::test::WriteFile(root / "sub" / "locked.txt", "r");
  fs::permissions(root / "sub" / "locked.txt", fs::perms::owner_read);
  corlith::test::WriteFile(root / ".hidden-folder" / "f", "f");
  corlith::test::WriteFile(outside / "keep.txt", "keep");
  fs::create_symlink(outside, root / "link-out");
  fs::create_symlink(outside / "keep.txt", root / "sub" / "link-file");
}

TEST(DeleteFolder, RemovesEverythingButFollowsNoLink) {
  TempFolder temp("delete");
  const fs::path root = temp.Path() / "tree";
  for (const std::string& how : {root.string(), root.string() + "/", Backslashed(root.string()) + "\\"}) {
    SCOPED_TRACE(how);
    MakeAwkwardTree(root, temp.Path() / "outside");
    Utility().DeleteDirectory(how.c_str());
    EXPECT_FALSE(fs::exists(fs::symlink_status(root)));
    EXPECT_EQ(ReadFile(temp.Path() / "outside" / "keep.txt"), "keep") << "a link's target is never removed";
  }

  // A link to a folder is removed as a link; the folder stays.
  fs::create_symlink(temp.Path() / "outside", temp.Path() / "link");
  Utility().DeleteDirectory(temp.PathOf("link").c_str());
  EXPECT_FALSE(fs::exists(fs::symlink_status(temp.Path() / "link")));
  EXPECT_EQ(ReadFile(temp.Path() / "outside" / "keep.txt"), "keep");

  // Missing: nothing happens, nothing else is touched.
  Utility().DeleteDirectory(temp.PathOf("missing").c_str());
  EXPECT_TRUE(fs::exists(temp.Path() / "outside"));
  // A path that holds a NUL byte names nothing, not the text before the NUL.
  Utility().DeleteDirectory(CString((temp.PathOf("outside") + std::string(1, '\0') + "x").c_str(),
                                    static_cast<int>(temp.PathOf("outside").size() + 2)));
  EXPECT_TRUE(fs::exists(temp.Path() / "outside" / "keep.txt"));
}

TEST(DeleteFolder, PathsBeyondTheOriginalLimit) {
  TempFolder temp("long");
  fs::path deep = temp.Path();
  while (deep.string().size() < 600) deep /= std::string(60, 'd');
  fs::create_directories(deep);
  corlith::test::WriteFile(deep / "f.txt", "x");
  const fs::path top = temp.Path() / std::string(60, 'd');
  Utility().DeleteDirectory(top.c_str());
  EXPECT_FALSE(fs::exists(top));
}

TEST(DeleteFolderInThread, TheHandleWaitsForTheDeletion) {
  TempFolder temp("thread");
  const fs::path root = temp.Path() / "tree";
  MakeAwkwardTree(root, temp.Path() / "outside");
  for (int i = 0; i < 200; ++i) corlith::test::WriteFile(root / ("f" + std::to_string(i)), "x");

  corlith::KTThreadHandle handle = Utility().DeleteDirectoryInThread(root.c_str());
  ASSERT_TRUE(handle.Valid());
  handle.Wait();
  EXPECT_FALSE(fs::exists(root));
  EXPECT_TRUE(handle.WaitFor(std::chrono::milliseconds(0)));
  EXPECT_EQ(ReadFile(temp.Path() / "outside" / "keep.txt"), "keep");

  // A moved handle carries the deletion; the moved-from one has none and never waits.
  MakeAwkwardTree(root, temp.Path() / "outside");
  corlith::KTThreadHandle first = Utility().DeleteDirectoryInThread(root.c_str());
  corlith::KTThreadHandle second = std::move(first);
  EXPECT_FALSE(first.Valid());  // NOLINT(bugprone-use-after-move): the moved-from state is the point
  EXPECT_TRUE(first.WaitFor(std::chrono::milliseconds(0)));
  EXPECT_TRUE(second.WaitFor(std::chrono::seconds(30)));
  EXPECT_FALSE(fs::exists(root));

  // Dropping the handle does not stop the deletion.
  MakeAwkwardTree(root, temp.Path() / "outside");
  { const corlith::KTThreadHandle dropped = Utility().DeleteDirectoryInThread(root.c_str()); }
  for (int i = 0; i < 3000 && fs::exists(fs::symlink_status(root)); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_FALSE(fs::exists(fs::symlink_status(root)));

  // A missing folder: the handle still ends.
  EXPECT_TRUE(
      Utility().DeleteDirectoryInThread(temp.PathOf("missing").c_str()).WaitFor(std::chrono::seconds(30)));
  const corlith::KTThreadHandle none;
  EXPECT_FALSE(none.Valid());
  none.Wait();
}

// --- copies -------------------------------------------------------------------------

// Every entry under root, relative, with a mark for its kind, for comparing two trees.
std::vector<std::string> Entries(const fs::path& root) {
  std::vector<std::string> out;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const fs::file_status status = entry.symlink_status();
    std::string kind = fs::is_symlink(status) ? "L" : fs::is_directory(status) ? "D" : "F";
    out.push_back(kind + " " + fs::relative(entry.path(), root).string());
  }
  std::sort(out.begin(), out.end());
  return out;
}

TEST(CopyFolder, WaitedCopyTakesHiddenReadOnlyEmptyAndLinksAndOverwrites) {
  TempFolder temp("copy");
  const fs::path src = temp.Path() / "src";
  MakeAwkwardTree(src, temp.Path() / "outside");
  corlith::test::WriteFile(src / "sub" / "data.bin", Pattern(200'000, 4));
  fs::last_write_time(
      src / "sub" / "data.bin",
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1'400'000'000))));
  // The destination exists and holds a read-only file of the same name: it is replaced.
  const fs::path dst = temp.Path() / "dst";
  fs::create_directories(dst / "sub");
  corlith::test::WriteFile(dst / "sub" / "locked.txt", "old and read-only");
  fs::permissions(dst / "sub" / "locked.txt", fs::perms::owner_read);
  corlith::test::WriteFile(dst / "unrelated.txt", "stays");

  Utility().WaitCopyDirectoryContents(Backslashed(src.string()).c_str(), (dst.string() + "/").c_str());

  std::vector<std::string> expected = Entries(src);
  expected.push_back("F unrelated.txt");
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(Entries(dst), expected);
  EXPECT_EQ(ReadFile(dst / "sub" / "locked.txt"), "r");
  EXPECT_EQ(Permissions(dst / "sub" / "locked.txt"), fs::perms::owner_read);
  EXPECT_EQ(Utility().IsSameFile((src / "sub" / "data.bin").c_str(), (dst / "sub" / "data.bin").c_str()), 1);
  EXPECT_EQ(Seconds(fs::last_write_time(dst / "sub" / "data.bin")), 1'400'000'000);
  EXPECT_EQ(fs::read_symlink(dst / "link-out"), temp.Path() / "outside");
  EXPECT_TRUE(fs::is_directory(dst / "sub" / "empty"));
  EXPECT_FALSE(fs::exists(dst / "src")) << "the contents are copied, not the folder";
}

TEST(CopyFolder, CreatesTheDestinationAndIgnoresAMissingSource) {
  TempFolder temp("copydst");
  Put(temp, "src/a.txt", "a");
  const fs::path dst = temp.Path() / "x" / "y" / "z";
  Utility().WaitCopyDirectoryContents(temp.PathOf("src").c_str(), dst.c_str());
  EXPECT_EQ(ReadFile(dst / "a.txt"), "a");

  Utility().WaitCopyDirectoryContents(temp.PathOf("missing").c_str(), temp.PathOf("never").c_str());
  EXPECT_FALSE(fs::exists(temp.Path() / "never")) << "a missing source creates no destination";

  // A file as the source is copied into the destination folder.
  Utility().WaitCopyDirectoryContents(temp.PathOf("src/a.txt").c_str(), temp.PathOf("single").c_str());
  EXPECT_EQ(ReadFile(temp.Path() / "single" / "a.txt"), "a");
}

TEST(CopyFolder, BackgroundCopiesAllFinish) {
  TempFolder temp("background");
  for (int i = 0; i < 50; ++i)
    Put(temp, "src/f" + std::to_string(i), Pattern(10'000, static_cast<unsigned>(i)));
  constexpr int kCopies = 12;
  for (int i = 0; i < kCopies; ++i) {
    Utility().CopyDirectoryContents(temp.PathOf("src").c_str(),
                                    temp.PathOf("dst" + std::to_string(i)).c_str());
  }
  // Each copy lands complete; nothing ended a copy that was still running.
  for (int i = 0; i < kCopies; ++i) {
    SCOPED_TRACE(i);
    const fs::path last = temp.Path() / ("dst" + std::to_string(i));
    bool complete = false;
    for (int wait = 0; wait < 3000 && !complete; ++wait) {
      complete = fs::exists(last) && Entries(last) == Entries(temp.Path() / "src");
      for (int f = 0; complete && f < 50; ++f) {
        const std::string name = "/f" + std::to_string(f);
        complete =
            Utility().IsSameFile((temp.PathOf("src") + name).c_str(), (last.string() + name).c_str()) == 1;
      }
      if (!complete) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(complete);
  }
}

// --- faults -------------------------------------------------------------------------

TEST(CopyFaults, WritesThatFailLeaveNoCopyThatLooksComplete) {
  if (const char* root = ChildRoot()) {
    // The child: files may not grow beyond 64 KiB, and writing past that fails with
    // EFBIG here (the copy process gets the signal's default action: it ends).
    std::signal(SIGXFSZ, SIG_IGN);
    constexpr rlim_t kLimit = rlim_t{64} * 1024;
    const rlimit limit{kLimit, kLimit};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const std::string src = std::string(root) + "/src";
    const std::string dst = std::string(root) + "/dst";
    Utility().WaitCopyDirectoryContents(src.c_str(), dst.c_str());
    EXPECT_EQ(Utility().IsSameFile((src + "/big.bin").c_str(), (dst + "/big.bin").c_str()), 0);
    EXPECT_LT(Utility().GetFileSize((dst + "/big.bin").c_str()), 1024u * 1024u);
    // A text filter whose output cannot be written completely returns no path and
    // leaves no partial output.
    const std::string lines = std::string(root) + "/text/lines.txt";
    EXPECT_EQ(Utility().ReplaceStringFromFile(lines.c_str(), "a", "b").str(), "");
    EXPECT_FALSE(fs::exists(lines + "TMP"));
    EXPECT_EQ(Utility().DeleteOneLineFromStartingString(lines.c_str(), "zzz").str(), "");
    EXPECT_FALSE(fs::exists(lines + "TMP2"));
    return;
  }
  TempFolder temp("fsize");
  Put(temp, "src/small.txt", "small");
  Put(temp, "src/big.bin", Pattern(std::size_t{1} << 20, 5));
  std::string lines;
  for (int i = 0; i < 20'000; ++i) lines += "a line of text\n";
  Put(temp, "text/lines.txt", lines);

  ChildProcess child = StartThisTest({std::string(kRootVariable) + "=" + temp.Path().string()});
  ASSERT_EQ(child.Wait(), 0) << child.Output();
  EXPECT_EQ(Utility().IsSameFile(temp.PathOf("src/big.bin").c_str(), temp.PathOf("dst/big.bin").c_str()), 0);
  const fs::path partial = temp.Path() / "dst" / "big.bin";
  if (fs::exists(partial)) {
    EXPECT_LE(fs::file_size(partial), 64u * 1024u);
  }
  EXPECT_EQ(ReadFile(temp.Path() / "text" / "lines.txt"), lines) << "the input is never changed";
}

TEST(ReadOnlyFolderFaults, NothingReportsSuccessThatWasNotDone) {
  if (const char* root = ChildRoot()) {
    ASSERT_TRUE(BecomeUnprivileged());
    const std::string locked = std::string(root) + "/locked";
    Utility().DeleteDirectory(locked.c_str());
    EXPECT_TRUE(fs::exists(locked + "/keep.txt"));
    EXPECT_TRUE(Utility().DeleteDirectoryInThread(locked.c_str()).WaitFor(std::chrono::seconds(30)));
    EXPECT_TRUE(fs::exists(locked + "/keep.txt"));
    EXPECT_EQ(Utility().RenameDirectory((locked + "/keep.txt").c_str(), (locked + "/moved.txt").c_str()), 0);
    EXPECT_EQ(Utility().ReplaceStringFromFile((locked + "/keep.txt").c_str(), "k", "x").str(), "");
    EXPECT_EQ(Utility().DeleteOneLineFromStartingString((locked + "/keep.txt").c_str(), "k").str(), "");
    Utility().WaitCopyDirectoryContents((std::string(root) + "/src").c_str(), (locked + "/copy").c_str());
    EXPECT_FALSE(fs::exists(locked + "/copy"));
    // Unreadable: no size from opening it, but the status query still knows its size.
    EXPECT_EQ(Utility().GetFileSize((locked + "/secret.bin").c_str()), 0u);
    EXPECT_EQ(Utility().GetFileSizeInfo((locked + "/secret.bin").c_str()), 3u);
    EXPECT_EQ(Utility().GetTxtFileContents((locked + "/secret.bin").c_str()).str(), "");
    EXPECT_EQ(Utility().IsSameFile((locked + "/secret.bin").c_str(), (locked + "/secret.bin").c_str()), 0);
    return;
  }
  TempFolder temp("rofolder");
  Put(temp, "src/a.txt", "a");
  Put(temp, "locked/keep.txt", "keep");
  Put(temp, "locked/secret.bin", "abc");
  fs::permissions(temp.Path() / "locked" / "secret.bin", fs::perms::none);
  const fs::perms readAndEnter = fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                 fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec;
  fs::permissions(temp.Path() / "locked", readAndEnter);
  fs::permissions(temp.Path(), readAndEnter);  // the unprivileged child may enter, not write

  ChildProcess child = StartThisTest({std::string(kRootVariable) + "=" + temp.Path().string()});
  const int status = child.Wait();
  fs::permissions(temp.Path(), fs::perms::owner_all);
  fs::permissions(temp.Path() / "locked", fs::perms::owner_all);
  ASSERT_EQ(status, 0) << child.Output();
  EXPECT_EQ(ReadFile(temp.Path() / "locked" / "keep.txt"), "keep");
  EXPECT_FALSE(fs::exists(temp.Path() / "locked" / "keep.txtTMP"));
  EXPECT_FALSE(fs::exists(temp.Path() / "locked" / "copy"));
}

TEST(VanishedFile, EveryMemberReportsTheFileAsGone) {
  TempFolder temp("vanish");
  temp.Write("a.txt", "alpha\n");
  temp.Write("b.txt", "alpha\n");
  CStringArray listed;
  Utility().GetAllFileListIn(temp.Path().c_str(), listed, "txt", FALSE);
  ASSERT_EQ(listed.GetSize(), 2);
  fs::remove(listed[0].str());
  const CString gone = listed[0];
  const CString other = listed[1];

  EXPECT_FALSE(Utility().IsFile(gone));
  EXPECT_EQ(Utility().GetFileSize(gone), 0u);
  EXPECT_EQ(Utility().GetFileSizeInfo(gone), 0xFFFFFFFFu);
  EXPECT_EQ(Utility().GetFileModifiedTime(gone), 0);
  EXPECT_EQ(Utility().IsSameFile(gone, other), 0);
  EXPECT_EQ(Utility().GetTxtFileContents(gone).str(), "");
  EXPECT_EQ(Utility().ReplaceStringFromFile(gone, "a", "b").str(), "");
  EXPECT_FALSE(fs::exists(gone.str() + "TMP"));
  EXPECT_EQ(Utility().RenameDirectory(gone, gone + ".new"), 0);
  Utility().WaitCopyDirectoryContents(gone, temp.PathOf("copy").c_str());
  EXPECT_FALSE(fs::exists(temp.Path() / "copy"));
}

}  // namespace
