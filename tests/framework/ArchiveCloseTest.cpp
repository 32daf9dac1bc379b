// A loading archive gives back its read-ahead when it is flushed or closed, so that the
// file stands just after the last byte loaded and a host can go on with CFile::Read or
// a second archive: over a disk file, a memory file and a stdio file alike, through
// the destructor's implicit close too, and where a file cannot seek back.
#include <corlith/framework/Archive.h>
#include <corlith/framework/File.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/framework/StringArray.h>

#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<BYTE>;

Bytes Pattern(std::size_t n) {
  Bytes b(n);
  for (std::size_t i = 0; i < n; ++i) b[i] = static_cast<BYTE>(i * 7 + 3);
  return b;
}

template <typename Fn>
Bytes Stored(Fn&& write) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  write(ar);
  ar.Close();
  return Bytes(file.GetData().begin(), file.GetData().end());
}

// The three file classes an archive is commonly put over, each opened for reading at
// the start of the given bytes.
struct FileKind {
  const char* name;
  std::unique_ptr<CFile> (*open)(const std::string& path, const Bytes& content);
};

void WriteRaw(const std::string& path, const Bytes& content) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

constexpr FileKind kFileKinds[] = {
    {"CFile",
     [](const std::string& path, const Bytes& content) -> std::unique_ptr<CFile> {
       WriteRaw(path, content);
       return std::make_unique<CFile>(path.c_str(), CFile::modeRead);
     }},
    {"CMemFile",
     [](const std::string&, const Bytes& content) -> std::unique_ptr<CFile> {
       auto file = std::make_unique<CMemFile>();
       file->Write(content.data(), static_cast<UINT>(content.size()));
       file->SeekToBegin();
       return file;
     }},
    {"CStdioFile",
     [](const std::string& path, const Bytes& content) -> std::unique_ptr<CFile> {
       WriteRaw(path, content);
       return std::make_unique<CStdioFile>(path.c_str(), CFile::modeRead | CFile::typeBinary);
     }},
};

class ArchiveClose : public ::testing::Test {
 protected:
  void SetUp() override {
    static std::atomic<int> counter{0};
    m_folder = fs::path(::testing::TempDir()) /
               ("corlith-archive-close-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::create_directories(m_folder);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
  }
  std::unique_ptr<CFile> Open(const FileKind& kind, const Bytes& content) {
    return kind.open((m_folder / (std::string(kind.name) + std::to_string(m_files++))).string(), content);
  }

  fs::path m_folder;
  int m_files = 0;
};

// The next byte a direct read gets, or -1 at the end of the file.
int NextByte(CFile& file) {
  BYTE b = 0;
  return file.Read(&b, 1) == 1 ? b : -1;
}

TEST_F(ArchiveClose, CloseLeavesTheFileJustAfterTheLastByteLoaded) {
  const Bytes content = Pattern(1000);
  struct Row {
    const char* what;
    int bufSize;
    UINT consumed;
  };
  const Row rows[] = {
      {"nothing loaded", 4096, 0}, {"one byte of a whole-file read-ahead", 4096, 1},
      {"four bytes", 4096, 4},     {"across a refill of the smallest buffer", 128, 130},
      {"everything", 4096, 1000},
  };
  for (const FileKind& kind : kFileKinds) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(kind.name) + ", " + row.what);
      auto file = Open(kind, content);
      CArchive ar(file.get(), CArchive::load, row.bufSize);
      for (UINT i = 0; i < row.consumed; ++i) {
        BYTE b = 0;
        ar >> b;
        ASSERT_EQ(b, content[i]);
      }
      ar.Close();
      EXPECT_EQ(file->GetPosition(), row.consumed);
      EXPECT_EQ(NextByte(*file), row.consumed < content.size() ? content[row.consumed] : -1);
    }
  }
}

TEST_F(ArchiveClose, TwoArchivesInSequenceReadTwoObjects) {
  CStringArray strings;
  strings.Add("GND");
  strings.Add("VCC");
  CDWordArray values;
  for (DWORD v : {7u, 0xDEADBEEFu, 0u}) values.Add(v);
  const Bytes content = Stored([&](CArchive& ar) {
    strings.Serialize(ar);
    values.Serialize(ar);
  });
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    CStringArray loadedStrings;
    {
      CArchive first(file.get(), CArchive::load);
      loadedStrings.Serialize(first);
      first.Close();
    }
    CDWordArray loadedValues;
    {
      CArchive second(file.get(), CArchive::load);
      loadedValues.Serialize(second);
    }
    ASSERT_EQ(loadedStrings.GetSize(), 2);
    EXPECT_EQ(loadedStrings[1], "VCC");
    ASSERT_EQ(loadedValues.GetSize(), 3);
    EXPECT_EQ(loadedValues[1], 0xDEADBEEFu);
    EXPECT_EQ(file->GetPosition(), content.size());
  }
}

