// KTUtility where the executable's folder matters: the fixture program is copied into a
// temporary installation (bin/ with the fixture, the installation file, the marker; a
// Log folder under the data folder) and run there as its own process, with its own
// configuration variable and working folder. The tests assert on its answers and on the
// exact bytes it leaves on disk (log times masked).
#include <corlith/Version.h>
#include <corlith/environment/Installation.h>
#include <corlith/environment/Utility.h>
#include <corlith/platform/Process.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::platform::Process;
using corlith::platform::SpawnOptions;
using corlith::platform::StreamTarget;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using Lines = std::vector<std::string>;
using namespace std::chrono_literals;

constexpr const char* kConfigVariable = "ORVANE_K2_TESSEL_CONFIG_PATH";

// The per-machine data folder of an installed layout, by its exact text.
std::string MachineDataFolder(const char* product) {
  return std::string("/var/lib/Orvane/") + product + "/" +
         corlith::DataFolderVersionLabel(corlith::kVersionText).str();
}

Lines SplitLines(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A log's content with every "[HH:MM:SS]" time masked.
std::string MaskTimes(const std::string& log) {
  static const std::regex time(R"(\[[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\])");
  return std::regex_replace(log, time, "[hh:mm:ss]");
}

// A temporary installation: <root>/app/bin/ holds a copy of the fixture.
class Installation {
 public:
  Installation() : m_root("paths") {
    fs::create_directories(Bin());
    fs::copy_file(CORLITH_ENVIRONMENT_FIXTURE, Fixture());
  }

  fs::path Root() const { return m_root.Path(); }
  fs::path App() const { return Root() / "app"; }
  fs::path Bin() const { return App() / "bin"; }
  fs::path Fixture() const { return Bin() / "fixture"; }
  std::string BinText() const { return Bin().string(); }

  void WriteInstallationFile(const std::string& text) const {
    corlith::test::WriteFile(Bin() / corlith::kInstallationFileName, text);
  }
  void AddMarker() const { corlith::test::WriteFile(Bin() / "CREATE_PATH_LOG", ""); }

  /// The configuration variable the fixture starts with; nullopt: unset.
  std::optional<std::string> config;
  /// The fixture's working folder; empty: this process's.
  fs::path workingFolder;

  SpawnOptions Options(const Lines& commands) const {
    SpawnOptions options;
    options.program = Fixture();
    options.arguments = commands;
    options.workingFolder = workingFolder;
    if (config) {
      options.environment.push_back(std::string(kConfigVariable) + "=" + *config);
    } else {
      options.unsetVariables.push_back(kConfigVariable);
    }
    options.output = StreamTarget::Pipe();
    options.error = StreamTarget::Inherit();
    return options;
  }

  /// Runs the fixture to its end; its output lines. `pid` receives its process id.
  Lines Run(const Lines& commands, int* pid = nullptr) const {
    Process process;
    EXPECT_EQ(corlith::platform::Spawn(Options(commands), process), 0);
    if (pid != nullptr) *pid = process.Id();
    const auto status = process.Wait();
    EXPECT_TRUE(status && status->Succeeded()) << "the fixture failed";
    return SplitLines(process.Output());
  }

 private:
  TempFolder m_root;
};

// Every file below `folder`, relative to it, with its content (the fixture's own copy
// only by name: it is large and never changes).
std::map<std::string, std::string> FilesBelow(const fs::path& folder) {
  std::map<std::string, std::string> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string name = fs::relative(entry.path(), folder).string();
    files[name] = entry.path().filename() == "fixture" ? "" : ReadFile(entry.path());
  }
  return files;
}

// The one log file of a kind in a Log folder (dated today); "" when there is none.
std::string OnlyLog(const fs::path& logFolder, const std::string& kind) {
  const std::regex name(kind + R"(_20[0-9]{2}_[01][0-9]_[0-3][0-9]\.log)");
  std::string found;
  int count = 0;
  if (!fs::exists(logFolder)) return found;
  for (const auto& entry : fs::directory_iterator(logFolder)) {
    if (std::regex_match(entry.path().filename().string(), name)) {
      found = ReadFile(entry.path());
      ++count;
    }
  }
  EXPECT_LE(count, 1) << kind;
  return found;
}

