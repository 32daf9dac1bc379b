// KTUtility's helper programs: the hidden batch file (its exact bytes, its results, the
// time-out that ends the whole process group, waiting without spinning), Wait and
// ProcessWindowMessage through the desktop hooks, the splitting of tool command lines,
// and the tool locators, run from a copy of this program installed in a temporary
// folder so that "beside the executable" and "../Corlith" are places the test controls.
#include "ArchiveTestSupport.h"

#include <corlith/environment/ToolCommandLine.h>
#include <corlith/environment/Utility.h>
#include <corlith/framework/DesktopHooks.h>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace corlith::test {

// The protected tool locators, for these tests only.
struct KTUtilityToolAccess {
  static std::string Tar() { return KTUtility::GetInstance()->GetTarExeFilePathUtility().str(); }
  static std::string Gzip() { return KTUtility::GetInstance()->GetGZipExeFilePathUtility().str(); }
  static std::string SevenZip() { return KTUtility::GetInstance()->Get7zExeFilePathUtility().str(); }
  static std::string TesselZip() { return KTUtility::GetInstance()->GetTesselZipExeFilePathUtility().str(); }
};

}  // namespace corlith::test

namespace {

using namespace archives_test;
using namespace std::chrono_literals;
using corlith::test::KTUtilityToolAccess;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using Clock = std::chrono::steady_clock;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

// One hour's fraction that lasts `seconds`.
double Hours(double seconds) { return seconds / 3600.0; }

// --- command lines -------------------------------------------------------------------

TEST(ToolCommandLine, SplitsByTheOriginalPlatformsRules) {
  struct Row {
    std::string line;
    std::vector<std::string> arguments;
  };
  const std::vector<Row> rows = {
      {" -cf pack.tar pack_src", {"-cf", "pack.tar", "pack_src"}},
      {" -xf \"my archive.tar\"", {"-xf", "my archive.tar"}},
      {" x \"/a b/c.7z\" -o\"/t/x y\"", {"x", "/a b/c.7z", "-o/t/x y"}},
      {" m \"src\" \"out.zip\"", {"m", "src", "out.zip"}},
      {"\t-a\t\tb  ", {"-a", "b"}},
      {"", {}},
      {"   ", {}},
      {"\"\"", {""}},
      {"a \"\" b", {"a", "", "b"}},
      {"\"unterminated arg", {"unterminated arg"}},
      {"a\\b", {"a\\b"}},
      {"a\\\\b", {"a\\\\b"}},
      {"a\\\"b", {"a\"b"}},
      {"a\\\\\"b c\"", {"a\\b c"}},
      {"a\\\\\\\"b", {"a\\\"b"}},
      {"C:\\dir\\", {"C:\\dir\\"}},
      {"\"C:\\dir\\\\\" next", {"C:\\dir\\", "next"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(corlith::SplitToolCommandLine(row.line), row.arguments);
  }
}

TEST(ToolCommandLine, RunToolStartsTheGivenPathUnsplitInItsWorkingFolder) {
  const TempFolder root("programs");
  const fs::path folder = root.Path() / "with blank";
  WriteScript(folder / "tool one", "pwd > out.txt\nprintf '%s|' \"$@\" >> out.txt\nexit 3\n");
  const auto status = corlith::RunTool((folder / "tool one").string(), " a \"b c\" d", folder.string());
  ASSERT_TRUE(status.has_value());
  EXPECT_EQ(status->code, 3);
  EXPECT_EQ(ReadFile(folder / "out.txt"), folder.string() + "\na|b c|d|");
  EXPECT_EQ(corlith::RunTool((folder / "missing").string(), "", ""), std::nullopt);
  EXPECT_EQ(corlith::RunTool("", "", ""), std::nullopt);
}

// --- the batch file --------------------------------------------------------------------

TEST(ShellExecuteHideMode, WritesTheBatchFileByteForByte) {
  struct Row {
    std::string command;
    std::string bytes;
  };
  const std::vector<Row> rows = {
      // A blank and no leading quote: the whole command line is quoted.
      {"C:\\My Tools\\run.exe", "\"C:\\My Tools\\run.exe\"\n"},
      {"/opt/my tools/run -x", "\"/opt/my tools/run -x\"\n"},
      // A leading quote: written as it is.
      {"\"/bin/true\" now", "\"/bin/true\" now\n"},
      {"\"C:\\My Tools\\run.exe\" -a b", "\"C:\\My Tools\\run.exe\" -a b\n"},
      // No blank: written as it is.
      {"true", "true\n"},
      {"a\tb", "a\tb\n"},
      {"", "\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.command);
    const TempFolder root("programs");
    const fs::path batch = root.Path() / "run.sh";
    EXPECT_EQ(Utility().ShellExecuteHideMode(CString(row.command), CString(batch.string()), FALSE, 0), 1);
    EXPECT_EQ(ReadFile(batch), row.bytes);
  }
}

TEST(ShellExecuteHideMode, EndsOrTimesOutAndDeletesTheBatchOnlyWhenAsked) {
  struct Row {
    std::string label;
    std::string script;  // what the command runs
    double timeoutHours;
    BOOL deleteBatch;
    int result;
    bool finished;  // the script reached its end
  };
  const std::vector<Row> rows = {
      {"ends, batch deleted", "true", 0, TRUE, 1, true},
      {"ends, batch kept", "true", 0, FALSE, 1, true},
      {"ends within a limit", "sleep 0.2", Hours(30), TRUE, 1, true},
      {"times out, batch deleted", "sleep 30", Hours(0.4), TRUE, 2, false},
      {"times out, batch kept", "sleep 30", Hours(0.4), FALSE, 2, false},
      {"a failing command still ended", "exit 7", 0, FALSE, 1, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("programs");
    const fs::path script = root.Path() / "script";
    const fs::path done = root.Path() / "done";
    WriteScript(script, row.script + "\ntouch " + done.string() + "\n");
    const fs::path batch = root.Path() / "run.sh";
    const auto start = Clock::now();
    EXPECT_EQ(Utility().ShellExecuteHideMode(CString(script.string()), CString(batch.string()),
                                             row.deleteBatch, row.timeoutHours),
              row.result);
    EXPECT_LT(Clock::now() - start, 10s);
    EXPECT_EQ(fs::exists(batch), !row.deleteBatch);
    EXPECT_EQ(fs::exists(done), row.finished);
  }
}

// True while the process exists and is not a zombie waiting to be reaped.
bool Running(const std::string& pid) {
  std::ifstream stat("/proc/" + pid + "/stat");
  std::string line;
  if (!std::getline(stat, line)) return false;
  const std::size_t close = line.rfind(')');
  return close != std::string::npos && close + 2 < line.size() && line[close + 2] != 'Z';
}

TEST(ShellExecuteHideMode, ATimeOutEndsEverythingTheBatchStarted) {
  const TempFolder root("programs");
  const fs::path pids = root.Path() / "pids";
  const fs::path script = root.Path() / "spawner";
  // Two background children, one of which ignores SIGTERM, and the script itself.
  WriteScript(script, "sleep 300 &\necho $! >> " + pids.string() + "\nsh -c 'trap \"\" TERM; echo $$ >> " +
                          pids.string() + "; exec sleep 300' &\necho $$ >> " + pids.string() + "\nwait\n");
  const fs::path batch = root.Path() / "run.sh";
  const auto start = Clock::now();
  EXPECT_EQ(
      Utility().ShellExecuteHideMode(CString(script.string()), CString(batch.string()), TRUE, Hours(1.0)), 2);
  const auto elapsed = Clock::now() - start;
  EXPECT_GE(elapsed, 1s);
  EXPECT_LT(elapsed, 5s);
  EXPECT_FALSE(fs::exists(batch));

  std::vector<std::string> started;
  std::istringstream in(ReadFile(pids));
  for (std::string pid; std::getline(in, pid);) started.push_back(pid);
  ASSERT_EQ(started.size(), 3u) << ReadFile(pids);
  // Killed members may take a moment to become zombies of init.
  const auto deadline = Clock::now() + 3s;
  for (const std::string& pid : started) {
    SCOPED_TRACE(pid);
    while (Running(pid) && Clock::now() < deadline) std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(Running(pid));
  }
}

double CpuSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

TEST(ShellExecuteHideMode, NoLimitNeverKillsAndTheWaitDoesNotSpin) {
  struct Row {
    std::string label;
    double timeoutHours;
  };
  // 0 is no limit as stated; a negative or NaN limit is read the same way.
  const std::vector<Row> rows = {
      {"zero", 0.0}, {"negative", -1.0}, {"not a number", std::nan("")}, {"an hour", 1.0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("programs");
    const fs::path done = root.Path() / "done";
    const fs::path script = root.Path() / "slow";
    WriteScript(script, "sleep 1.2\ntouch " + done.string() + "\n");
    const double cpuBefore = CpuSeconds();
    const auto start = Clock::now();
    EXPECT_EQ(Utility().ShellExecuteHideMode(
                  CString(script.string()), CString((root.Path() / "b.sh").string()), TRUE, row.timeoutHours),
              1);
    EXPECT_GE(Clock::now() - start, 1200ms);
    EXPECT_TRUE(fs::exists(done));
    // The waiting thread sleeps: a busy poll would burn about the whole 1.2 s here.
    EXPECT_LT(CpuSeconds() - cpuBefore, 0.3);
  }
}

TEST(ShellExecuteHideMode, GivesZeroWhenTheBatchFileCannotBeWritten) {
  const TempFolder root("programs");
  const fs::path marker = root.Path() / "ran";
  const std::string command = "touch " + marker.string();
  struct Row {
    std::string label;
    std::string batch;
  };
  const std::vector<Row> rows = {
      {"missing folder", (root.Path() / "missing" / "run.sh").string()},
      {"a folder in the way", root.Path().string()},
      {"no name", ""},
      {"a NUL byte", std::string("run\0.sh", 7)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    // The command holds a blank, but starts with no quote: quoted whole, so it would
    // fail anyway; "ran" shows that nothing was started at all.
    EXPECT_EQ(Utility().ShellExecuteHideMode(CString(command), CString(row.batch), TRUE, 0), 0);
    EXPECT_FALSE(fs::exists(marker));
  }
}

// --- waiting with the user interface alive ---------------------------------------------

TEST(WaitAndMessages, GoThroughTheDesktopHooks) {
  auto hooks = std::make_shared<corlith::RecordingDesktopHooks>();
  {
    const corlith::ScopedDesktopHooks scope(hooks);
    Utility().Wait(1234);
    Utility().ProcessWindowMessage();
    Utility().Wait(0);
  }
  EXPECT_EQ(hooks->Calls(), (std::vector<corlith::DesktopCall>{corlith::DesktopCall::Wait,
                                                               corlith::DesktopCall::ProcessWindowMessage,
                                                               corlith::DesktopCall::Wait}));
  EXPECT_EQ(hooks->Waits(), (std::vector<DWORD>{1234, 0}));
}

TEST(WaitAndMessages, HeadlessWaitSleepsAndPumpingReturnsAtOnce) {
  struct Row {
    DWORD milliseconds;
  };
  for (const Row row : {Row{0}, Row{50}, Row{200}}) {
    SCOPED_TRACE(row.milliseconds);
    const auto start = Clock::now();
    Utility().Wait(row.milliseconds);
    const auto elapsed = Clock::now() - start;
    EXPECT_GE(elapsed, std::chrono::milliseconds(row.milliseconds));
    EXPECT_LT(elapsed, std::chrono::milliseconds(row.milliseconds) + 500ms);
  }
  const auto start = Clock::now();
  Utility().ProcessWindowMessage();
  EXPECT_LT(Clock::now() - start, 50ms);
}

// --- the tool locators -----------------------------------------------------------------

TEST(ToolLocators, BesideTheExecutableThenCorlithThenPath) {
  if (IsChild()) {
    std::printf("@@ %s\n@@ %s\n@@ %s\n@@ %s\n", KTUtilityToolAccess::Tar().c_str(),
                KTUtilityToolAccess::Gzip().c_str(), KTUtilityToolAccess::SevenZip().c_str(),
                KTUtilityToolAccess::TesselZip().c_str());
    return;
  }
  enum Place { Bin, Corlith, OnPath };
  struct Tool {
    Place place;
    std::string name;
    bool executable = true;
  };
  struct Row {
    std::string label;
    std::vector<Tool> tools;
    // Expected, as "<place>/<name>" with the places bin, corlith, path.
    std::vector<std::string> expected;
  };
  const std::vector<std::string> all = {"tar", "gzip", "7zr", "TesselZip"};
  auto everywhere = [&](std::initializer_list<Place> places) {
    std::vector<Tool> tools;
    for (const Place place : places) {
      for (const std::string& name : all) tools.push_back({place, name});
    }
    return tools;
  };
  const std::vector<Row> rows = {
      {"beside the executable first",
       everywhere({Bin, Corlith, OnPath}),
       {"bin/tar", "bin/gzip", "bin/7zr", "bin/TesselZip"}},
      {"then the Corlith folder, where TesselZip's place names 7zr (kept)",
       everywhere({Corlith, OnPath}),
       {"corlith/tar", "corlith/gzip", "corlith/7zr", "corlith/7zr"}},
      {"TesselZip in Corlith is not looked for there",
       {{Corlith, "TesselZip"}, {OnPath, "tar"}, {OnPath, "gzip"}, {OnPath, "7zr"}, {OnPath, "TesselZip"}},
       {"path/tar", "path/gzip", "path/7zr", "path/TesselZip"}},
      {"then PATH", everywhere({OnPath}), {"path/tar", "path/gzip", "path/7zr", "path/TesselZip"}},
      {"nowhere: the Corlith place unchecked",
       {},
       {"corlith/tar", "corlith/gzip", "corlith/7zr", "corlith/7zr"}},
      {"PATH entries that are not programs are passed over",
       {{OnPath, "tar", false},
        {OnPath, "gzip", false},
        {OnPath, "7zr", false},
        {OnPath, "TesselZip", false}},
       {"corlith/tar", "corlith/gzip", "corlith/7zr", "corlith/7zr"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const InstalledCopy copy;
    const fs::path path = copy.Root() / "path";
    fs::create_directories(path);
    auto folder = [&](Place place) {
      return place == Bin ? copy.Bin() : place == Corlith ? copy.CorlithFolder() : path;
    };
    for (const Tool& tool : row.tools) {
      fs::create_directories(folder(tool.place));
      if (tool.executable) {
        WriteScript(folder(tool.place) / tool.name, "exit 0\n");
      } else {
        corlith::test::WriteFile(folder(tool.place) / tool.name, "not a program\n");
      }
    }
    std::vector<std::string> expected;
    for (const std::string& text : row.expected) {
      const std::size_t slash = text.find('/');
      const std::string place = text.substr(0, slash);
      const fs::path base = place == "bin" ? copy.Bin() : place == "corlith" ? copy.CorlithFolder() : path;
      expected.push_back((base / text.substr(slash + 1)).string());
    }
    // An empty PATH entry and a missing folder on the way must not matter.
    EXPECT_EQ(copy.RunThisTest({"PATH=" + (copy.Root() / "missing").string() + "::" + path.string()}),
              expected);
  }
}

}  // namespace
