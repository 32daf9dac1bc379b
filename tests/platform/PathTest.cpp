// Paths read separator-agnostically and written natively: the join, the listing-pattern
// matcher of the original enumeration (every rewrite rule, and no exponential blow-up),
// the running program's and its modules' paths, special folders and the environment.
#include <corlith/platform/Path.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace corlith::platform;

// Sets or unsets environment variables for one test and puts the old values back.
class EnvironmentGuard {
 public:
  EnvironmentGuard() = default;
  EnvironmentGuard(const EnvironmentGuard&) = delete;
  EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;
  ~EnvironmentGuard() {
    for (auto it = m_saved.rbegin(); it != m_saved.rend(); ++it) Apply(it->first, it->second);
  }
  void Set(const std::string& name, const std::optional<std::string>& value) {
    const char* old = std::getenv(name.c_str());
    m_saved.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
    Apply(name, value);
  }

 private:
  static void Apply(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      ::setenv(name.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name.c_str());
    }
  }
  std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};

std::string FileNameOf(const std::string& path) { return fs::path(path).filename().string(); }

TEST(PathSeparators, BothSeparatorsAreReadAndTheNativeOneIsWritten) {
  EXPECT_EQ(ToNativeSeparators("C:\\a/b\\\\c"), "C:/a/b//c");
  EXPECT_EQ(ToNativeSeparators(""), "");

  struct Row {
    std::string_view path;
    std::size_t lastSeparator;
    bool drive;
    bool absolute;
  };
  const Row rows[] = {
      {"", std::string_view::npos, false, false},
      {"name.txt", std::string_view::npos, false, false},
      {"a\\b/c", 3, false, false},
      {"a/b\\c", 3, false, false},
      {"dir\\", 3, false, false},
      {"C:", std::string_view::npos, true, true},
      {"c:\\x", 2, true, true},
      {"z:rel", std::string_view::npos, true, true},
      {"1:\\x", 2, false, false},  // a digit is no drive letter
      {":\\x", 1, false, false},
      {"\\\\server\\share", 8, false, true},
      {"//server/share", 8, false, true},
      {"/usr/lib", 4, false, true},
      {"\\tmp", 0, false, true},  // read as "/tmp" on POSIX
      {"..\\x", 2, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(FindLastSeparator(row.path), row.lastSeparator);
    EXPECT_EQ(HasDriveLetter(row.path), row.drive);
    EXPECT_EQ(IsAbsolutePath(row.path), row.absolute);
  }
}

TEST(CombinePath, JoinsOnceAndNormalisesDotSegmentsWithNativeSeparators) {
  struct Row {
    std::string_view dir;
    std::string_view file;
    std::string_view expected;
  };
  const Row rows[] = {
      // the join itself
      {"C:\\a", "b", "C:/a/b"},
      {"C:\\a\\", "b", "C:/a/b"},
      {"C:\\a\\\\", "b", "C:/a/b"},
      {"/x", "y/z", "/x/y/z"},
      {"C:", "b", "C:/b"},
      {"", "b", "b"},
      {"a", "", "a"},
      {"", "", ""},
      {"a//b", "c", "a/b/c"},
      {"/tmp", "my dir/\xC3\xA4 x.txt", "/tmp/my dir/\xC3\xA4 x.txt"},
      {"x", "...", "x/..."},
      {"x", ".hidden", "x/.hidden"},
      // an absolute file stands alone
      {"C:\\a", "D:\\b", "D:/b"},
      {"C:\\a", "\\b", "/b"},
      {"/x", "/y", "/y"},
      {"/x", "\\\\srv\\share\\f", "//srv/share/f"},
      // "." and ".."
      {"/x/y", "../z", "/x/z"},
      {"C:\\a\\.\\b", "..\\c", "C:/a/c"},
      {"a/./b/.", "", "a/b"},
      {"/a/b", "../../../c", "/c"},
      {"/", "..", "/"},
      {"C:\\", "..", "C:/"},
      {"C:\\a", "..\\..", "C:/"},
      {"C:a", "..\\..\\b", "C:b"},
      {"\\\\server\\share", "dir\\f.txt", "//server/share/dir/f.txt"},
      {"\\\\server\\share", "..\\..\\..\\x", "//x"},
      {"/a", "b/../../..", "/"},
      // relative paths keep the ".." they cannot resolve
      {"a\\b", "..\\..\\..\\c", "../c"},
      {"..", "a", "../a"},
      {"../..", "..", "../../.."},
      {"a", "..", ""},
      {".", ".", ""},
      // a closing separator is kept, once
      {"a\\b\\", "", "a/b/"},
      {"a", "b\\", "a/b/"},
      {"/x", "./", "/x/"},
      {"a", "b//", "a/b/"},
      {"a", "../", ""},
      {"..", "./", "../"},
      // a relative path that "." and ".." turn into a drive path is read as one
      {"x", "..\\D:\\y", "D:/y"},
      {"x\\..", "D:..\\y", "D:y"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.dir) + " + " + std::string(row.file));
    const std::string combined = CombinePath(row.dir, row.file);
    EXPECT_EQ(combined, row.expected);
    // The result is already in its canonical form.
    EXPECT_EQ(CombinePath(combined, ""), combined);
    EXPECT_EQ(combined.find('\\'), std::string::npos);
  }
}

