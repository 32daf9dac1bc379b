// CFile, CMemFile and CStdioFile on real temporary folders: the open flags decide
// what is left on disk, failures come back as the right CFileException cause, and
// text lines read the same whether the file was written here or on Windows.
#include <corlith/framework/File.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/StdioFile.h>

#include <gtest/gtest.h>

#include <unistd.h>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

class FileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    static std::atomic<int> counter{0};
    m_folder = fs::path(::testing::TempDir()) /
               ("corlith-file-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::create_directories(m_folder);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }

  std::string PathOf(const std::string& name) const { return (m_folder / name).string(); }
  void WriteRaw(const std::string& path, const std::string& bytes) const {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  std::string ReadRaw(const std::string& path) const {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  fs::path m_folder;
};

// The file exception fn throws; fails the test when it throws none.
template <typename Fn>
CFileException FileErrorOf(Fn&& fn) {
  try {
    fn();
  } catch (const CFileException& e) {
    return e;
  }
  ADD_FAILURE() << "no CFileException";
  return CFileException();
}

// ---------------------------------------------------------------------------
// CFile

TEST_F(FileTest, CreateTruncatesUnlessNoTruncateAndNoTruncatePositionsAtStart) {
  const std::string path = PathOf("a.txt");
  WriteRaw(path, "hello");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::modeNoTruncate);
    EXPECT_EQ(file.GetLength(), 5u);
    EXPECT_EQ(file.GetPosition(), 0u);
    file.Write("J", 1);
  }
  EXPECT_EQ(ReadRaw(path), "Jello");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(file.GetLength(), 0u);
  }
  EXPECT_EQ(ReadRaw(path), "");

  const std::string fresh = PathOf("fresh.txt");
  { CFile file(fresh.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite); }
  EXPECT_TRUE(fs::exists(fresh));
}

TEST_F(FileTest, MissingFileIsFileNotFound) {
  const std::string path = PathOf("missing.txt");
  const CFileException thrown = FileErrorOf([&] { CFile file(path.c_str(), CFile::modeRead); });
  EXPECT_EQ(thrown.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(thrown.m_lOsError, ENOENT);
  EXPECT_EQ(thrown.m_strFileName.str(), path);

  CFile file;
  CFileException error;
  EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &error));
  EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(error.m_strFileName.str(), path);
  EXPECT_FALSE(file.IsOpen());
  EXPECT_FALSE(fs::exists(path));

  EXPECT_FALSE(file.Open(PathOf("no/such/folder.txt").c_str(), CFile::modeCreate | CFile::modeWrite, &error));
  EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
  EXPECT_FALSE(file.Open("", CFile::modeRead, &error));
  EXPECT_FALSE(file.Open(PathOf("x").c_str(), CFile::modeRead, nullptr));
}

TEST_F(FileTest, FolderDoesNotOpenAsAFile) {
  CFile file;
  CFileException error;
  EXPECT_FALSE(file.Open(m_folder.c_str(), CFile::modeRead, &error));
  EXPECT_EQ(error.m_cause, CFileException::accessDenied);
}

TEST_F(FileTest, SeekLengthAndPosition) {
  const std::string path = PathOf("seek.bin");
  CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite);
  file.Write("0123456789", 10);
  EXPECT_EQ(file.GetPosition(), 10u);
  EXPECT_EQ(file.Seek(-3, CFile::end), 7u);
  EXPECT_EQ(file.Seek(2, CFile::current), 9u);
  EXPECT_EQ(file.Seek(1, CFile::begin), 1u);
  char two[2] = {};
  EXPECT_EQ(file.Read(two, 2), 2u);
  EXPECT_EQ(std::string(two, 2), "12");
  EXPECT_EQ(file.SeekToEnd(), 10u);
  EXPECT_EQ(file.Read(two, 2), 0u);
  file.SeekToBegin();
  EXPECT_EQ(file.GetPosition(), 0u);

  const CFileException bad = FileErrorOf([&] { file.Seek(-1, CFile::begin); });
  EXPECT_EQ(bad.m_cause, CFileException::badSeek);

  file.SetLength(4);
  EXPECT_EQ(file.GetLength(), 4u);
  file.SetLength(6);
  file.Close();
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(ReadRaw(path), std::string("0123\0\0", 6));
}

