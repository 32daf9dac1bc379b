// CLPath's parent rule with either separator (and the empty path, which must end),
// its copies, its folder look-ups; CLFile as the framework's file under the library's
// name.
#include <corlith/environment/LFile.h>
#include <corlith/environment/LPath.h>
#include <corlith/environment/Utility.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

TEST(CLPath, ParentCutsTrailingSeparatorsOneByOne) {
  struct Row {
    const char* path;
    const char* parent;
  };
  const std::vector<Row> rows = {
      {"C:\\a\\b\\", "C:\\a"},
      {"C:\\a\\b", "C:\\a"},
      {"C:\\a\\b\\\\", "C:\\a"},
      {"C:/a/b/", "C:/a"},
      {"/a/b//", "/a"},
      {"C:\\a/b", "C:\\a"},
      {"a/b//c", "a/b/"},
      {"/a", ""},
      {"\\", ""},
      {"a", ""},
      {"", ""},  // must end: the original never returned here
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(CLPath::GetParentPath(row.path).str(), row.parent);
    EXPECT_EQ(CLPath(row.path).GetParentPath().str(), row.parent);
  }
}

TEST(CLPath, CopiesKeepTheirOwnString) {
  const CLPath source("C:\\boards\\top.brd");
  CLPath copy(source);
  copy.SetPath("/other/file");
  EXPECT_EQ(source.GetPath().str(), "C:\\boards\\top.brd");
  CLPath assigned;
  assigned = source;
  assigned.SetPath("x");
  EXPECT_EQ(source.GetPath().str(), "C:\\boards\\top.brd");
  EXPECT_EQ(copy.GetParentPath().str(), "/other");
  // Through the base pointer hosts delete derived paths.
  std::unique_ptr<CLPath> owned = std::make_unique<CLPath>(source);
  EXPECT_EQ(owned->GetParentPath().str(), "C:\\boards");
}

TEST(CLPath, FoldersAgreeWithKTUtility) {
  const CString executableFolder = CLPath::GetCurModuleDir();
  EXPECT_EQ(executableFolder.str(), fs::read_symlink("/proc/self/exe").parent_path().string());
  EXPECT_EQ(executableFolder.str(), KTUtility::GetInstance()->GetCurModuleDir().str());
  EXPECT_EQ(CLPath::GetModuleDir("no-such-module-anywhere").str(), "");
  const CString libc = CLPath::GetModuleDir("libc.so.6");
  EXPECT_TRUE(fs::is_directory(libc.str())) << libc.str();
  EXPECT_EQ(libc.str(), KTUtility::GetInstance()->GetModuleDir("libc.so.6").str());
}

TEST(CLFile, IsTheFrameworksFileWithANullPathRefused) {
  TempFolder temp("lfile");
  const std::string path = temp.Write("data.bin", "0123456789");
  CLFile file(path.c_str(), CFile::modeRead);
  char buffer[4] = {};
  EXPECT_EQ(file.Read(buffer, 4), 4u);
  EXPECT_EQ(std::string(buffer, 4), "0123");
  EXPECT_EQ(file.GetLength(), 10u);
  EXPECT_EQ(file.GetFileName().str(), "data.bin");

  CLFile named;
  named.SetFilePath("dir/with blank/name.ext");
  EXPECT_EQ(named.GetFilePath().str(), "dir/with blank/name.ext");
  EXPECT_THROW(named.SetFilePath(nullptr), CInvalidArgException);
  EXPECT_EQ(named.GetFilePath().str(), "dir/with blank/name.ext") << "a refused path changes nothing";
  CFile& base = named;
  EXPECT_THROW(base.SetFilePath(nullptr), CInvalidArgException) << "also through the base";

  EXPECT_THROW(CLFile(temp.PathOf("missing").c_str(), CFile::modeRead), CFileException);
}

}  // namespace
