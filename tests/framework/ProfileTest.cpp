// The application profile: where its file lives, how INI text reads (whatever is in it)
// and how edits change it byte for byte, round trips through a second reader, and that a
// write that fails (a file-size limit in a child process, a folder that is a file) leaves
// the previous file exactly as it was.
#include <corlith/framework/Profile.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::ApplicationProfile;
using corlith::IniDocument;
using corlith::test::ReadFile;
using corlith::test::TempFolder;

/// Sets (or, with null, removes) an environment variable until the end of the scope.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old;
    if (value)
      ::setenv(name, value, 1);
    else
      ::unsetenv(name);
  }
  ~EnvironmentVariable() {
    if (m_old)
      ::setenv(m_name.c_str(), m_old->c_str(), 1);
    else
      ::unsetenv(m_name.c_str());
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  std::string m_name;
  std::optional<std::string> m_old;
};

std::vector<std::string> FolderNames(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

unsigned Mode(const fs::path& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

TEST(ProfileLocation, FileIsUnderTheUserConfigFolderWhenTheNamesArePlain) {
  const struct {
    const char* xdg;  // null: unset
    const char* company;
    const char* application;
    const char* path;  // "" : no file
  } kRows[] = {
      {"/cfg", "Orvane", "Tessel", "/cfg/Orvane/Tessel.ini"},
      {nullptr, "Orvane", "Tessel", "/home/u/.config/Orvane/Tessel.ini"},
      {"", "Orvane", "Tessel", "/home/u/.config/Orvane/Tessel.ini"},
      {"relative/cfg", "Orvane", "Tessel", "/home/u/.config/Orvane/Tessel.ini"},
      {"/cfg", "", "Tessel", "/cfg/Tessel.ini"},
      {"/cfg", "Local Apps", "Tessel For Ecad", "/cfg/Local Apps/Tessel For Ecad.ini"},
      {"/cfg", "..", "Tessel", ""},
      {"/cfg", ".", "Tessel", ""},
      {"/cfg", "Orvane", "", ""},
      {"/cfg", "Orvane", "..", ""},
      {"/cfg", "Orvane", "../x", ""},
      {"/cfg", "a/b", "Tessel", ""},
      {"/cfg", "a\\b", "Tessel", ""},
  };
  EnvironmentVariable home("HOME", "/home/u");
  for (const auto& row : kRows) {
    SCOPED_TRACE(std::string(row.xdg ? row.xdg : "(unset)") + " " + row.company + " " + row.application);
    EnvironmentVariable xdg("XDG_CONFIG_HOME", row.xdg);
    EXPECT_EQ(ApplicationProfile(row.company, row.application).GetFilePath(), fs::path(row.path));
  }
}

TEST(IniReading, AnyTextReadsByTheSameRules) {
  const struct {
    const char* name;
    std::string text;
    const char* section;
    const char* key;
    std::optional<std::string> value;
  } kRows[] = {
      {"plain", "[A]\nk=v\n", "A", "k", "v"},
      {"names ignore case", "[Recent File List]\nFile1=/a\n", "recent FILE list", "fILE1", "/a"},
      {"CR LF", "[A]\r\nk=v\r\n", "A", "k", "v"},
      {"blanks around names, value verbatim", "  [ A ]  \n\t k \t= v w \n", "A", "k", " v w "},
      {"= in the value", "[A]\nk=a=b\n", "A", "k", "a=b"},
      {"empty value", "[A]\nk=\n", "A", "k", ""},
      {"no line end at the end", "[A] ; note\nk=1", "A", "k", "1"},
      {"comments", "[A]\n;k=1\n  # k=2\nk=3\n", "A", "k", "3"},
      {"header without ]", "[A\nk=1\n", "A", "k", "1"},
      {"byte-order mark", "\xEF\xBB\xBF[A]\nk=1\n", "A", "k", "1"},
      {"first section counts", "[A]\nk=1\n[a]\nk=2\nj=3\n", "A", "k", "1"},
      {"later section unseen", "[A]\nk=1\n[a]\nk=2\nj=3\n", "a", "j", std::nullopt},
      {"first key counts", "[A]\nk=1\nK=2\n", "A", "K", "1"},
      {"before any section", "k=1\n[A]\n", "A", "k", std::nullopt},
      {"empty section name", "[]\nk=1\n", "", "k", std::nullopt},
      {"empty key", "[A]\n=1\n", "A", "", std::nullopt},
      {"missing section", "[A]\nk=1\n", "B", "k", std::nullopt},
      {"missing key", "[A]\nk=1\n", "A", "j", std::nullopt},
      {"other bytes", std::string("[A]\n\0\xff=\x01\nk=\x80\0x\n", 14), "A", "k", std::string("\x80\0x", 3)},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(IniDocument::Parse(row.text).Get(row.section, row.key), row.value);
  }
  EXPECT_EQ(IniDocument::Parse("[A]\nk=1\nK=2\n[B]\nx=\n[a]\nj=3\n").Entries(),
            (std::vector<IniDocument::Entry>{{"A", "k", "1"}, {"B", "x", ""}}));
}

TEST(IniEditing, EditsChangeOnlyWhatTheyName) {
  enum Op { Set, DeleteEntry, DeleteSection };
  const struct {
    const char* name;
    const char* before;
    Op op;
    const char* section;
    const char* key;
    const char* value;
    bool result;
    const char* after;  // null: as before
  } kRows[] = {
      {"into nothing", "", Set, "A", "k", "v", true, "[A]\nk=v\n"},
      {"spelling kept", "[A]\nk=v\n", Set, "a", "K", "w", true, "[A]\nk=w\n"},
      {"new key after the last entry", "[A]\nk=v\n\n[B]\nx=1\n", Set, "A", "j", "2", true,
       "[A]\nk=v\nj=2\n\n[B]\nx=1\n"},
      {"new key in an empty section", "[A]\n; note\n", Set, "A", "k", "v", true, "[A]\nk=v\n; note\n"},
      {"new section after a blank line", "; top\n[A]\nk=v\n", Set, "B", "x", "1", true,
       "; top\n[A]\nk=v\n\n[B]\nx=1\n"},
      {"one blank line only", "[A]\nk=v\n\n", Set, "B", "x", "1", true, "[A]\nk=v\n\n[B]\nx=1\n"},
      {"rewritten line loses CRs and blanks", "[A]\r\nk = old\r\nj=1\r\n", Set, "A", "k", "new", true,
       "[A]\nk=new\nj=1\n"},
      {"entry with comments around", "[A]\n; about k\nk=1\n# end\n", DeleteEntry, "A", "k", nullptr, true,
       "[A]\n; about k\n# end\n"},
      {"entry from every section of the name", "[A]\nk=1\nK=3\n[a]\nk=2\n", DeleteEntry, "a", "K", nullptr,
       true, "[A]\n[a]\n"},
      {"missing entry", "[A]\nk=1\n", DeleteEntry, "A", "j", nullptr, false, nullptr},
      {"every section of the name", "[A]\nk=1\n\n[B]\nx=1\n\n[a]\nj=2\n", DeleteSection, "a", nullptr,
       nullptr, true, "[B]\nx=1\n\n"},
      {"missing section", "[A]\nk=1\n", DeleteSection, "B", nullptr, nullptr, false, nullptr},
      {"lines before any section stay", "k=0\n[A]\nk=1\n", DeleteSection, "A", nullptr, nullptr, true,
       "k=0\n"},
      {"section with ]", "", Set, "A]", "k", "v", false, nullptr},
      {"empty section", "", Set, "", "k", "v", false, nullptr},
      {"section with blank end", "", Set, " A", "k", "v", false, nullptr},
      {"key with =", "", Set, "A", "a=b", "v", false, nullptr},
      {"empty key", "", Set, "A", "", "v", false, nullptr},
      {"key like a comment", "", Set, "A", ";k", "v", false, nullptr},
      {"key like a section", "", Set, "A", "[k", "v", false, nullptr},
      {"key with blank end", "", Set, "A", "k\t", "v", false, nullptr},
      {"value with a line feed", "[A]\nk=1\n", Set, "A", "k", "a\nb", false, nullptr},
      {"value with a CR", "[A]\nk=1\n", Set, "A", "k", "a\r", false, nullptr},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    IniDocument doc = IniDocument::Parse(row.before);
    const std::string unchanged = doc.Serialize();
    bool result = false;
    switch (row.op) {
      case Set:
        result = doc.Set(row.section, row.key, row.value);
        break;
      case DeleteEntry:
        result = doc.DeleteEntry(row.section, row.key);
        break;
      case DeleteSection:
        result = doc.DeleteSection(row.section);
        break;
    }
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(doc.Serialize(), row.after ? std::string(row.after) : unchanged);
    if (row.op == Set && row.result) {
      EXPECT_EQ(IniDocument::Parse(doc.Serialize()).Get(row.section, row.key), row.value);
    }
  }
}

class ProfileFile : public ::testing::Test {
 protected:
  TempFolder m_folder{"profile"};
  EnvironmentVariable m_xdg{"XDG_CONFIG_HOME", m_folder.Path().c_str()};
  fs::path m_file = m_folder.Path() / "Orvane" / "Tessel.ini";
};

TEST_F(ProfileFile, WritesRoundTripThroughASecondReader) {
  ApplicationProfile writer("Orvane", "Tessel");
  ASSERT_EQ(writer.GetFilePath(), m_file);
  EXPECT_TRUE(writer.WriteProfileString("Recent File List", "File1", "/boards/a&b.brd"));
  EXPECT_TRUE(writer.WriteProfileString("Recent File List", "File2", " spaced = name "));
  EXPECT_TRUE(writer.WriteProfileInt("Settings", "Count", -5));
  EXPECT_TRUE(writer.WriteProfileInt("Settings", "Max", 42));
  EXPECT_EQ(
      ReadFile(m_file),
      "[Recent File List]\nFile1=/boards/a&b.brd\nFile2= spaced = name \n\n[Settings]\nCount=-5\nMax=42\n");
  // The folder was made for its owner alone, and so was the new file.
  EXPECT_EQ(Mode(m_file.parent_path()), 0700u);
  EXPECT_EQ(Mode(m_file), 0600u);

  ApplicationProfile reader("Orvane", "Tessel");
  EXPECT_EQ(reader.GetProfileString("recent file list", "FILE1"), "/boards/a&b.brd");
  EXPECT_EQ(reader.GetProfileString("Recent File List", "File2"), " spaced = name ");
  EXPECT_EQ(reader.GetProfileString("Recent File List", "File3", "none"), "none");
  EXPECT_EQ(reader.GetProfileString("Recent File List", "File3"), "");
  EXPECT_EQ(reader.GetProfileString("Other", "File1", "none"), "none");
  EXPECT_EQ(static_cast<int>(reader.GetProfileInt("settings", "count", 7)), -5);
  EXPECT_EQ(reader.GetProfileInt("Settings", "Max", 7), 42u);
  EXPECT_EQ(reader.GetProfileInt("Settings", "Min", 7), 7u);
  EXPECT_EQ(reader.GetProfileString(nullptr, "File1", "d"), "d");
  EXPECT_EQ(reader.GetProfileString("Recent File List", nullptr, "d"), "d");
}

TEST_F(ProfileFile, NamesMatchWhateverTheirCaseAndKeepTheirFirstSpelling) {
  ApplicationProfile profile("Orvane", "Tessel");
  ASSERT_TRUE(profile.WriteProfileString("Recent File List", "File1", "/a"));
  ASSERT_TRUE(profile.WriteProfileString("RECENT FILE LIST", "file1", "/b"));
  ASSERT_TRUE(profile.WriteProfileString("recent file list", "FILE2", "/c"));
  EXPECT_EQ(ReadFile(m_file), "[Recent File List]\nFile1=/b\nFILE2=/c\n");
}

TEST_F(ProfileFile, NullValueDeletesTheEntryAndNullEntryTheSection) {
  ApplicationProfile profile("Orvane", "Tessel");
  // Deleting from a profile that has no file yet succeeds and makes none.
  EXPECT_TRUE(profile.WriteProfileString("Recent File List", nullptr, nullptr));
  EXPECT_TRUE(profile.WriteProfileString("Recent File List", "File1", nullptr));
  EXPECT_FALSE(fs::exists(m_file));

  const struct {
    const char* section;
    const char* entry;
    const char* value;
    const char* file;
  } kSteps[] = {
      {"Recent File List", "File1", "/a", "[Recent File List]\nFile1=/a\n"},
      {"Recent File List", "File2", "/b", "[Recent File List]\nFile1=/a\nFile2=/b\n"},
      {"Settings", "Mode", "1", "[Recent File List]\nFile1=/a\nFile2=/b\n\n[Settings]\nMode=1\n"},
      {"recent file list", "file1", nullptr, "[Recent File List]\nFile2=/b\n\n[Settings]\nMode=1\n"},
      {"Recent File List", "File9", nullptr, "[Recent File List]\nFile2=/b\n\n[Settings]\nMode=1\n"},
      {"RECENT FILE LIST", nullptr, nullptr, "[Settings]\nMode=1\n"},
      {"Recent File List", "File1", "/c", "[Settings]\nMode=1\n\n[Recent File List]\nFile1=/c\n"},
      {"Settings", nullptr, "ignored", "[Recent File List]\nFile1=/c\n"},
  };
  for (const auto& step : kSteps) {
    SCOPED_TRACE(std::string(step.section) + "/" + (step.entry ? step.entry : "(null)"));
    EXPECT_TRUE(profile.WriteProfileString(step.section, step.entry, step.value));
    EXPECT_EQ(ReadFile(m_file), step.file);
  }
}

TEST_F(ProfileFile, GetProfileIntReadsTheLeadingNumber) {
  const struct {
    const char* value;  // null: no entry
    UINT expected;
  } kRows[] = {
      {"12", 12},
      {"-5", static_cast<UINT>(-5)},
      {" \t7", 7},
      {"+8", 8},
      {"12abc", 12},
      {"abc", 0},
      {" ", 0},
      {"", 99},
      {nullptr, 99},
      {"4294967295", 0xFFFFFFFF},
      {"99999999999999999999999", 0xFFFFFFFF},
      {"-2147483648", 0x80000000},
      {"-99999999999999999999999", 0x80000000},
  };
  ApplicationProfile profile("Orvane", "Tessel");
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.value ? row.value : "(no entry)");
    ASSERT_TRUE(profile.WriteProfileString("Settings", "N", row.value));
    EXPECT_EQ(profile.GetProfileInt("Settings", "N", 99), row.expected);
  }
}