TEST_F(FileTest, WritingAReadOnlyFileThrows) {
  const std::string path = PathOf("ro.txt");
  WriteRaw(path, "abc");
  CFile file(path.c_str(), CFile::modeRead);
  EXPECT_EQ(FileErrorOf([&] { file.Write("x", 1); }).m_cause, CFileException::accessDenied);
  file.Close();
  EXPECT_EQ(ReadRaw(path), "abc");
}

TEST(FileName, NameAndTitleUseEitherSeparator) {
  struct Row {
    const char* path;
    const char* name;
    const char* title;
  };
  const Row rows[] = {
      {"C:\\boards\\sub/panel.brd", "panel.brd", "panel"},
      {"/home/u/boards\\old/panel.brd", "panel.brd", "panel"},
      {"/a/b.c/d", "d", "d"},
      {"dir/archive.tar.gz", "archive.tar.gz", "archive.tar"},
      {"plain", "plain", "plain"},
      {"dir\\", "", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    CFile file;
    file.SetFilePath(row.path);
    EXPECT_EQ(file.GetFileName(), row.name);
    EXPECT_EQ(file.GetFileTitle(), row.title);
    EXPECT_EQ(file.GetFilePath(), row.path);
  }
}

TEST_F(FileTest, RenameAndRemoveChangeWhatIsOnDisk) {
  const std::string from = PathOf("from.txt");
  const std::string to = PathOf("to.txt");
  WriteRaw(from, "payload");
  CFile::Rename(from.c_str(), to.c_str());
  EXPECT_FALSE(fs::exists(from));
  EXPECT_EQ(ReadRaw(to), "payload");

  const CFileException renameMissing = FileErrorOf([&] { CFile::Rename(from.c_str(), PathOf("x").c_str()); });
  EXPECT_EQ(renameMissing.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(renameMissing.m_strFileName.str(), from);

  CFile::Remove(to.c_str());
  EXPECT_FALSE(fs::exists(to));
  const CFileException removeMissing = FileErrorOf([&] { CFile::Remove(to.c_str()); });
  EXPECT_EQ(removeMissing.m_cause, CFileException::fileNotFound);
  EXPECT_EQ(removeMissing.m_strFileName.str(), to);
}

// ---------------------------------------------------------------------------
// CMemFile

TEST(MemFile, AttachedFixedBufferReadsItAndRefusesToGrow) {
  BYTE buffer[5] = {'h', 'e', 'l', 'l', 'o'};
  CMemFile file(buffer, sizeof buffer);
  EXPECT_EQ(file.GetLength(), 5u);
  char got[8] = {};
  EXPECT_EQ(file.Read(got, 8), 5u);
  EXPECT_STREQ(got, "hello");

  file.SeekToBegin();
  file.Write("J", 1);
  EXPECT_EQ(buffer[0], 'J');
  file.Seek(3, CFile::begin);
  EXPECT_THROW(file.Write("XYZ", 3), CMemoryException);
  EXPECT_EQ(file.GetLength(), 5u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 5), "Jello");
  EXPECT_THROW(file.SetLength(6), CMemoryException);
  EXPECT_EQ(file.Detach(), buffer);
}

TEST(MemFile, GrowingFileZeroFillsGapsAndClampsPosition) {
  CMemFile file(16);
  file.Write("ab", 2);
  EXPECT_EQ(file.Seek(3, CFile::current), 5u);
  file.Write("c", 1);
  const auto data = file.GetData();
  EXPECT_EQ(std::string(data.begin(), data.end()), std::string("ab\0\0\0c", 6));

  file.SetLength(2);
  EXPECT_EQ(file.GetPosition(), 2u);
  file.SetLength(4);
  const auto grown = file.GetData();
  EXPECT_EQ(std::string(grown.begin(), grown.end()), std::string("ab\0\0", 4));

  const CFileException bad = FileErrorOf([&] { file.Seek(-5, CFile::current); });
  EXPECT_EQ(bad.m_cause, CFileException::badSeek);
  EXPECT_EQ(file.GetPosition(), 2u);

  CFileException error;
  EXPECT_FALSE(file.Open("name", CFile::modeRead, &error));
  EXPECT_NE(error.m_cause, CFileException::none);
}

TEST(MemFile, AttachedGrowableBufferIsReallocatedAndHandedBack) {
  auto* start = static_cast<BYTE*>(std::malloc(4));
  ASSERT_NE(start, nullptr);
  CMemFile file;
  file.Attach(start, 4, 8);
  EXPECT_EQ(file.GetLength(), 0u);
  const std::string text = "more than four bytes";
  file.Write(text.data(), static_cast<UINT>(text.size()));
  EXPECT_EQ(file.GetLength(), text.size());
  BYTE* detached = file.Detach();
  ASSERT_NE(detached, nullptr);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(detached), text.size()), text);
  std::free(detached);
}

