// A value class whose version word does not match consumes only that word; closing
// the archive then gives back the rest of the read-ahead, so the file stands at byte 4
// and a direct read gets the byte after the word. Over a disk file, a memory file and
// a stdio file alike.
#include "TestSupport.h"

#include <corlith/framework/Archive.h>
#include <corlith/framework/File.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/values/PointD.h>

#include <gtest/gtest.h>

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

namespace {

using namespace corlith::test;
namespace fs = std::filesystem;

struct FileKind {
  const char* name;
  std::unique_ptr<CFile> (*open)(const std::string& path, const Bytes& content);
};

void WriteRaw(const std::string& path, const Bytes& content) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

const FileKind kFileKinds[] = {
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

TEST(ValueArchiveClose, ForeignVersionConsumesFourBytesAndCloseLeavesTheFileThere) {
  const fs::path folder =
      fs::path(::testing::TempDir()) / ("corlith-value-close-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  // Version 2, then what a version-2 point might hold.
  Bytes content;
  Put32(content, 2);
  PutDouble(content, 9.5);
  PutDouble(content, -9.5);
  for (const FileKind& kind : kFileKinds) {
    SCOPED_TRACE(kind.name);
    auto file = kind.open((folder / kind.name).string(), content);
    CPointD point(1, 2);
    {
      CArchive ar(file.get(), CArchive::load);
      ar >> point;
      EXPECT_EQ(ar.GetPosition(), 4u);
      ar.Close();
    }
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2) << "a foreign version leaves the point as it was";
    EXPECT_EQ(file->GetPosition(), 4u);
    BYTE next = 0;
    ASSERT_EQ(file->Read(&next, 1), 1u);
    EXPECT_EQ(next, content[4]);
  }
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

}  // namespace