TEST_F(ProfileFile, ProfilesWithoutAFileReadDefaultsAndRefuseWrites) {
  const struct {
    const char* name;
    std::shared_ptr<ApplicationProfile> profile;
  } kRows[] = {
      {"unnamed", std::make_shared<ApplicationProfile>()},
      {"climbing company", std::make_shared<ApplicationProfile>("..", "Tessel")},
      {"empty application", std::make_shared<ApplicationProfile>("Orvane", "")},
      {"the process's default", corlith::GetApplicationProfile()},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(row.profile->GetFilePath().empty());
    EXPECT_FALSE(row.profile->WriteProfileString("A", "k", "v"));
    EXPECT_FALSE(row.profile->WriteProfileInt("A", "k", 1));
    EXPECT_EQ(row.profile->GetProfileString("A", "k", "d"), "d");
    EXPECT_EQ(row.profile->GetProfileInt("A", "k", 3), 3u);
  }
  EXPECT_TRUE(FolderNames(m_folder.Path()).empty());
}

TEST_F(ProfileFile, RefusedWritesLeaveTheFileAlone) {
  ApplicationProfile profile("Orvane", "Tessel");
  ASSERT_TRUE(profile.WriteProfileString("A", "k", "v"));
  const std::string before = ReadFile(m_file);
  const struct {
    const char* section;
    const char* entry;
    const char* value;
  } kRows[] = {{nullptr, "k", "v"}, {"A]", "k", "v"}, {"A", "k=", "v"}, {"A", "k", "two\nlines"}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.section ? row.section : "(null)");
    EXPECT_FALSE(profile.WriteProfileString(row.section, row.entry, row.value));
    EXPECT_EQ(ReadFile(m_file), before);
  }
}