TEST_F(ArchiveClose, FlushGivesBackTheReadAheadAndLoadingGoesOn) {
  const Bytes content = Pattern(300);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    CArchive ar(file.get(), CArchive::load, 128);
    DWORD first = 0;
    ar >> first;
    ar.Flush();
    EXPECT_EQ(file->GetPosition(), 4u);
    EXPECT_EQ(ar.GetPosition(), 4u);
    EXPECT_EQ(ar.GetBytesLeft(), 296u);
    // Loading goes on from where the file stands, across the next refill.
    Bytes rest(296);
    EXPECT_EQ(ar.Read(rest.data(), 296), 296u);
    EXPECT_TRUE(std::equal(rest.begin(), rest.end(), content.begin() + 4));
    ar.Flush();
    EXPECT_EQ(file->GetPosition(), 300u);
    BYTE past = 0;
    EXPECT_THROW(ar >> past, CArchiveException);
  }
}

TEST_F(ArchiveClose, LargeReadsThatBypassTheBufferKeepPositions) {
  const Bytes content = Pattern(2000);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    CArchive ar(file.get(), CArchive::load, 128);
    BYTE b = 0;
    ar >> b;  // the buffer now holds 127 more
    Bytes block(500);
    EXPECT_EQ(ar.Read(block.data(), 500), 500u);  // 127 from the buffer, 373 straight from the file
    EXPECT_TRUE(std::equal(block.begin(), block.end(), content.begin() + 1));
    DWORD after = 0;
    ar >> after;  // refills the buffer at 501
    ar.Close();
    EXPECT_EQ(file->GetPosition(), 505u);
    EXPECT_EQ(NextByte(*file), content[505]);
  }
}

TEST_F(ArchiveClose, DestructorGivesBackUnlessToldNotToFlush) {
  const Bytes content = Pattern(1000);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    {
      CArchive ar(file.get(), CArchive::load, 128);
      WORD w = 0;
      ar >> w;
    }
    EXPECT_EQ(file->GetPosition(), 2u);
    // As in the original, bNoFlushOnDelete skips the implicit close: the file stays
    // where the read-ahead left it.
    {
      CArchive ar(file.get(), CArchive::load | CArchive::bNoFlushOnDelete, 128);
      WORD w = 0;
      ar >> w;
    }
    EXPECT_EQ(file->GetPosition(), 2u + 128u);
  }
}

TEST_F(ArchiveClose, DestructorSwallowsAGiveBackThatFails) {
  CMemFile file;
  const Bytes content = Pattern(50);
  file.Write(content.data(), 50);
  file.SeekToBegin();
  {
    CArchive ar(&file, CArchive::load);
    BYTE b = 0;
    ar >> b;
    file.SetLength(0);  // the read-ahead can no longer be given back
    EXPECT_THROW(ar.Close(), CFileException);
  }  // the destructor tries again and must not throw
  EXPECT_EQ(file.GetPosition(), 0u);
}

// A host that moves the file without going through the archive: the bytes the archive
// had read ahead come first, then what the file holds where it now stands, whether the
// archive copied its read-ahead or reads a memory file in place.
TEST_F(ArchiveClose, ASeekBehindTheArchiveJoinsTheReadAheadToTheNewPosition) {
  const Bytes content = Pattern(1000);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    CArchive ar(file.get(), CArchive::load, 128);
    Bytes head(126);
    ASSERT_EQ(ar.Read(head.data(), 126), 126u);  // two bytes of the read-ahead are left
    file->Seek(500, CFile::begin);
    DWORD joined = 0;
    ar >> joined;
    EXPECT_EQ(joined,
              static_cast<DWORD>(content[126] | content[127] << 8 | content[500] << 16 | content[501] << 24));
    WORD next = 0;
    ar >> next;
    EXPECT_EQ(next, static_cast<WORD>(content[502] | content[503] << 8));
    EXPECT_EQ(ar.GetPosition(), 132u);
    ar.Close();
    EXPECT_EQ(NextByte(*file), content[504]);
  }
}

