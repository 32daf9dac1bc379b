// KTUtility's path rules inside this process: the guarded join on both sides of its
// limit, parent folders, the installation file's text, the data-folder rule in every
// branch, environment expansion, existence checks and folder creation on real folders.
// What needs its own executable folder (markers, the installation file, the logs) is in
// UtilityProcessTest.cpp.
#include <corlith/Version.h>
#include <corlith/environment/Installation.h>
#include <corlith/environment/Utility.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using corlith::DataFolderState;
using corlith::InstallationInfo;
using corlith::test::TempFolder;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

// Sets an environment variable for one test (or removes it) and puts it back.
class EnvironmentGuard {
 public:
  EnvironmentGuard(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old;
    if (value != nullptr) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  ~EnvironmentGuard() {
    if (m_old) {
      ::setenv(m_name.c_str(), m_old->c_str(), 1);
    } else {
      ::unsetenv(m_name.c_str());
    }
  }
  EnvironmentGuard(const EnvironmentGuard&) = delete;
  EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;

 private:
  std::string m_name;
  std::optional<std::string> m_old;
};

std::string Combine(const std::string& dir, const std::string& file) {
  return Utility().KTPathCombine(CString(dir), CString(file), "UtilityPathsTest", __LINE__).str();
}

TEST(KTPathCombine, JoinsNormalisesAndDropsLeadingSeparatorsOfTheFile) {
  struct Row {
    const char* dir;
    const char* file;
    const char* expected;
  };
  const Row rows[] = {
      {"C:\\a", "\\b", "C:/a/b"},
      {"C:\\a\\", "b", "C:/a/b"},
      {"C:\\a", "\\\\/b\\c", "C:/a/b/c"},
      {"C:\\a\\.\\b", "..\\c", "C:/a/c"},
      {"/x/y", "../z", "/x/z"},
      // a leading separator of the file is dropped, so it does not replace the folder
      {"/x/y", "/z", "/x/y/z"},
      {"/x", "./y/./z", "/x/y/z"},
      // a drive makes the file absolute: it stands alone
      {"/x", "D:\\abs", "D:/abs"},
      {"", "b", "b"},
      {"a", "", "a"},
      {"", "", ""},
      {"rel\\dir", "f.txt", "rel/dir/f.txt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.dir) + " + " + row.file);
    EXPECT_EQ(Combine(row.dir, row.file), row.expected);
  }
}

TEST(KTPathCombine, BeyondTwoHundredFiftySixCharactersConcatenatesWithOneSeparator) {
  // dir ends in separators, file starts with "..": the join removes a segment, the
  // concatenation keeps the ".." as written and joins with exactly one separator.
  struct Row {
    std::string dirHead;
    std::string dirTail;
    std::string fileHead;
    std::size_t total;
    std::string expectedHead;  // followed by the file's last part
    bool joined;
  };
  const std::string fileBody(100, 'f');
  const Row rows[] = {
      {"/base/", "/", "../", 256, "/base/", true},
      {"/base/", "/", "../", 257, "", false},
      {"C:\\base\\", "\\\\", "\\\\..\\", 256, "C:/base/", true},
      {"C:\\base\\", "\\\\", "\\\\..\\", 257, "", false},
  };
  for (const Row& row : rows) {
    const std::size_t dLength =
        row.total - row.dirHead.size() - row.dirTail.size() - row.fileHead.size() - 100;
    const std::string dir = row.dirHead + std::string(dLength, 'd') + row.dirTail;
    const std::string file = row.fileHead + fileBody;
    ASSERT_EQ(dir.size() + file.size(), row.total);
    SCOPED_TRACE(row.dirHead + " total " + std::to_string(row.total));
    const std::string result = Combine(dir, file);
    if (row.joined) {
      EXPECT_EQ(result, row.expectedHead + fileBody);
    } else {
      std::string plainDir = dir;
      while (plainDir.back() == '/' || plainDir.back() == '\\') plainDir.pop_back();
      std::string plainFile = file;
      while (plainFile.front() == '/' || plainFile.front() == '\\') plainFile.erase(0, 1);
      EXPECT_EQ(result, plainDir.append("/").append(plainFile));
      EXPECT_NE(result.find("/.."), std::string::npos);
    }
  }
}

TEST(GetParentDir, CutsAtTheLastSeparatorAndAgainWhileItWasTheLastCharacter) {
  struct Row {
    const char* path;
    const char* expected;
  };
  const Row rows[] = {
      {"", ""},
      {"C:\\a\\b\\", "C:\\a"},
      {"C:\\a\\b", "C:\\a"},
      {"C:\\a\\b\\\\", "C:\\a"},
      {"C:\\", ""},
      {"C:", ""},
      {"\\\\server\\share\\x", "\\\\server\\share"},
      {"/usr/lib/", "/usr"},
      {"/usr/lib", "/usr"},
      {"/usr", ""},
      {"/", ""},
      {"name", ""},
      {"a/", ""},
      {"a\\b/c", "a\\b"},
      {"a/b\\", "a"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().GetParentDir(CString(row.path)).str(), row.expected);
  }
}

TEST(InstallationFile, IsReadLineByLineUntilTheFirstLineOfAnotherForm) {
  struct Row {
    const char* name;
    std::string text;
    bool installed;
    int edition;
  };
  const Row rows[] = {
      {"empty", "", false, 0},
      {"installed ecad", "layout=installed\nedition=ecad\n", true, 1},
      {"case and blanks", "  Layout = INSTALLED \r\n\tEDITION=Ecad\r\n", true, 1},
      {"comments, blank lines, no last line end", "# installer 3\n; note\n\n   \nlayout=installed", true, 0},
      {"later line wins", "layout=installed\nlayout=uninstalled\nedition=ecad\nedition=standard\n", false, 0},
      {"stops at a line without =", "layout=installed\nbogus line\nedition=ecad\n", true, 0},
      {"stops at an unknown value", "layout=installed\nedition=pro\nedition=ecad\n", true, 0},
      {"stops at an unknown key", "edition=ecad\ncolour=blue\nlayout=installed\n", false, 1},
      {"stops at an empty value", "edition=ecad\nlayout=\nlayout=installed\n", false, 1},
      {"stops at an empty key", "=installed\nlayout=installed\n", false, 0},
      {"value with =", "layout==installed\n", false, 0},
      {"stops at a NUL byte", "layout=installed\ned\0ition=ecad\nedition=ecad\n"s, true, 0},
      {"a byte order mark is not a key", "\xEF\xBB\xBFlayout=installed\n", false, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const InstallationInfo info = corlith::ReadInstallationFile(row.text);
    EXPECT_EQ(info.installedLayout, row.installed);
    EXPECT_EQ(info.edition, row.edition);
    EXPECT_FALSE(info.found);
  }
}

TEST(InstallationFile, IsFoundOnlyWhenAReadableFileIsInTheFolder) {
  struct Row {
    const char* name;
    std::optional<std::string> content;  // nullopt: a folder of the file's name
    bool found;
    bool installed;
    int edition;
  };
  const std::string head = "layout=installed\n";
  const std::string tail = "\nedition=ecad\n";
  const std::string large =
      head + std::string(std::size_t{64} * 1024 - head.size() - tail.size(), '#') + tail;
  // Three bytes more: the limit falls inside the last line.
  const std::string cut =
      head + std::string(std::size_t{64} * 1024 + 3 - head.size() - tail.size(), '#') + tail;
  const Row rows[] = {
      {"with a byte order mark", "\xEF\xBB\xBFlayout=installed\nedition=ecad\n", true, true, 1},
      {"empty file", "", true, false, 0},
      {"a folder of that name", std::nullopt, false, false, 0},
      {"64 KiB exactly", large, true, true, 1},
      {"last line beyond 64 KiB dropped", cut, true, true, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder folder("install");
    if (row.content) {
      folder.Write(corlith::kInstallationFileName, *row.content);
    } else {
      fs::create_directory(folder.Path() / corlith::kInstallationFileName);
    }
    const InstallationInfo info = corlith::ReadInstallationFileIn(CString(folder.Path().string()));
    EXPECT_EQ(info.found, row.found);
    EXPECT_EQ(info.installedLayout, row.installed);
    EXPECT_EQ(info.edition, row.edition);
  }
  ASSERT_EQ(large.size(), 64u * 1024);
  ASSERT_EQ(cut.size(), 64u * 1024 + 3);
  const TempFolder none("install");
  EXPECT_FALSE(corlith::ReadInstallationFileIn(CString(none.Path().string())).found);
  EXPECT_FALSE(corlith::ReadInstallationFileIn(CString()).found);
}

TEST(InstallationFile, APipeOfThatNameIsNotWaitedFor) {
  const TempFolder folder("install");
  const fs::path pipe = folder.Path() / corlith::kInstallationFileName;
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  auto reading = std::async(std::launch::async,
                            [&] { return corlith::ReadInstallationFileIn(CString(folder.Path().string())); });
  const bool ended = reading.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
  if (!ended) {
    // The reader waits for a writer: be one, and close at once, so that it ends.
    const int fd = ::open(pipe.c_str(), O_WRONLY | O_NONBLOCK);
    if (fd >= 0) ::close(fd);
  }
  EXPECT_TRUE(ended);
  EXPECT_FALSE(reading.get().found);
}

TEST(DataFolder, VersionLabelIsTheFirstTwoPiecesOrTheFirstWhenTheSecondIsZero) {
  struct Row {
    const char* version;
    const char* label;
  };
  const Row rows[] = {
      {"2025.1.1", "2025.1"},
      {"2025.0.3", "2025"},
      {"2025.00.1", "2025.00"},
      {"1.2.3.4", "1.2"},
      {"2025..1.1", "2025.1"},
      {".2025.1.1", "2025.1"},
      {"2025.1", ""},
      {"2025", ""},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.version);
    EXPECT_EQ(corlith::DataFolderVersionLabel(row.version).str(), row.label);
  }
  EXPECT_EQ(corlith::DataFolderVersionLabel(corlith::kVersionText).str(), "2025.1");
}

TEST(DataFolder, SubFolderNamesTheEdition) {
  EXPECT_EQ(corlith::DataSubFolder(0, "2025.1").str(), "Orvane/Tessel/2025.1");
  EXPECT_EQ(corlith::DataSubFolder(1, "2025.1").str(), "Orvane/TesselForEcad/2025.1");
  EXPECT_EQ(corlith::DataSubFolder(2, "2025.1").str(), "");
  EXPECT_EQ(corlith::DataSubFolder(-1, "2025.1").str(), "");
  EXPECT_EQ(corlith::UserDataSubFolder().str(), "Orvane/Tessel");
}

TEST(DataFolder, EveryBranchOfTheRule) {
  const TempFolder folder("data");
  const std::string existingFolder = folder.PathOf("config") + "/";
  fs::create_directory(folder.Path() / "config");
  const std::string existingFile = folder.Write("config.txt", "x");
  const std::string missing = folder.PathOf("missing");
  const std::string userData = folder.PathOf("xdg");
  const EnvironmentGuard xdg("XDG_DATA_HOME", userData.c_str());
  const std::string executableFolder = fs::read_symlink("/proc/self/exe").parent_path().string();
  const std::string label = corlith::DataFolderVersionLabel(corlith::kVersionText).str();

  // One call per row rather than an array of rows: GCC 12 warns falsely
  // (-Wmaybe-uninitialized) on arrays of aggregates holding strings.
  const auto check = [](const char* name, const DataFolderState& state, const std::string& expected) {
    SCOPED_TRACE(name);
    EXPECT_EQ(corlith::ResolveDataFolder(state, Utility()).str(), expected);
  };
  check("uninstalled: beside the executable", {0, 1, 1, CString(existingFolder)}, executableFolder);
  check("dormant per-user branch", {1, 0, 0, CString(existingFolder)}, userData + "/Orvane/Tessel");
  check("per-user branch ignores the edition", {1, 2, 1, CString()}, userData + "/Orvane/Tessel");
  check("existing folder: the variable as it stands", {1, 1, 0, CString(existingFolder)}, existingFolder);
  check("trailing backslash kept", {1, 1, 0, CString(folder.PathOf("config") + "\\")},
        folder.PathOf("config") + "\\");
  check("an existing file counts", {1, 1, 1, CString(existingFile)}, existingFile);
  check("missing: per-machine standard", {1, 1, 0, CString(missing)}, "/var/lib/Orvane/Tessel/" + label);
  check("missing: per-machine ECAD", {1, 1, 1, CString(missing)}, "/var/lib/Orvane/TesselForEcad/" + label);
  check("no variable", {1, 1, 0, CString()}, "/var/lib/Orvane/Tessel/" + label);
  check("unknown edition: no sub-folder", {1, 1, 7, CString()}, "/var/lib");
  EXPECT_FALSE(fs::exists(userData)) << "the data-folder rule creates nothing";
}

TEST(DataFolder, TemporaryFolderPathsAreComposedWithoutCreatingThem) {
  EXPECT_EQ(corlith::TesselTempFolderOf("/d").str(), "/d/Data/Temp");
  EXPECT_EQ(corlith::SolverTempRootOf("/d/").str(), "/d//Data/Analysis/Temp");
  EXPECT_EQ(corlith::SolverTempFolderOf("/d", 42, "job").str(), "/d/Data/Analysis/Temp/42/job");
  EXPECT_FALSE(fs::exists("/d"));
}

TEST(Environment, ExpandsKnownNamesAndKeepsEverythingElseAsWritten) {
  const EnvironmentGuard a("CORLITH_T_A", "alpha");
  const EnvironmentGuard empty("CORLITH_T_EMPTY", "");
  const EnvironmentGuard missing("CORLITH_T_MISSING", nullptr);
  const std::string longText = std::string(40000, 'x') + "%CORLITH_T_A%";
  struct Row {
    std::string text;
    std::string expected;
  };
  const Row rows[] = {
      {"%CORLITH_T_A%", "alpha"},
      {"x%CORLITH_T_A%y%CORLITH_T_A%", "xalphayalpha"},
      {"%CORLITH_T_MISSING%", "%CORLITH_T_MISSING%"},
      // the closing "%" of an unknown name may open the next reference
      {"%CORLITH_T_MISSING%CORLITH_T_A%", "%CORLITH_T_MISSINGalpha"},
      {"100%", "100%"},
      {"50%% done", "50%% done"},
      {"%%CORLITH_T_A%", "%alpha"},
      {"%CORLITH_T_EMPTY%x", "x"},
      {"%CORLITH_T_A=B%", "%CORLITH_T_A=B%"},
      {"%corlith_t_a%", "%corlith_t_a%"},
      {"", ""},
      {longText, std::string(40000, 'x') + "alpha"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text.substr(0, 40));
    EXPECT_EQ(Utility().ExpandEnvironmentStringsA(CString(row.text)).str(), row.expected);
  }
}

TEST(Environment, ValueIsEmptyWhenUnsetOrEmpty) {
  const EnvironmentGuard set("CORLITH_T_SET", "v a l");
  const EnvironmentGuard empty("CORLITH_T_EMPTY", "");
  const EnvironmentGuard missing("CORLITH_T_MISSING", nullptr);
  EXPECT_EQ(Utility().GetEnvironmentValue("CORLITH_T_SET").str(), "v a l");
  EXPECT_EQ(Utility().GetEnvironmentValue("CORLITH_T_EMPTY").str(), "");
  EXPECT_EQ(Utility().GetEnvironmentValue("CORLITH_T_MISSING").str(), "");
  // Names that name no variable, though the environment holds a prefix of them.
  const EnvironmentGuard equals("CORLITH_T_EQ", "B=hidden");
  EXPECT_EQ(Utility().GetEnvironmentValue("CORLITH_T_EQ=B").str(), "");
  EXPECT_EQ(Utility().GetEnvironmentValue(CString(std::string("CORLITH_T_SET\0x", 15))).str(), "");
}

TEST(DoesFileExist, FilesAndFoldersWhateverTheirTrailingSeparators) {
  const TempFolder folder("exists");
  const std::string file = folder.Write("f.txt", "x");
  const std::string dir = folder.PathOf("d");
  fs::create_directory(dir);
  fs::create_symlink(file, folder.Path() / "link");
  fs::create_symlink(folder.Path() / "gone", folder.Path() / "dangling");
  ASSERT_EQ(::mkfifo(folder.PathOf("fifo").c_str(), 0600), 0);
  const std::string root = folder.Path().string();
  struct Row {
    std::string path;
    bool expected;
  };
  const Row rows[] = {
      {file, true},
      {dir, true},
      {dir + "/", true},
      {dir + "\\", true},
      {dir + "//\\", true},
      {file + "/", true},
      {root + "\\d\\", true},
      {folder.PathOf("link"), true},
      {folder.PathOf("dangling"), false},
      {folder.PathOf("fifo"), false},
      {folder.PathOf("missing"), false},
      {"", false},
      // no drives on POSIX: a path of separators only is the root
      {"/", true},
      {"\\", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().DoesFileExist(CString(row.path), "UtilityPathsTest", __LINE__), row.expected);
  }
}

TEST(ForceDirectories, CreatesEveryLevelAtEitherSeparator) {
  struct Row {
    const char* path;               // below the temporary folder
    std::set<std::string> folders;  // every folder there afterwards
  };
  const Row rows[] = {
      {"/a\\b/c", {"exists", "a", "a/b", "a/b/c"}},
      {"/x/y/", {"exists", "x", "x/y"}},
      {"/exists", {"exists"}},
      // a level that is a file stops the levels below it, and nothing is reported
      {"/file/sub/deeper", {"exists"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    const TempFolder folder("force");
    fs::create_directory(folder.Path() / "exists");
    folder.Write("file", "x");
    EXPECT_EQ(Utility().ForceDirectories(CString(folder.Path().string() + row.path)), 1);
    std::set<std::string> folders;
    for (const auto& entry : fs::recursive_directory_iterator(folder.Path())) {
      if (entry.is_directory()) folders.insert(fs::relative(entry.path(), folder.Path()).string());
    }
    EXPECT_EQ(folders, row.folders);
  }
  EXPECT_EQ(Utility().ForceDirectories(CString()), 1);
}

TEST(IsWritingPermission, OneForAWritableFolderZeroForNothing) {
  const TempFolder folder("writable");
  EXPECT_EQ(Utility().IsWritingPermission(CString(folder.Path().string())), 1);
  EXPECT_EQ(Utility().IsWritingPermission(CString(folder.PathOf("missing"))), 0);
  EXPECT_EQ(Utility().IsWritingPermission(CString()), 0);
}

}  // namespace