TEST_F(ProfileFile, WhatStandsInTheWayMakesTheWriteFail) {
  const struct {
    const char* name;
    void (*block)(const fs::path& file);
  } kRows[] = {
      {"the company folder is a file",
       [](const fs::path& file) { corlith::test::WriteFile(file.parent_path(), "x"); }},
      {"the profile is a folder", [](const fs::path& file) { fs::create_directories(file); }},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    fs::remove_all(m_file.parent_path());
    row.block(m_file);
    ApplicationProfile profile("Orvane", "Tessel");
    EXPECT_FALSE(profile.WriteProfileString("A", "k", "v"));
    EXPECT_EQ(profile.GetProfileString("A", "k", "d"), "d");
  }
  EXPECT_TRUE(fs::is_directory(m_file));
}

TEST_F(ProfileFile, FailedWriteLeavesThePreviousFileIntact) {
  // A child with a file-size limit below the new content: the write of the temporary
  // file fails part way (EFBIG; SIGXFSZ is ignored so that the child lives to report).
  // The child is told the parent's file (its own fixture made another folder).
  if (const char* file = std::getenv("CORLITH_PROFILE_CHILD")) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    ApplicationProfile profile{fs::path(file)};
    const BOOL result = profile.WriteProfileString("A", "big", std::string(10000, 'x').c_str());
    std::printf("result=%d\n", result);
    return;
  }
  for (const bool hadFile : {true, false}) {
    SCOPED_TRACE(hadFile ? "replacing a file" : "no file before");
    fs::remove_all(m_file.parent_path());
    ApplicationProfile profile("Orvane", "Tessel");
    if (hadFile) {
      ASSERT_TRUE(profile.WriteProfileString("A", "k", "previous"));
    }
    const std::string before = ReadFile(m_file);

    corlith::test::ChildProcess child =
        corlith::test::StartThisTest({"CORLITH_PROFILE_CHILD=" + m_file.string()});
    ASSERT_TRUE(child.Started());
    EXPECT_EQ(child.Wait(), 0) << child.Output();
    EXPECT_NE(child.Output().find("result=0\n"), std::string::npos) << child.Output();

    EXPECT_EQ(ReadFile(m_file), before);
    EXPECT_EQ(fs::exists(m_file), hadFile);
    // No temporary file is left behind.
    EXPECT_EQ(FolderNames(m_file.parent_path()),
              hadFile ? std::vector<std::string>{"Tessel.ini"} : std::vector<std::string>{});
    EXPECT_EQ(profile.GetProfileString("A", "big", "absent"), "absent");
  }
}