// Abort leaves the file to its owner, who may close it at once; the archive still hands
// out what it had read ahead (a memory file's bytes included, although the file has
// released its memory), and only then finds it has no file.
TEST_F(ArchiveClose, AbortKeepsTheReadAheadAfterTheFileIsClosed) {
  const Bytes content = Pattern(1000);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = Open(kind, content);
    CArchive ar(file.get(), CArchive::load, 128);
    BYTE first = 0;
    ar >> first;
    ar.Abort();
    file->Close();
    Bytes rest(127);
    ASSERT_EQ(ar.Read(rest.data(), 127), 127u);
    EXPECT_TRUE(std::equal(rest.begin(), rest.end(), content.begin() + 1));
    BYTE past = 0;
    try {
      ar >> past;
      ADD_FAILURE() << "read past the read-ahead without a file";
    } catch (const CArchiveException& e) {
      EXPECT_EQ(e.m_cause, CArchiveException::genericException);
    }
  }
}

// A loading archive reads a memory file in place. Writing to the file meanwhile may
// move its memory; the read-ahead must stay readable (the file keeps the old memory
// until it is closed) and loading goes on with the bytes where the file then stands.
TEST(ArchiveInPlace, AMemoryFileThatGrowsUnderTheArchiveKeepsItsReadAheadReadable) {
  const Bytes content = Pattern(300);
  const Bytes appended = Pattern(1 << 20);
  struct Row {
    const char* what;
    bool attached;  // the file starts on a malloc'd buffer of ours that it takes over
  };
  const Row rows[] = {{"memory of its own", false}, {"an attached buffer it takes over", true}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CMemFile file(1024);
    if (row.attached) {
      auto* buffer = static_cast<BYTE*>(std::malloc(content.size()));
      ASSERT_NE(buffer, nullptr);
      // Growable, and just big enough for the content: the file grows out of it while
      // the archive reads it in place, and frees it when it is closed.
      file.Attach(buffer, static_cast<UINT>(content.size()), 1024);
    }
    file.Write(content.data(), static_cast<UINT>(content.size()));
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load, 128);
    BYTE first = 0;
    ar >> first;  // 127 bytes of the file's memory are read ahead
    file.SeekToEnd();
    file.Write(appended.data(), static_cast<UINT>(appended.size()));
    file.Seek(128, CFile::begin);
    Bytes rest(299);
    ASSERT_EQ(ar.Read(rest.data(), 299), 299u);
    EXPECT_TRUE(std::equal(rest.begin(), rest.end(), content.begin() + 1));
    ar.Close();
    EXPECT_EQ(file.GetPosition(), 300u);
    ASSERT_EQ(file.GetLength(), content.size() + appended.size());
    EXPECT_TRUE(std::equal(content.begin(), content.end(), file.GetData().begin()));
    EXPECT_TRUE(std::equal(appended.begin(), appended.end(), file.GetData().begin() + 300));
  }
}

// A pipe cannot seek: the read-ahead cannot be given back, Close says so, and the
// archive keeps it, so loading can go on. With nothing buffered, Close succeeds.
TEST(ArchiveCloseOnAPipe, ReadAheadStaysInTheArchive) {
  int fds[2];
  ASSERT_EQ(::pipe(fds), 0);
  // Opening the pipe's read end by name gives a CFile of its own over the same pipe.
  CFile file(("/proc/self/fd/" + std::to_string(fds[0])).c_str(), CFile::modeRead);
  const Bytes content = Pattern(10);
  ASSERT_EQ(::write(fds[1], content.data(), content.size()), 10);
  ::close(fds[1]);
  ::close(fds[0]);

  CArchive ar(&file, CArchive::load);
  DWORD first = 0;
  ar >> first;
  try {
    ar.Close();
    ADD_FAILURE() << "a pipe took back the read-ahead";
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::badSeek);
  }
  DWORD second = 0;
  WORD last = 0;
  ar >> second >> last;
  EXPECT_EQ(second, static_cast<DWORD>(content[4] | content[5] << 8 | content[6] << 16 | content[7] << 24));
  EXPECT_EQ(last, static_cast<WORD>(content[8] | content[9] << 8));
  EXPECT_NO_THROW(ar.Close());
  EXPECT_EQ(NextByte(file), -1);
}

}  // namespace