TEST(MatchesListingPattern, FollowsTheOriginalEnumerationRules) {
  struct Row {
    std::string_view pattern;
    std::string_view name;
    bool matches;
  };
  const Row rows[] = {
      // "*" and "*.*" take everything, dots or not
      {"*", "abc", true},
      {"*", ".hidden", true},
      {"*", "a.b.c", true},
      {"*.*", "noext", true},
      {"*.*", ".hidden", true},
      {"*.*", "a.b.c", true},
      // a literal part is ASCII case-insensitive
      {"*.txt", "a.txt", true},
      {"*.txt", "A.TXT", true},
      {"*.TXT", "a.txt", true},
      {"README", "readme", true},
      {"readme", "readme.md", false},
      // "*" before "." runs up to the name's last dot
      {"*.txt", "a.b.txt", true},
      {"*.txt", ".txt", true},
      {"*.txt", "a.txt.bak", false},
      {"*.txt", "atxt", false},
      {"*.txt", "a.btxt", false},
      {"*.c", "a.b.c", true},
      {"*.b", "a.b.c", false},
      {"*.b*", "a.b.c", true},
      {"a*.*", "abc", true},
      {"a*.*", "xbc", false},
      // a plain "*" crosses dots
      {"*a", "b.a", true},
      {"*a", "ab", false},
      {"a*b*c", "a.x.b.y.c", true},
      // "?" takes one character, or nothing at a "." or the end
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"a?c", "a.c", false},
      {"a?c", "abbc", false},
      {"a?", "a", true},
      {"a??", "a", true},
      {"a??", "ab", true},
      {"a??", "abcd", false},
      {"a?.txt", "a.txt", true},
      {"a?.txt", "ab.txt", true},
      {"a?.txt", "abc.txt", false},
      {"???", "a.b", false},
      {"?", "", true},
      // "." before "?", "*" or the end also takes a missing extension
      {"?.?", "a.b", true},
      {"?.?", "a", true},
      {"a.*", "a", true},
      {"a.*", "a.b", true},
      {"a.*", "a.b.c", true},
      {"a.*", "ab", false},
      {"*.", "noext", true},
      {"*.", "a.b", false},
      {"*.", ".hidden", false},
      {"*.", "a.", true},
      {".*", ".hidden", true},
      {".*", ".", true},
      {".*", "abc", false},
      {"a.", "a", true},
      {"a.", "ab", false},
      // blanks are ordinary characters
      {"my *.txt", "my file.txt", true},
      {"*file*", "my file.txt", true},
      {"* *", "a b", true},
      {"* *", "ab", false},
      // beyond ASCII: one "?" per character, no case folding
      {"\xC3\xA4*", "\xC3\xA4.txt", true},
      {"\xC3\x84*", "\xC3\xA4.txt", false},
      {"?.txt", "\xC3\xA4.txt", true},
      {"??.txt", "\xC3\xA4.txt", true},
      {"a?c",
       "a\xE2\x82\xAC"
       "c",
       true},
      {"a?c",
       "a\xF0\x9F\x98\x80"
       "c",
       true},
      {"a??c",
       "a\xF0\x9F\x98\x80"
       "c",
       false},
      {"a?c",
       "a\xA4\xA4"
       "c",
       false},  // stray continuation bytes are one character each
      {"a??c",
       "a\xA4\xA4"
       "c",
       true},
      // the empty pattern
      {"", "", true},
      {"", "a", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.pattern) + " ~ " + std::string(row.name));
    EXPECT_EQ(MatchesListingPattern(row.pattern, row.name), row.matches);
  }
}

TEST(MatchesListingPattern, StaysPolynomialOnPatternsThatBreakBacktrackers) {
  // A backtracking matcher needs about name^stars steps here and never finishes.
  std::string pattern;
  for (int i = 0; i < 40; ++i) pattern += "*a";
  const std::string stars = pattern;
  pattern += "b";
  const std::string name(5000, 'a');
  EXPECT_FALSE(MatchesListingPattern(pattern, name));
  EXPECT_TRUE(MatchesListingPattern(stars, name));
  // The same with the DOS forms, and a pattern longer than the stack buffer.
  std::string dos;
  for (int i = 0; i < 100; ++i) dos += "*.?";
  EXPECT_FALSE(MatchesListingPattern(dos + "x", std::string(3000, '.')));
}

