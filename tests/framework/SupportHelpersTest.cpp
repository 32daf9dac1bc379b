// The shared test helpers, which other tests trust to say what is right: the byte
// builders against literal bytes, the temporary folder's life on disk, and the child
// process's exit status, output and environment.
#include <corlith/framework/StringArray.h>
#include <corlith/test/Bytes.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;
using namespace corlith::test;

TEST(SupportBytes, BuildersWriteLittleEndianLiterals) {
  struct Row {
    const char* what;
    Bytes built;
    const char* hex;
  };
  const Row rows[] = {
      {"Dwords", Dwords({0x11223344u, 0xFFFFFFFEu}), "44 33 22 11 FE FF FF FF"},
      {"Header", Header(0x0102030405ull), "01 00 00 80 05 04 03 02 01 00 00 00"},
      {"Floats", Floats({1.5f, -2.0f}), "00 00 C0 3F 00 00 00 C0"},
      {"Doubles", Doubles({1.5}), "00 00 00 00 00 00 F8 3F"},
      {"ShortString", ShortString("ab"), "02 61 62"},
      {"ShortString empty", ShortString(""), "00"},
      {"Cat", Cat({Bytes{1}, Bytes{}, Bytes{2, 3}}), "01 02 03"},
      {"Stored", Stored([](CArchive& ar) { ar << WORD{0xABCD} << BYTE{7}; }), "CD AB 07"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Hex(row.built), row.hex);
  }
  EXPECT_THROW(ShortString(std::string(255, 'x')), std::length_error);
}

TEST(SupportBytes, LoadReportsTheBytesConsumedAndArchiveCauseTheFailure) {
  CStringArray strings;
  EXPECT_EQ(Load(Cat({Bytes{1, 0}, ShortString("abc"), Bytes{9, 9}}), strings), 6u);
  ASSERT_EQ(strings.GetSize(), 1);
  EXPECT_EQ(strings[0], "abc");
  EXPECT_EQ(ArchiveCause([&] { Load(Bytes{2, 0}, strings); }), CArchiveException::endOfFile);
  EXPECT_EQ(ArchiveCause([] {}), -1);
}

TEST(SupportTempFolder, EachFolderIsNewAndGoesWithEverythingInIt) {
  fs::path path;
  {
    std::optional<TempFolder> kept;
    {
      TempFolder a("support");
      const TempFolder b("support");
      EXPECT_NE(a.Path(), b.Path());
      EXPECT_EQ(a.Path().parent_path(), fs::temp_directory_path());
      EXPECT_TRUE(fs::is_empty(a.Path()));
      fs::create_directories(a.Path() / "sub" / "deeper");
      EXPECT_EQ(ReadFile(a.Write("sub/deeper/f.bin", std::string("x\0y", 3))), std::string("x\0y", 3));
      path = a.Path();
      kept.emplace(std::move(a));
    }
    EXPECT_TRUE(fs::exists(path / "sub" / "deeper" / "f.bin")) << "the moved-from folder removes nothing";
  }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(ReadFile(path / "missing"), "");
}

// The child's part of the process tests: what it does is chosen by the parent.
void PlayChild(const char* role) {
  std::printf("child of %s\n", role);
  std::fflush(stdout);
  if (std::string(role) == "exit3") std::exit(3);
  if (std::string(role) == "abort") std::abort();
}

TEST(SupportChildProcess, ReportsExitStatusSignalAndOutput) {
  if (const char* role = std::getenv("CORLITH_SUPPORT_CHILD")) return PlayChild(role);
  struct Row {
    const char* role;
    int status;
  };
  for (const Row& row : {Row{"pass", 0}, Row{"exit3", 3}, Row{"abort", 128 + SIGABRT}}) {
    SCOPED_TRACE(row.role);
    ChildProcess child = StartThisTest({std::string("CORLITH_SUPPORT_CHILD=") + row.role});
    ASSERT_TRUE(child.Started());
    EXPECT_EQ(child.Wait(), row.status);
    EXPECT_EQ(child.Wait(), row.status) << "a second wait returns the same";
    EXPECT_NE(child.Output().find(std::string("child of ") + row.role), std::string::npos) << child.Output();
  }
}

TEST(SupportChildProcess, ChildRunsItsTestWholeWhateverTheParentsSharding) {
  if (const char* role = std::getenv("CORLITH_SUPPORT_CHILD")) return PlayChild(role);
  // As a sharded run would leave them: the one selected test falls in shard 0, so a
  // child that kept these would run nothing and still pass.
  ::setenv("GTEST_TOTAL_SHARDS", "2", 1);
  ::setenv("GTEST_SHARD_INDEX", "1", 1);
  ::setenv("CORLITH_SUPPORT_CHILD", "inherited", 1);
  ChildProcess child = StartThisTest({"CORLITH_SUPPORT_CHILD=replaced"});
  ::unsetenv("GTEST_TOTAL_SHARDS");
  ::unsetenv("GTEST_SHARD_INDEX");
  ::unsetenv("CORLITH_SUPPORT_CHILD");
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_NE(child.Output().find("child of replaced"), std::string::npos) << child.Output();
}

}  // namespace
