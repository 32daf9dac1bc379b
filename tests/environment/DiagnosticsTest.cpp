// The diagnostics members of KTUtility on the running machine: the memory report's lines
// and a real change of its values, the debug marker beside a copied fixture program, the
// account of this user and of a user id without a record, and the font and spreadsheet
// rules in children whose fontconfig configuration, PATH and XDG folders are private.
#include <corlith/environment/Utility.h>
#include <corlith/platform/Diagnostics.h>
#include <corlith/platform/Process.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::ChildProcess;
using corlith::test::StartThisTest;
using corlith::test::TempFolder;
using corlith::test::ToStrings;
using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

// Set in a child started by StartThisTest: the part it plays; null in the parent.
constexpr const char* kChildVariable = "CORLITH_DIAGNOSTICS_CHILD";
const char* ChildRole() { return std::getenv(kChildVariable); }

Lines SplitLines(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The lines a child printed with the "@@ " mark, without it.
Lines ChildLines(const std::string& output) {
  Lines lines;
  for (const std::string& line : SplitLines(output)) {
    if (line.starts_with("@@ ")) lines.push_back(line.substr(3));
  }
  return lines;
}

// Runs this test again in a child with `environment`; the lines it marked.
Lines RunChild(const std::vector<std::string>& environment) {
  ChildProcess child = StartThisTest(environment);
  EXPECT_EQ(child.Wait(), 0) << child.Output();
  return ChildLines(child.Output());
}

// --- the memory report --------------------------------------------------------------

const char* const kCounterNames[] = {
    "PageFaultCount",          "PeakWorkingSetSize",  "WorkingSetSize",
    "QuotaPeakPagedPoolUsage", "QuotaPagedPoolUsage", "QuotaPeakNonPagedPoolUsage",
    "QuotaNonPagedPoolUsage",  "PagefileUsage",       "PeakPagefileUsage"};

// The report's value of one counter, found by its exact line format; -1 when missing.
long long Counter(const CStringArray& lines, const std::string& name) {
  const std::regex format("\t" + name + ": ([0-9]+) MB\n");
  for (const std::string& line : ToStrings(lines)) {
    std::smatch match;
    if (std::regex_match(line, match, format)) return std::stoll(match[1]);
  }
  return -1;
}

TEST(MemoryReport, AppendsTheProcessLineAndNineCounterLinesInTheirFormats) {
  CStringArray lines;
  lines.Add("kept");
  ASSERT_EQ(Utility().GetMemoryInfoByCurrentProcess(lines), 1);
  const Lines got = ToStrings(lines);
  ASSERT_EQ(got.size(), 11u);
  EXPECT_EQ(got[0], "kept") << "lines are appended, never replacing the caller's";
  EXPECT_EQ(got[1], "\nProcess ID: " + std::to_string(::getpid()) + "\n");
  for (std::size_t i = 0; i < std::size(kCounterNames); ++i) {
    SCOPED_TRACE(kCounterNames[i]);
    EXPECT_TRUE(
        std::regex_match(got[i + 2], std::regex(std::string("\t") + kCounterNames[i] + ": [0-9]+ MB\n")))
        << got[i + 2];
  }
  // A Linux process has no paged pool; the peaks are never below their current values.
  EXPECT_EQ(Counter(lines, "QuotaPagedPoolUsage"), 0);
  EXPECT_EQ(Counter(lines, "QuotaPeakPagedPoolUsage"), 0);
  EXPECT_GE(Counter(lines, "PeakWorkingSetSize"), Counter(lines, "WorkingSetSize"));
  EXPECT_GE(Counter(lines, "PeakPagefileUsage"), Counter(lines, "PagefileUsage"));
}

TEST(MemoryReport, TouchingSixtyFourMebibytesGrowsTheWorkingSetAndTheCommitCharge) {
  CStringArray before;
  ASSERT_EQ(Utility().GetMemoryInfoByCurrentProcess(before), 1);
  constexpr std::size_t kSize = 64u << 20;
  auto block = std::make_unique<unsigned char[]>(kSize);  // zero-filled: every page written
  for (std::size_t i = 0; i < kSize; i += 4096) block[i] = static_cast<unsigned char>(i >> 12);
  CStringArray after;
  ASSERT_EQ(Utility().GetMemoryInfoByCurrentProcess(after), 1);
  volatile unsigned char keep = block[kSize - 4096];
  (void)keep;

  // 64 MiB less a little for pages the allocator or the kernel handles otherwise.
  EXPECT_GE(Counter(after, "WorkingSetSize") - Counter(before, "WorkingSetSize"), 60);
  EXPECT_GE(Counter(after, "PeakWorkingSetSize"), Counter(after, "WorkingSetSize"));
  EXPECT_GE(Counter(after, "PagefileUsage") - Counter(before, "PagefileUsage"), 60);
  EXPECT_GE(Counter(after, "PeakPagefileUsage"), Counter(after, "PagefileUsage"));
}

TEST(ProcessStatusText, FieldsMapToTheCountersOrTheTextIsRefused) {
  const std::string full =
      "Name:\tdiag\nVmPeak:\t  3145728 kB\nVmSize:\t 2097152 kB\nVmHWM:\t    2048 kB\n"
      "VmRSS:\t    1024 kB\nVmData:\t   10240 kB\nVmStk:\t     132 kB\nVmPTE:\t      76 kB\n";
  struct Row {
    const char* name;
    std::string text;
    bool accepted;
    corlith::platform::MemoryCounters expected;
  };
  const std::vector<Row> rows = {
      {"every field",
       full,
       true,
       {0, 2048u << 10, 1024u << 10, 0, 0, 76u << 10, 76u << 10, 10372u << 10, 3145728ull << 10}},
      {"no VmStk or VmPTE (older kernels)",
       "VmPeak: 8 kB\nVmHWM: 4 kB\nVmRSS: 3 kB\nVmData: 2 kB",
       true,
       {0, 4096, 3072, 0, 0, 0, 0, 2048, 8192}},
      {"no VmRSS", "VmPeak: 8 kB\nVmHWM: 4 kB\nVmData: 2 kB\n", false, {}},
      {"no VmPeak", "VmHWM: 4 kB\nVmRSS: 3 kB\nVmData: 2 kB\n", false, {}},
      {"another unit", "VmPeak: 8 kB\nVmHWM: 4 MB\nVmRSS: 3 kB\nVmData: 2 kB\n", false, {}},
      {"not a number", "VmPeak: 8 kB\nVmHWM: 4 kB\nVmRSS: x kB\nVmData: 2 kB\n", false, {}},
      {"a value beyond 64 bits in bytes",
       "VmPeak: 8 kB\nVmHWM: 4 kB\nVmRSS: 18014398509481984 kB\nVmData: 2 kB\n",
       false,
       {}},
      {"a negative value", "VmPeak: 8 kB\nVmHWM: 4 kB\nVmRSS: -3 kB\nVmData: 2 kB\n", false, {}},
      {"empty", "", false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    corlith::platform::MemoryCounters got;
    got.pagefileUsage = 12345;  // a refused text leaves the counters as they were
    ASSERT_EQ(corlith::platform::ParseProcessStatus(row.text, got), row.accepted);
    if (!row.accepted) {
      EXPECT_EQ(got.pagefileUsage, 12345u);
      continue;
    }
    EXPECT_EQ(got.peakWorkingSetSize, row.expected.peakWorkingSetSize);
    EXPECT_EQ(got.workingSetSize, row.expected.workingSetSize);
    EXPECT_EQ(got.quotaPeakPagedPoolUsage, 0u);
    EXPECT_EQ(got.quotaPagedPoolUsage, 0u);
    EXPECT_EQ(got.quotaPeakNonPagedPoolUsage, row.expected.quotaPeakNonPagedPoolUsage);
    EXPECT_EQ(got.quotaNonPagedPoolUsage, row.expected.quotaNonPagedPoolUsage);
    EXPECT_EQ(got.pagefileUsage, row.expected.pagefileUsage);
    EXPECT_EQ(got.peakPagefileUsage, row.expected.peakPagefileUsage);
  }
}

// --- the debug marker ---------------------------------------------------------------

TEST(DebugMarker, CountsOnlyBesideTheExecutableAndIsLookedForOnEveryCall) {
  TempFolder root("diag-marker");
  const fs::path bin = root.Path() / "bin";
  const fs::path elsewhere = root.Path() / "work";
  fs::create_directories(bin);
  fs::create_directories(elsewhere);
  fs::copy_file(CORLITH_ENVIRONMENT_FIXTURE, bin / "fixture");
  // A marker in the current folder is not beside the executable.
  root.Write("work/DEBUG_FILE", "");

  const std::string marker = (bin / "DEBUG_FILE").string();
  const std::string named = (bin / "trace.on").string();
  corlith::platform::SpawnOptions options;
  options.program = bin / "fixture";
  options.workingFolder = elsewhere;
  options.arguments = {"debugfile", "",         "write",     marker, "debugfile", "",
                       "debugfile", "trace.on", "write",     named,  "debugfile", "trace.on",
                       "remove",    marker,     "debugfile", "",     "debugfile", "DEBUG_FILE"};
  options.output = corlith::platform::StreamTarget::Pipe();
  const auto result = corlith::platform::RunHidden(options, 60s);
  ASSERT_EQ(result.error, 0);
  ASSERT_TRUE(result.status.Succeeded());
  EXPECT_EQ(SplitLines(result.output),
            (Lines{"0", "written", "1", "0", "written", "1", "removed", "0", "0"}));
}

// --- the account --------------------------------------------------------------------

constexpr uid_t kUnknownUid = 54321;

bool HasPasswdRecord(uid_t uid) {
  std::vector<char> buffer(1 << 16);
  passwd entry{};
  passwd* found = nullptr;
  return ::getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
}

TEST(UserAccount, TheCurrentUserIsKnownByName) {
  ASSERT_TRUE(HasPasswdRecord(::geteuid())) << "the test needs a user with a passwd record";
  EXPECT_EQ(Utility().GetUserAccountType(), 0);
  corlith::platform::UserAccount account;
  ASSERT_EQ(corlith::platform::CurrentUserAccount(account), 0);
  std::vector<char> buffer(1 << 16);
  passwd entry{};
  passwd* found = nullptr;
  ASSERT_EQ(::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found), 0);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(account.name, found->pw_name);
}

TEST(UserAccount, AUserIdWithoutARecordIsMinusOne) {
  if (ChildRole() != nullptr) {
    ASSERT_EQ(::setresuid(kUnknownUid, kUnknownUid, kUnknownUid), 0);
    corlith::platform::UserAccount account;
    account.name = "untouched";
    std::printf("@@ %d %d %s\n", Utility().GetUserAccountType(),
                corlith::platform::CurrentUserAccount(account), account.name.c_str());
    return;
  }
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become a user id without a passwd record";
  if (HasPasswdRecord(kUnknownUid)) GTEST_SKIP() << "user id " << kUnknownUid << " has a record here";
  EXPECT_EQ(RunChild({std::string(kChildVariable) + "=account"}),
            (Lines{"-1 " + std::to_string(ENOENT) + " untouched"}));
}

// --- font families ------------------------------------------------------------------

constexpr const char* kDejaVu = "/usr/share/fonts/truetype/dejavu";

// A bitmap font in BDF, which fontconfig lists but which is not scalable.
constexpr const char* kBitmapFont = R"(STARTFONT 2.1
FONT -Misc-TinyBitmap-Medium-R-Normal--8-80-75-75-C-80-ISO10646-1
SIZE 8 75 75
FONTBOUNDINGBOX 8 8 0 0
STARTPROPERTIES 3
FAMILY_NAME "TinyBitmap"
FONT_ASCENT 8
FONT_DESCENT 0
ENDPROPERTIES
CHARS 1
STARTCHAR A
ENCODING 65
SWIDTH 1000 0
DWIDTH 8 0
BBX 8 8 0 0
BITMAP
FF
81
81
81
81
81
81
FF
ENDCHAR
ENDFONT
)";