// ---------------------------------------------------------------------------
// CStdioFile

TEST_F(FileTest, ReadStringStripsLineEndsLikeTheOriginal) {
  const std::string long4094(4094, 'x');
  const std::string long4095(4095, 'y');
  const std::string long10000(10000, 'z');
  struct Row {
    const char* what;
    std::string content;
    std::vector<std::string> lines;
  };
  const Row rows[] = {
      {"LF", "a\nb\n", {"a", "b"}},
      {"CR LF", "a\r\nb\r\n", {"a", "b"}},
      {"empty middle line", "a\n\nb", {"a", "", "b"}},
      {"last line without end", "last", {"last"}},
      {"empty file", "", {}},
      {"single line feed", "\n", {""}},
      {"empty CR LF line at end", "a\r\n\r\n", {"a", ""}},
      {"lone CR inside is kept", "x\ry\n", {"x\ry"}},
      {"CR at the end of a read chunk", long4094 + "\r\nend", {long4094, "end"}},
      {"LF at the start of a read chunk", long4095 + "\r\nend", {long4095, "end"}},
      {"line longer than a chunk", long10000 + "\n" + long10000, {long10000, long10000}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const std::string path = PathOf("lines.txt");
    WriteRaw(path, row.content);
    CStdioFile file(path.c_str(), CFile::modeRead | CFile::typeText);
    std::vector<std::string> lines;
    CString line("stale");
    // Bounded, so that a reader that never reports the end fails instead of hanging.
    while (lines.size() <= row.lines.size() && file.ReadString(line)) lines.push_back(line.str());
    EXPECT_EQ(lines, row.lines);
    EXPECT_FALSE(file.ReadString(line));
  }
}

TEST_F(FileTest, ReadStringIntoBufferKeepsOneLineFeed) {
  const std::string path = PathOf("buffer.txt");
  WriteRaw(path, "ab\r\ncdefgh");
  CStdioFile file(path.c_str(), CFile::modeRead);
  char buffer[16];
  ASSERT_NE(file.ReadString(buffer, sizeof buffer), nullptr);
  EXPECT_STREQ(buffer, "ab\n");
  ASSERT_NE(file.ReadString(buffer, 4), nullptr);
  EXPECT_STREQ(buffer, "cde");
  ASSERT_NE(file.ReadString(buffer, sizeof buffer), nullptr);
  EXPECT_STREQ(buffer, "fgh");
  EXPECT_EQ(file.ReadString(buffer, sizeof buffer), nullptr);
}

TEST_F(FileTest, WriteStringWritesTextAsItStands) {
  const std::string path = PathOf("out.txt");
  {
    CStdioFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeText);
    file.WriteString("a\nb\r\nc");
    file.WriteString("");
    file.WriteString("\n");
  }
  EXPECT_EQ(ReadRaw(path), "a\nb\r\nc\n");
  {
    CStdioFile file(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
    file.WriteString("tail");
  }
  EXPECT_EQ(ReadRaw(path), "a\nb\r\nc\ntail");
  {
    // Without modeCreate, a writing stdio file appends as in the original.
    CStdioFile file(path.c_str(), CFile::modeWrite);
    file.WriteString("+");
  }
  EXPECT_EQ(ReadRaw(path), "a\nb\r\nc\ntail+");

  const CFileException missing =
      FileErrorOf([&] { CStdioFile file(PathOf("none.txt").c_str(), CFile::modeRead | CFile::typeText); });
  EXPECT_EQ(missing.m_cause, CFileException::fileNotFound);
}

}  // namespace