TEST_F(ProfileFile, ReplacingKeepsTheModeAndFollowsALink) {
  const fs::path real = m_folder.Path() / "dotfiles" / "tessel.ini";
  fs::create_directories(real.parent_path());
  ASSERT_TRUE(corlith::test::WriteFile(real, "[A]\nk=1\n"));
  fs::permissions(real, fs::perms(0644));
  fs::create_directories(m_file.parent_path());
  fs::create_symlink(real, m_file);

  ApplicationProfile profile("Orvane", "Tessel");
  ASSERT_TRUE(profile.WriteProfileString("A", "k", "2"));
  EXPECT_TRUE(fs::is_symlink(m_file));
  EXPECT_EQ(ReadFile(real), "[A]\nk=2\n");
  EXPECT_EQ(Mode(real), 0644u);
  EXPECT_EQ(FolderNames(real.parent_path()), std::vector<std::string>{"tessel.ini"});
}

TEST_F(ProfileFile, WritesFromManyThreadsThroughOneProfileAreAllKept) {
  ApplicationProfile profile("Orvane", "Tessel");
  constexpr int kThreads = 4;
  constexpr int kEach = 10;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&profile, t] {
      const std::string section = "T" + std::to_string(t);
      for (int i = 0; i < kEach; ++i) {
        EXPECT_TRUE(profile.WriteProfileInt(section.c_str(), ("K" + std::to_string(i)).c_str(), t * 100 + i));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  ApplicationProfile reader("Orvane", "Tessel");
  for (int t = 0; t < kThreads; ++t) {
    for (int i = 0; i < kEach; ++i) {
      SCOPED_TRACE(t * 100 + i);
      EXPECT_EQ(
          reader.GetProfileInt(("T" + std::to_string(t)).c_str(), ("K" + std::to_string(i)).c_str(), -1),
          static_cast<UINT>(t * 100 + i));
    }
  }
}

TEST_F(ProfileFile, TheProcessProfileIsTheOneInstalled) {
  auto installed = std::make_shared<ApplicationProfile>("Orvane", "Tessel");
  {
    corlith::ScopedApplicationProfile scope(installed);
    EXPECT_EQ(corlith::GetApplicationProfile(), installed);
    EXPECT_TRUE(corlith::GetApplicationProfile()->WriteProfileString("A", "k", "v"));
  }
  EXPECT_NE(corlith::GetApplicationProfile(), installed);
  EXPECT_TRUE(corlith::GetApplicationProfile()->GetFilePath().empty());
  EXPECT_EQ(ReadFile(m_file), "[A]\nk=v\n");
}

}  // namespace