// A private fontconfig configuration whose only font folder is <root>/fonts.
std::string WriteFontConfiguration(const TempFolder& root) {
  fs::create_directories(root.Path() / "fonts");
  return root.Write("fonts.conf",
                    "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n"
                    "<fontconfig>\n  <dir>" +
                        root.PathOf("fonts") + "</dir>\n  <cachedir>" + root.PathOf("cache") +
                        "</cachedir>\n</fontconfig>\n");
}

std::vector<std::string> FontEnvironment(const TempFolder& root, const std::string& configuration) {
  return {std::string(kChildVariable) + "=fonts", "FONTCONFIG_FILE=" + configuration,
          "XDG_CACHE_HOME=" + root.PathOf("cache")};
}

TEST(FontFamilies, EachScalableFamilyOnceSortedAndTheArrayEmptiedFirst) {
  if (ChildRole() != nullptr) {
    CStringArray names;
    names.Add("stale");
    Utility().GetWindowsTrueTypeFontNames(names);
    for (const std::string& name : ToStrings(names)) std::printf("@@ %s\n", name.c_str());
    std::printf("@@ end\n");
    return;
  }
  if (!fs::exists(fs::path(kDejaVu) / "DejaVuSans.ttf")) GTEST_SKIP() << "the DejaVu fonts are not installed";

  struct Row {
    const char* name;
    std::vector<const char*> fonts;
    bool bitmap;
    Lines expected;
  };
  const std::vector<Row> rows = {
      {"no fonts", {}, false, {"end"}},
      {"two faces of one family, one of another, a second language name and a bitmap font",
       {"DejaVuSerif.ttf", "DejaVuSans.ttf", "DejaVuSans-Bold.ttf", "DejaVuSansCondensed.ttf"},
       true,
       {"DejaVu Sans", "DejaVu Serif", "end"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFolder root("diag-fonts");
    const std::string configuration = WriteFontConfiguration(root);
    for (const char* font : row.fonts) fs::copy_file(fs::path(kDejaVu) / font, root.Path() / "fonts" / font);
    if (row.bitmap) root.Write("fonts/tiny.bdf", kBitmapFont);
    // Not a font at all: fontconfig skips it.
    root.Write("fonts/broken.ttf", "not a font");
    EXPECT_EQ(RunChild(FontEnvironment(root, configuration)), row.expected);

    if (row.bitmap) {
      // fontconfig does see the bitmap family: it is the scalable filter that drops it.
      corlith::platform::SpawnOptions list;
      list.program = "fc-list";
      list.arguments = {":", "family"};
      list.environment = {"FONTCONFIG_FILE=" + configuration, "XDG_CACHE_HOME=" + root.PathOf("cache")};
      list.output = corlith::platform::StreamTarget::Pipe();
      const auto listed = corlith::platform::RunHidden(list, 60s);
      if (listed.error == 0) {
        EXPECT_NE(listed.output.find("TinyBitmap"), std::string::npos) << listed.output;
      }
    }
  }
}

// --- the spreadsheet application ----------------------------------------------------

constexpr const char* kXlsx = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";

std::string DesktopEntry(const std::string& body) {
  return "[Desktop Entry]\nName=Sheets\nExec=sheets %f\n" + body;
}

TEST(SpreadsheetApplication, RegisteredForXlsxOrAnOfficeCommandOnPath) {
  if (ChildRole() != nullptr) {
    std::printf("@@ %d\n", Utility().IsMSExcelInstalled());
    return;
  }
  struct File {
    std::string path;  // below the test's root: data/, system/, config/, sysconfig/, bin/
    std::string content;
    bool executable = false;
  };
  const std::string app = "Type=Application\n";
  const std::string lists = "MimeType=text/csv;" + std::string(kXlsx) + ";\n";
  struct Row {
    const char* name;
    std::vector<File> files;
    int expected;
  };
  const std::vector<Row> rows = {
      {"nothing installed", {}, 0},
      {"an unrelated program on PATH", {{"bin/ls", "#!/bin/sh\n", true}}, 0},
      {"soffice on PATH", {{"bin/soffice", "#!/bin/sh\n", true}}, 1},
      {"gnumeric on PATH", {{"bin/gnumeric", "#!/bin/sh\n", true}}, 1},
      {"et on PATH (also Eternal Terminal's client)", {{"bin/et", "#!/bin/sh\n", true}}, 0},
      {"soffice on PATH but not executable", {{"bin/soffice", "#!/bin/sh\n"}}, 0},
      {"a folder named localc on PATH", {{"bin/localc/keep", ""}}, 0},
      {"a user's entry listing the type",
       {{"data/applications/sheets.desktop", DesktopEntry(app + lists)}},
       1},
      {"a system entry in a subfolder listing the type",
       {{"system/applications/office/sheets.desktop", DesktopEntry(app + lists)}},
       1},
      {"an entry listing other types only",
       {{"data/applications/sheets.desktop", DesktopEntry(app + "MimeType=text/csv;application/x-xls;\n")}},
       0},
      {"an entry listing the type that is hidden",
       {{"data/applications/sheets.desktop", DesktopEntry(app + lists + "Hidden=true\n")}},
       0},
      {"a user's hidden entry shadowing the system's entry of the same id",
       {{"data/applications/sheets.desktop", DesktopEntry(app + "Hidden=true\n")},
        {"system/applications/sheets.desktop", DesktopEntry(app + lists)}},
       0},
      {"a link, not an application, listing the type",
       {{"data/applications/sheets.desktop", DesktopEntry("Type=Link\n" + lists)}},
       0},
      {"the type listed in another group of the entry",
       {{"data/applications/sheets.desktop", DesktopEntry(app) + "[Desktop Action new]\n" + lists}},
       0},
      {"a file not ending in .desktop",
       {{"data/applications/sheets.desktop.bak", DesktopEntry(app + lists)}},
       0},
      {"a default application in the user's mimeapps.list",
       {{"data/applications/sheets.desktop", DesktopEntry(app)},
        {"config/mimeapps.list", "[Default Applications]\n" + std::string(kXlsx) + "=sheets.desktop\n"}},
       1},
      {"an added association in a system applications folder, for a subfolder's id",
       {{"system/applications/office/sheets.desktop", DesktopEntry(app)},
        {"system/applications/mimeapps.list",
         "[Added Associations]\n" + std::string(kXlsx) + "=other.desktop;office-sheets.desktop;\n"}},
       1},
      {"a default application that is not installed",
       {{"sysconfig/mimeapps.list", "[Default Applications]\n" + std::string(kXlsx) + "=sheets.desktop\n"}},
       0},
      {"an association removed by the user",
       {{"system/applications/sheets.desktop", DesktopEntry(app + lists)},
        {"config/mimeapps.list", "[Removed Associations]\n" + std::string(kXlsx) + "=sheets.desktop;\n"}},
       0},
      {"a removal of another application's association",
       {{"system/applications/sheets.desktop", DesktopEntry(app + lists)},
        {"sysconfig/mimeapps.list", "[Removed Associations]\n" + std::string(kXlsx) + "=calc.desktop;\n"}},
       1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFolder root("diag-sheet");
    for (const char* folder : {"data", "system", "config", "sysconfig", "bin"}) {
      fs::create_directories(root.Path() / folder);
    }
    for (const File& file : row.files) {
      fs::create_directories((root.Path() / file.path).parent_path());
      root.Write(file.path, file.content);
      if (file.executable) fs::permissions(root.Path() / file.path, fs::perms::owner_all);
    }
    EXPECT_EQ(
        RunChild({std::string(kChildVariable) + "=excel", "PATH=" + root.PathOf("bin"),
                  "XDG_DATA_HOME=" + root.PathOf("data"), "XDG_DATA_DIRS=" + root.PathOf("system"),
                  "XDG_CONFIG_HOME=" + root.PathOf("config"), "XDG_CONFIG_DIRS=" + root.PathOf("sysconfig")}),
        (Lines{std::to_string(row.expected)}));
  }
}

}  // namespace