TEST(ModulePaths, ExecutableAndLoadedModulesAreFoundByTheirNames) {
  const std::string executable = ExecutablePath();
  ASSERT_FALSE(executable.empty());
  EXPECT_EQ(fs::path(executable), fs::canonical("/proc/self/exe"));
  EXPECT_EQ(LoadedModulePath(""), executable);

  const std::string libc = LoadedModulePath("libc.so.6");
  ASSERT_FALSE(libc.empty());
  EXPECT_EQ(FileNameOf(libc), "libc.so.6");
  EXPECT_TRUE(fs::exists(libc));
  for (const std::string_view name : {"c", "libc.so", "LIBC.SO.6", "c.dll", "C.DLL", libc.c_str()}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(LoadedModulePath(name), libc);
  }
  for (const std::string_view name :
       {"libc.so.5.not", "libc.s", "ibc", "lib", "/libc.so.6", "no-such-module"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(LoadedModulePath(name), "");
  }
}

TEST(ModulePaths, AModuleIsFoundOnlyWhileItIsLoaded) {
  // glibc's libanl is on every machine and nothing this test binary links (fontconfig
  // brings zlib and others along); it is loaded here on purpose.
  ASSERT_EQ(LoadedModulePath("anl"), "") << "libanl is already loaded; pick another library";
  void* handle = ::dlopen("libanl.so.1", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << ::dlerror();
  const std::string path = LoadedModulePath("anl");
  EXPECT_TRUE(fs::path(path).is_absolute());
  EXPECT_TRUE(FileNameOf(path).starts_with("libanl.so.1")) << path;
  EXPECT_EQ(LoadedModulePath("libanl.so.1"), path);
  EXPECT_EQ(LoadedModulePath("libanl.so"), path);
  EXPECT_EQ(LoadedModulePath(FileNameOf(path)), path);
  ::dlclose(handle);
}

TEST(SpecialFolders, UserDataFollowsXdgThenHomeThenPasswd) {
  struct Row {
    const char* label;
    std::optional<std::string> xdg;
    std::optional<std::string> home;
    std::string expected;  // "<passwd>" stands for the account's home directory
  };
  const Row rows[] = {
      {"xdg wins", "/x/data", "/home/u", "/x/data"},
      {"no xdg", std::nullopt, "/home/u", "/home/u/.local/share"},
      {"empty xdg", "", "/home/u", "/home/u/.local/share"},
      {"relative xdg", "rel/data", "/home/u", "/home/u/.local/share"},
      {"home with slash", std::nullopt, "/home/u/", "/home/u/.local/share"},
      {"no home", std::nullopt, std::nullopt, "<passwd>/.local/share"},
      {"empty home", std::nullopt, "", "<passwd>/.local/share"},
  };
  const passwd* account = ::getpwuid(::getuid());
  ASSERT_NE(account, nullptr);
  std::string passwdHome = account->pw_dir;
  if (passwdHome.size() > 1 && passwdHome.back() == '/') passwdHome.pop_back();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EnvironmentGuard guard;
    guard.Set("XDG_DATA_HOME", row.xdg);
    guard.Set("HOME", row.home);
    std::string expected = row.expected;
    if (expected.starts_with("<passwd>")) expected.replace(0, 8, passwdHome);
    EXPECT_EQ(UserDataFolder(), expected);
  }
  EXPECT_EQ(MachineDataFolder(), "/var/lib");
}

TEST(Environment, UnsetAndEmptyVariablesAreTold) {
  EnvironmentGuard guard;
  guard.Set("CORLITH_PATH_TEST_SET", "value with = and blanks");
  guard.Set("CORLITH_PATH_TEST_EMPTY", "");
  guard.Set("CORLITH_PATH_TEST_UNSET", std::nullopt);
  std::string value = "stale";
  EXPECT_TRUE(GetEnvironmentVariable("CORLITH_PATH_TEST_SET", value));
  EXPECT_EQ(value, "value with = and blanks");
  value = "stale";
  EXPECT_TRUE(GetEnvironmentVariable("CORLITH_PATH_TEST_EMPTY", value));
  EXPECT_EQ(value, "");
  value = "stale";
  EXPECT_FALSE(GetEnvironmentVariable("CORLITH_PATH_TEST_UNSET", value));
  EXPECT_EQ(value, "");
  EXPECT_FALSE(GetEnvironmentVariable(nullptr, value));
  EXPECT_EQ(CurrentProcessId(), static_cast<int>(::getpid()));
}

}  // namespace