TEST(InstanceProcess, ThreadsRacingForTheFirstInstanceGetTheSameOne) {
  const Installation app;
  EXPECT_EQ(app.Run({"threads", "matchcase", "pid"}), (Lines{"same", "1", "1"}));
}

TEST(LayoutProcess, UninstalledKeepsEverythingBesideTheExecutable) {
  const Installation app;
  int pid = 0;
  const Lines out = app.Run({"layout", "edition", "cur", "data", "help", "solver", "x"}, &pid);
  const std::string solver = app.BinText() + "/Data/Analysis/Temp/" + std::to_string(pid) + "/x";
  EXPECT_EQ(out,
            (Lines{"0", "0", app.BinText(), app.BinText(), app.App().string() + "/help/Tessel", solver}));
  // The solver folder's whole chain was created.
  EXPECT_TRUE(fs::is_directory(solver));
  EXPECT_FALSE(fs::exists(app.App() / "help")) << "the help folder is only named";
}

TEST(LayoutProcess, TheInstallationFileDecidesLayoutAndEdition) {
  struct Row {
    const char* name;
    std::optional<std::string> file;  // nullopt: none; "<dir>": a folder of that name
    std::optional<std::string> config;
    std::string layout;
    std::string edition;
    std::string data;  // "<bin>" and "<config>" stand for those folders
  };
  const Row rows[] = {
      {"no file", std::nullopt, std::nullopt, "0", "0", "<bin>"},
      {"a folder of the file's name", "<dir>", std::nullopt, "0", "0", "<bin>"},
      {"installed ECAD, variable names a folder", "layout=installed\nedition=ecad\n", "<config>/", "1", "1",
       "<config>/"},
      {"installed ECAD, variable names nothing", "layout=installed\nedition=ecad\n", "<config>/missing", "1",
       "1", MachineDataFolder("TesselForEcad")},
      {"installed, empty variable", "layout=installed\n", "", "1", "0", MachineDataFolder("Tessel")},
      {"installed, no variable", "layout=installed\r\n", std::nullopt, "1", "0", MachineDataFolder("Tessel")},
      {"malformed half-way", "layout=installed\nthis is no setting\nedition=ecad\n", std::nullopt, "1", "0",
       MachineDataFolder("Tessel")},
      {"unknown layout stops at once", "edition=ecad\nlayout=portable\nlayout=installed\n", std::nullopt, "0",
       "1", "<bin>"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Installation app;
    const std::string configFolder = (app.Root() / "config").string();
    fs::create_directory(configFolder);
    if (row.file == "<dir>") {
      fs::create_directory(app.Bin() / corlith::kInstallationFileName);
    } else if (row.file) {
      app.WriteInstallationFile(*row.file);
    }
    const auto expand = [&](std::string text) {
      for (const auto& [token, value] : {std::pair<std::string, std::string>{"<bin>", app.BinText()},
                                         std::pair<std::string, std::string>{"<config>", configFolder}}) {
        if (text.rfind(token, 0) == 0) text.replace(0, token.size(), value);
      }
      return text;
    };
    if (row.config) app.config = expand(*row.config);
    EXPECT_EQ(app.Run({"layout", "edition", "matchcase", "data"}),
              (Lines{row.layout, row.edition, "1", expand(row.data)}));
  }
}

TEST(LayoutProcess, TheVariableIsReadOnceAndItsFolderCheckedOnEveryCall) {
  Installation app;
  app.WriteInstallationFile("layout=installed\n");
  const std::string configFolder = (app.Root() / "config").string();
  fs::create_directory(configFolder);
  app.config = configFolder;
  const Lines out = app.Run({"config", "data", "setenv", kConfigVariable, "/tmp", "config", "remove",
                             configFolder, "data", "config"});
  EXPECT_EQ(out, (Lines{configFolder, configFolder, "set", configFolder, "removed",
                        MachineDataFolder("Tessel"), configFolder}));
}

TEST(LayoutProcess, TemporaryFoldersAreCreatedAsFarAsTheirRulesSay) {
  Installation app;
  app.WriteInstallationFile("layout=installed\nedition=ecad\n");
  const fs::path data = app.Root() / "data";
  fs::create_directory(data);
  app.config = data.string();
  int pid = 0;
  // Without a Data folder the temporary folder is only named: one level is all it makes.
  const Lines first = app.Run({"temp"}, &pid);
  EXPECT_EQ(first, (Lines{(data / "Data/Temp").string()}));
  EXPECT_FALSE(fs::exists(data / "Data"));
  // The installed layout puts the solver's folder under the data folder, chain and all.
  const Lines second = app.Run({"solver", "fft job", "temp"}, &pid);
  const fs::path solver = data / "Data/Analysis/Temp" / std::to_string(pid) / "fft job";
  EXPECT_EQ(second, (Lines{solver.string(), (data / "Data/Temp").string()}));
  EXPECT_TRUE(fs::is_directory(solver));
  EXPECT_TRUE(fs::is_directory(data / "Data/Temp"));
}

TEST(DriveProcess, OnPosixCColonIsAnOrdinaryRelativeName) {
  Installation app;
  app.workingFolder = app.Root() / "work";
  fs::create_directory(app.workingFolder);
  // No folder "C:" in the working folder: nothing exists, and ForceDirectories never
  // makes "C:" itself, so none of the levels below it can be made.
  EXPECT_EQ(app.Run({"exists", "C:", "T", "1", "exists", "C:\\", "T", "2", "force", "C:\\a\\b/c"}),
            (Lines{"0", "0", "1"}));
  EXPECT_TRUE(fs::is_empty(app.workingFolder));
  // With a folder "C:" there (the drive), the levels below it are made.
  fs::create_directory(app.workingFolder / "C:");
  EXPECT_EQ(app.Run({"exists", "C:", "T", "1", "exists", "C:\\", "T", "2", "force", "C:\\a\\b/c", "exists",
                     "C:/a\\b\\c\\", "T", "3"}),
            (Lines{"1", "1", "1", "1"}));
  EXPECT_TRUE(fs::is_directory(app.workingFolder / "C:/a/b/c"));
}

TEST(ModuleProcess, GetModuleDirFindsAModuleOnlyOnceItIsLoaded) {
  const Installation app;
  const fs::path modules = app.Root() / "modules";
  fs::create_directory(modules);
  const fs::path probe = modules / "libcorlith_probe.so";
  fs::copy_file(CORLITH_PROBE_MODULE, probe);
  const Lines out = app.Run({"module", "corlith_probe", "load", probe.string(), "module", "corlith_probe",
                             "module", "libcorlith_probe.so", "module", "no_such_module", "module", ""});
  EXPECT_EQ(out, (Lines{"", "loaded", modules.string(), modules.string(), "", app.BinText()}));
}

TEST(TraceProcess, NothingIsWrittenWithoutTheMarkerOrWithoutALogFolder) {
  struct Row {
    const char* name;
    bool marker;
    bool logFolder;
  };
  const Row rows[] = {
      {"Log folder, no marker", false, true},
      {"marker, no Log folder", true, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const Installation app;
    if (row.marker) app.AddMarker();
    if (row.logFolder) fs::create_directory(app.Bin() / "Log");
    const auto before = FilesBelow(app.Root());
    EXPECT_EQ(app.Run({"tracing", "combine", "C:\\a", "\\b", "T", "1", "exists", app.BinText(), "T", "2"}),
              (Lines{row.marker ? "1" : "0", "C:/a/b", "1"}));
    EXPECT_EQ(FilesBelow(app.Root()), before);
    EXPECT_EQ(fs::exists(app.Bin() / "Log"), row.logFolder) << "the trace never creates its folder";
  }
}

TEST(TraceProcess, EachCallAppendsOneEntryToItsDatedLog) {
  const Installation app;
  app.AddMarker();
  fs::create_directory(app.Bin() / "Log");
  corlith::test::WriteFile(app.Bin() / "Log" / "unrelated.log", "kept");
  const std::string longDir = "/" + std::string(200, 'd');
  const std::string longFile(57, 'f');  // 257 together: concatenated, never logged
  const std::string existing = app.BinText() + "/";
  EXPECT_EQ(app.Run({"combine", "C:\\a", "\\b",    "Caller.cpp", "10", "exists", existing, "Caller.cpp", "11",
                     "combine", longDir, longFile, "Caller.cpp", "12", "exists", "",       "Other",      "13",
                     "combine", "x",     "%s%d",   "Caller.cpp", "14"}),
            (Lines{"C:/a/b", "1", longDir + "/" + longFile, "0", "x/%s%d"}));
  EXPECT_EQ(MaskTimes(OnlyLog(app.Bin() / "Log", "KTPathCombine")),
            "[hh:mm:ss] : C:/a/b\n\tCaller.cpp(10)\n"
            "[hh:mm:ss] : x/%s%d\n\tCaller.cpp(14)\n");
  EXPECT_EQ(MaskTimes(OnlyLog(app.Bin() / "Log", "DoesFileOrDirExist")),
            "[hh:mm:ss] : " + existing + "\n\tCaller.cpp(11)\n" + "[hh:mm:ss] : \n\tOther(13)\n");
  EXPECT_EQ(ReadFile(app.Bin() / "Log" / "unrelated.log"), "kept");
  // A second run appends to the same files.
  app.Run({"combine", "a", "b", "Again", "1"});
  EXPECT_EQ(MaskTimes(OnlyLog(app.Bin() / "Log", "KTPathCombine")),
            "[hh:mm:ss] : C:/a/b\n\tCaller.cpp(10)\n"
            "[hh:mm:ss] : x/%s%d\n\tCaller.cpp(14)\n"
            "[hh:mm:ss] : a/b\n\tAgain(1)\n");
}

TEST(TraceProcess, ACopyTracesItsTwoExistenceChecksOnly) {
  const Installation app;
  app.AddMarker();
  fs::create_directory(app.Bin() / "Log");
  const fs::path source = app.Root() / "source";
  const fs::path target = app.Root() / "target";
  fs::create_directory(source);
  corlith::test::WriteFile(source / "f.txt", "x");
  EXPECT_EQ(app.Run({"copy", source.string(), target.string()}), (Lines{"copied"}));
  EXPECT_EQ(ReadFile(target / "f.txt"), "x");
  const std::regex expected("\\[hh:mm:ss\\] : " + source.string() + "\n\tKTUtility\\([0-9]+\\)\n" +
                            "\\[hh:mm:ss\\] : " + target.string() + "\n\tKTUtility\\([0-9]+\\)\n");
  const std::string log = MaskTimes(OnlyLog(app.Bin() / "Log", "DoesFileOrDirExist"));
  EXPECT_TRUE(std::regex_match(log, expected)) << log;
}

TEST(TraceProcess, TheMarkerIsTestedOnEveryCallAndMayBeAFolder) {
  const Installation app;
  fs::create_directory(app.Bin() / "Log");
  const std::string marker = (app.Bin() / "CREATE_PATH_LOG").string();
  EXPECT_EQ(app.Run({"combine", "a", "1", "T", "1", "write", marker, "combine", "a", "2", "T", "2", "remove",
                     marker, "combine", "a", "3", "T", "3"}),
            (Lines{"a/1", "written", "a/2", "removed", "a/3"}));
  EXPECT_EQ(MaskTimes(OnlyLog(app.Bin() / "Log", "KTPathCombine")), "[hh:mm:ss] : a/2\n\tT(2)\n");
  fs::create_directory(marker);
  app.Run({"combine", "a", "4", "T", "4"});
  EXPECT_EQ(MaskTimes(OnlyLog(app.Bin() / "Log", "KTPathCombine")),
            "[hh:mm:ss] : a/2\n\tT(2)\n[hh:mm:ss] : a/4\n\tT(4)\n");
}

TEST(TraceProcess, TheLogLivesUnderTheDataFolderAndTheVariablesCheckIsTracedOnce) {
  Installation app;
  app.WriteInstallationFile("layout=installed\n");
  app.AddMarker();
  const fs::path data = app.Root() / "data";
  fs::create_directories(data / "Log");
  app.config = data.string();
  EXPECT_EQ(app.Run({"data", "exists", "/", "T", "5"}), (Lines{data.string(), "1"}));
  const std::string log = MaskTimes(OnlyLog(data / "Log", "DoesFileOrDirExist"));
  // GetDataPath's own check is traced; the data folder that a log entry itself needs is
  // found without a second entry.
  const std::regex expected("\\[hh:mm:ss\\] : " + data.string() + "\n\tKTUtility\\([0-9]+\\)\n" +
                            "\\[hh:mm:ss\\] : /\n\tT\\(5\\)\n");
  EXPECT_TRUE(std::regex_match(log, expected)) << log;
  EXPECT_FALSE(fs::exists(app.Bin() / "Log"));
}

TEST(TraceProcess, AReadOnlyLogFolderDropsTheEntry) {
  const Installation app;
  app.AddMarker();
  const fs::path log = app.Bin() / "Log";
  fs::create_directory(log);
  // Every folder on the way must be open to the unprivileged user a root run drops to.
  for (fs::path p = log.parent_path(); p != app.Root().parent_path(); p = p.parent_path()) {
    fs::permissions(p, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                           fs::perms::others_read | fs::perms::others_exec);
  }
  fs::permissions(app.Fixture(), fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                                     fs::perms::others_read | fs::perms::others_exec);
  fs::permissions(log, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                           fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
  // Root passes permission bits, so a root run drops to an unprivileged user first; the
  // marker must still be seen, or the test would prove nothing.
  const Lines out =
      app.Run({"drop-privileges", "tracing", "combine", "a", "b", "T", "1", "exists", "/", "T", "2"});
  ASSERT_EQ(out.size(), 4u);
  EXPECT_NE(out[0], "failed");
  EXPECT_EQ((Lines{out[1], out[2], out[3]}), (Lines{"1", "a/b", "1"}));
  EXPECT_TRUE(fs::is_empty(log));
  fs::permissions(log, fs::perms::owner_all);
}

TEST(TraceProcess, TwoProcessesTracingAtOnceNeverSplitAnEntry) {
  const Installation app;
  app.AddMarker();
  fs::create_directory(app.Bin() / "Log");
  constexpr int kEntries = 400;
  const std::string dirA(120, 'a');
  const std::string dirB(120, 'b');
  const std::string file(120, 'f');
  Process first;
  Process second;
  ASSERT_EQ(
      corlith::platform::Spawn(
          app.Options({"repeat", std::to_string(kEntries), "combine", dirA, file, "First", "1"}), first),
      0);
  ASSERT_EQ(
      corlith::platform::Spawn(
          app.Options({"repeat", std::to_string(kEntries), "combine", dirB, file, "Second", "2"}), second),
      0);
  ASSERT_TRUE(first.Wait()->Succeeded());
  ASSERT_TRUE(second.Wait()->Succeeded());
  const Lines lines = SplitLines(OnlyLog(app.Bin() / "Log", "KTPathCombine"));
  ASSERT_EQ(lines.size(), 4u * kEntries);
  const std::regex subject(R"(\[[0-9]{2}:[0-9]{2}:[0-9]{2}\] : ([ab])\1{119}/f{120})");
  std::map<std::string, int> counts;
  for (std::size_t i = 0; i < lines.size(); i += 2) {
    std::smatch match;
    ASSERT_TRUE(std::regex_match(lines[i], match, subject)) << "entry " << i / 2 << ": " << lines[i];
    const std::string expectedSource = match[1] == "a" ? "\tFirst(1)" : "\tSecond(2)";
    ASSERT_EQ(lines[i + 1], expectedSource) << "entry " << i / 2;
    ++counts[match[1]];
  }
  EXPECT_EQ(counts, (std::map<std::string, int>{{"a", kEntries}, {"b", kEntries}}));
}

}  // namespace
