// The process layer with real programs: what a child starts with (streams, descriptors,
// signals, folder, environment), how it ends (codes, signals, time-outs that take its
// whole group), and that every handle reaps exactly its own child.
#include <corlith/platform/Process.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::platform::ExitStatus;
using corlith::platform::Process;
using corlith::platform::RunHidden;
using corlith::platform::Spawn;
using corlith::platform::SpawnOptions;
using corlith::platform::StreamTarget;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using namespace std::chrono_literals;

// Far beyond what any of these children needs: only a hang reaches it.
constexpr std::chrono::milliseconds kGenerous = 60s;

SpawnOptions Shell(std::string script) {
  SpawnOptions options;
  options.program = "/bin/sh";
  options.arguments = {"-c", std::move(script)};
  return options;
}

SpawnOptions Captured(std::string script) {
  SpawnOptions options = Shell(std::move(script));
  options.output = StreamTarget::Pipe();
  return options;
}

ExitStatus Exited(int code) { return {code, 0}; }
ExitStatus Killed(int signal) { return {-1, signal}; }

// Whether pid is a child of this process that nobody has reaped.
bool IsUnreapedChild(int pid) {
  siginfo_t info{};
  return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// The kernel ends SIGKILLed members asynchronously, and the orphans among them are
// reaped by init in its own time: wait for the group to empty, within a bound only a
// member that survived reaches.
bool GroupEmpties(int pgid) {
  const auto until = std::chrono::steady_clock::now() + kGenerous;
  while (std::chrono::steady_clock::now() < until) {
    if (::kill(-pgid, 0) != 0 && errno == ESRCH) return true;
    std::this_thread::sleep_for(20ms);
  }
  return false;
}

// A process's state letter from /proc ('Z' for a zombie), or 0 when it is gone.
char StateOf(int pid) {
  const std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
  const std::size_t close = stat.rfind(')');
  return close == std::string::npos || close + 2 >= stat.size() ? '\0' : stat[close + 2];
}

// Sets PATH for one test and puts it back.
class PathGuard {
 public:
  explicit PathGuard(const std::string& value) {
    const char* old = std::getenv("PATH");
    if (old != nullptr) m_old = old;
    ::setenv("PATH", value.c_str(), 1);
  }
  ~PathGuard() {
    if (m_old) {
      ::setenv("PATH", m_old->c_str(), 1);
    } else {
      ::unsetenv("PATH");
    }
  }
  PathGuard(const PathGuard&) = delete;
  PathGuard& operator=(const PathGuard&) = delete;

 private:
  std::optional<std::string> m_old;
};

TEST(ProcessTest, ExitCodesAndSignalsComeBackAsTheChildEnded) {
  struct Row {
    const char* program;
    std::vector<std::string> arguments;
    ExitStatus expected;
  };
  const Row rows[] = {
      {"true", {}, Exited(0)},
      {"false", {}, Exited(1)},
      {"/bin/sh", {"-c", "exit 3"}, Exited(3)},
      {"/bin/sh", {"-c", "exit 255"}, Exited(255)},
      {"/bin/sh", {"-c", "kill -TERM $$"}, Killed(SIGTERM)},
      {"/bin/sh", {"-c", "kill -KILL $$"}, Killed(SIGKILL)},
      {"/bin/sh", {"-c", "kill -SEGV $$"}, Killed(SIGSEGV)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.program) + (row.arguments.empty() ? "" : " " + row.arguments.back()));
    SpawnOptions options;
    options.program = row.program;
    options.arguments = row.arguments;
    const auto result = RunHidden(options, kGenerous);
    ASSERT_EQ(result.error, 0);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.status, row.expected);
    EXPECT_EQ(result.status.Succeeded(), row.expected.code == 0);
  }
}

TEST(ProcessTest, ProgramThatCannotStartFailsAtSpawnAndLeavesNoChild) {
  const TempFolder folder("process");
  const std::string plain = folder.Write("plain.txt", "not a program\n");
  const std::string garbage = folder.Write("garbage", "\x01\x02\x03 not a program either\n");
  fs::permissions(garbage, fs::perms::owner_all);
  fs::create_directory(folder.Path() / "a-folder");
  fs::create_directory(folder.Path() / "path");
  folder.Write("path/corlith-not-executable", "#!/bin/sh\n");
  fs::create_directory(folder.Path() / "path" / "corlith-a-folder");
  const PathGuard path(folder.PathOf("path") + ":/bin:/usr/bin");

  struct Row {
    const char* name;
    SpawnOptions options;
    int error;
  };
  SpawnOptions badFolder = Shell("exit 0");
  badFolder.workingFolder = folder.Path() / "missing";
  SpawnOptions badFile = Shell("exit 0");
  badFile.output = StreamTarget::ToFile(folder.Path() / "missing" / "out.txt");
  SpawnOptions sameAsItself = Shell("exit 0");
  sameAsItself.output = StreamTarget::SameAsOutput();
  auto program = [](const fs::path& p) {
    SpawnOptions options;
    options.program = p;
    return options;
  };
  const Row rows[] = {
      {"a name found nowhere on PATH", program("corlith-no-such-program"), ENOENT},
      {"a missing path", program(folder.Path() / "missing-program"), ENOENT},
      {"a file without execute permission", program(plain), EACCES},
      {"a folder", program(folder.Path() / "a-folder"), EACCES},
      {"an executable file that is no program", program(garbage), ENOEXEC},
      {"a name on PATH that is not executable", program("corlith-not-executable"), EACCES},
      {"a name on PATH that is a folder", program("corlith-a-folder"), EACCES},
      {"a missing working folder", badFolder, ENOENT},
      {"an output file in a missing folder", badFile, ENOENT},
      {"no program", SpawnOptions{}, EINVAL},
      {"standard output the same as itself", sameAsItself, EINVAL},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Process process;
    EXPECT_EQ(Spawn(row.options, process), row.error);
    EXPECT_TRUE(process.Empty());
    EXPECT_EQ(process.Wait(), std::nullopt);
    EXPECT_EQ(RunHidden(row.options, kGenerous).error, row.error);
  }
}

TEST(ProcessTest, ChildStartsWithNullInputOnlyThreeDescriptorsAndDefaultSignals) {
  const TempFolder folder("process");
  // Inheritable on purpose: only the spawn's own closing keeps it from the child.
  const int leaked = ::open(folder.Write("open.txt", "x").c_str(), O_RDONLY);
  ASSERT_GE(leaked, 3);
  // The child must not inherit a blocked signal or an ignored one.
  sigset_t blocked;
  sigset_t previousMask;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &previousMask), 0);
  struct sigaction ignore {};
  struct sigaction previousAction {};
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(::sigaction(SIGPIPE, &ignore, &previousAction), 0);

  // The shell tests each number itself: a pipeline or a glob would open descriptors of
  // its own in the shell while the list is made.
  const auto descriptors = RunHidden(Captured("readlink /proc/$$/fd/0; for fd in $(seq 0 1023); do [ -e "
                                              "/proc/$$/fd/$fd ] && printf '%s ' $fd; done; true"),
                                     kGenerous);
  // sed started directly, not from a shell, which would clear its own mask at start.
  SpawnOptions status;
  status.program = "sed";
  status.arguments = {"-n", "s/^Sig\\(Blk\\|Ign\\):\t//p", "/proc/self/status"};
  status.output = StreamTarget::Pipe();
  const auto signals = RunHidden(status, kGenerous);

  ::sigaction(SIGPIPE, &previousAction, nullptr);
  ::pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
  ::close(leaked);
  ASSERT_EQ(descriptors.error, 0);
  EXPECT_EQ(descriptors.status, Exited(0));
  EXPECT_EQ(descriptors.output, "/dev/null\n0 1 2 ");
  ASSERT_EQ(signals.error, 0);
  const std::size_t lineEnd = signals.output.find('\n');
  ASSERT_NE(lineEnd, std::string::npos) << signals.output;
  EXPECT_EQ(std::stoull(signals.output.substr(0, lineEnd), nullptr, 16), 0U) << "blocked";
  // Without glibc's two internal real-time signals (32 and 33), which its posix_spawn
  // leaves ignored and every glibc program takes over with its own handlers.
  const unsigned long long glibcInternal = 0x180000000ULL;
  EXPECT_EQ(std::stoull(signals.output.substr(lineEnd + 1), nullptr, 16) & ~glibcInternal, 0U) << "ignored";
}

TEST(ProcessTest, WorkingFolderIsTheChildsAloneAndProgramPathsAreTheHosts) {
  const TempFolder folder("process");
  const fs::path host = fs::current_path();
  fs::create_directory(folder.Path() / "work");
  const std::string tool = folder.Write("tool", "#!/bin/sh\necho \"tool in $(pwd)\"\n");
  fs::permissions(tool, fs::perms::owner_all);

  SpawnOptions options;
  // Relative to the host's folder; taken from the child's folder it would name nothing.
  options.program = fs::relative(tool, host);
  ASSERT_TRUE(options.program.is_relative());
  options.workingFolder = folder.Path() / "work";
  options.output = StreamTarget::Pipe();
  const auto result = RunHidden(options, kGenerous);

  ASSERT_EQ(result.error, 0);
  EXPECT_EQ(result.output, "tool in " + fs::canonical(folder.Path() / "work").string() + "\n");
  EXPECT_EQ(fs::current_path(), host);
}

TEST(ProcessTest, EnvironmentIsTheHostsWithChangesOrReplacedWhole) {
  ::setenv("CORLITH_PROCESS_GONE", "still here", 1);
  ::setenv("CORLITH_PROCESS_KEPT", "kept", 1);
  SpawnOptions changed = Captured(
      "echo \"$CORLITH_PROCESS_PROBE|$CORLITH_PROCESS_KEPT|${CORLITH_PROCESS_GONE-unset}|"
      "$CORLITH_PROCESS_OVER\"");
  changed.environment = {"CORLITH_PROCESS_PROBE=one  two", "CORLITH_PROCESS_OVER=new"};
  changed.unsetVariables = {"CORLITH_PROCESS_GONE"};
  ::setenv("CORLITH_PROCESS_OVER", "old", 1);
  const auto changedResult = RunHidden(changed, kGenerous);

  // env prints exactly what it got; it is found on the host's PATH, not the child's.
  SpawnOptions replaced;
  replaced.program = "env";
  replaced.environment = {"ONLY=this", "AND=that"};
  replaced.replaceEnvironment = true;
  replaced.output = StreamTarget::Pipe();
  const auto replacedResult = RunHidden(replaced, kGenerous);

  ::unsetenv("CORLITH_PROCESS_GONE");
  ::unsetenv("CORLITH_PROCESS_KEPT");
  ::unsetenv("CORLITH_PROCESS_OVER");
  EXPECT_EQ(changedResult.output, "one  two|kept|unset|new\n");
  EXPECT_EQ(replacedResult.output, "ONLY=this\nAND=that\n");
}

TEST(ProcessTest, OutputGoesToFilesPipesOrOneStreamInOrder) {
  const TempFolder folder("process");
  const fs::path log = folder.Path() / "log.txt";
  SpawnOptions append = Shell("echo \"$0\"; echo error >&2");
  append.arguments.push_back("first");
  append.output = StreamTarget::AppendTo(log);
  ASSERT_EQ(RunHidden(append, kGenerous).error, 0);
  append.arguments.back() = "second";
  ASSERT_EQ(RunHidden(append, kGenerous).error, 0);
  EXPECT_EQ(ReadFile(log), "first\nsecond\n");

  SpawnOptions replace = append;
  replace.output = StreamTarget::ToFile(log);
  replace.error = StreamTarget::SameAsOutput();
  ASSERT_EQ(RunHidden(replace, kGenerous).error, 0);
  EXPECT_EQ(ReadFile(log), "second\nerror\n");

  SpawnOptions both = Captured("echo out; echo err >&2; echo out2; echo err2 >&2");
  both.error = StreamTarget::Pipe();
  const auto separate = RunHidden(both, kGenerous);
  EXPECT_EQ(separate.output, "out\nout2\n");
  EXPECT_EQ(separate.errorOutput, "err\nerr2\n");
  both.error = StreamTarget::SameAsOutput();
  const auto merged = RunHidden(both, kGenerous);
  EXPECT_EQ(merged.output, "out\nerr\nout2\nerr2\n");
  EXPECT_EQ(merged.errorOutput, "");
}

TEST(ProcessTest, PipesFarLargerThanTheirBufferDoNotDeadlock) {
  // Standard error fills while standard output is still being written: a reader of one
  // pipe at a time would leave the child blocked on the other.
  SpawnOptions options = Captured(
      "head -c 1048576 /dev/zero | tr '\\0' a >&2; head -c 1048576 /dev/zero | tr '\\0' b; "
      "head -c 65536 /dev/zero | tr '\\0' c >&2");
  options.error = StreamTarget::Pipe();
  const auto viaRun = RunHidden(options, kGenerous);
  ASSERT_FALSE(viaRun.timedOut);
  EXPECT_EQ(viaRun.output, std::string(1048576, 'b'));
  EXPECT_EQ(viaRun.errorOutput, std::string(1048576, 'a') + std::string(65536, 'c'));

  Process process;
  ASSERT_EQ(Spawn(options, process), 0);
  ASSERT_TRUE(process.WaitFor(kGenerous));
  EXPECT_EQ(process.Output().size(), 1048576U);
  EXPECT_EQ(process.ErrorOutput().size(), 1048576U + 65536U);
}

TEST(ProcessTest, CapturingEndsWithTheLeaderNotWithItsBackgroundChildren) {
  // The background sleep holds the pipe's write end for a long time after the shell
  // has exited; waiting for the pipe's end would wait for it.
  Process process;
  ASSERT_EQ(Spawn(Captured("sleep 1000 & echo $!"), process), 0);
  ASSERT_TRUE(process.WaitFor(kGenerous));
  EXPECT_EQ(process.Status(), Exited(0));
  const int background = std::stoi(process.Output());
  EXPECT_EQ(::kill(background, 0), 0) << "the group is left alone after a normal exit";
  ::kill(-process.Id(), SIGKILL);
  EXPECT_TRUE(GroupEmpties(process.Id()));
}

TEST(ProcessTest, TerminateEndsTheWholeGroupThenReapsTheLeader) {
  struct Row {
    const char* name;
    const char* script;
    ExitStatus leader;
  };
  const Row rows[] = {
      {"members that obey SIGTERM", "sleep 1000 & sleep 1000 & echo ready; wait", Killed(SIGTERM)},
      // Ignored signals stay ignored across exec, so every member ignores SIGTERM.
      {"members that ignore SIGTERM", "trap '' TERM; sleep 1000 & sleep 1000 & echo ready; wait",
       Killed(SIGKILL)},
      {"a stopped member", "sleep 1000 & kill -STOP $!; echo ready; wait", Killed(SIGTERM)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Process process;
    ASSERT_EQ(Spawn(Captured(row.script), process), 0);
    const int group = process.Id();
    // Waiting keeps reading the pipe, so "ready" shows once the members are started.
    const auto until = std::chrono::steady_clock::now() + kGenerous;
    while (process.Output().empty() && std::chrono::steady_clock::now() < until) {
      EXPECT_FALSE(process.WaitFor(20ms));
    }
    ASSERT_EQ(process.Output(), "ready\n");
    EXPECT_EQ(process.Status(), std::nullopt);
    EXPECT_EQ(process.Terminate(200ms), row.leader);
    EXPECT_EQ(process.Status(), row.leader);
    EXPECT_FALSE(IsUnreapedChild(group));
    EXPECT_TRUE(GroupEmpties(group));
    EXPECT_EQ(process.Wait(), row.leader) << "a later wait returns the same";
  }
}

TEST(ProcessTest, RunHiddenEndsTheGroupOnTimeOut) {
  const TempFolder folder("process");
  SpawnOptions options = Shell("sleep 1000 & echo $! > \"$0\"; sleep 1000");
  options.arguments.push_back(folder.PathOf("background"));
  const auto result = RunHidden(options, 1s);
  EXPECT_TRUE(result.timedOut);
  EXPECT_EQ(result.status, Killed(SIGTERM));
  const std::string background = ReadFile(folder.PathOf("background"));
  ASSERT_FALSE(background.empty());
  const auto until = std::chrono::steady_clock::now() + kGenerous;
  const int pid = std::stoi(background);
  while (::kill(pid, 0) == 0 && std::chrono::steady_clock::now() < until) std::this_thread::sleep_for(20ms);
  EXPECT_EQ(::kill(pid, 0), -1);
}

TEST(ProcessTest, DestructorEndsARunningChildButNotWhatAnExitedOneLeft) {
  int running = -1;
  {
    Process process;
    ASSERT_EQ(Spawn(Shell("sleep 1000 & sleep 1000 & wait"), process), 0);
    running = process.Id();
  }
  EXPECT_FALSE(IsUnreapedChild(running));
  EXPECT_TRUE(GroupEmpties(running));

  const TempFolder folder("process");
  int background = -1;
  {
    Process process;
    SpawnOptions options = Shell("sleep 1000 & echo $!");
    options.output = StreamTarget::ToFile(folder.Path() / "pid");
    ASSERT_EQ(Spawn(options, process), 0);
    const auto until = std::chrono::steady_clock::now() + kGenerous;
    while (StateOf(process.Id()) != 'Z' && std::chrono::steady_clock::now() < until) {
      std::this_thread::sleep_for(10ms);
    }
    ASSERT_EQ(StateOf(process.Id()), 'Z');
    background = std::stoi(ReadFile(folder.Path() / "pid"));
  }
  EXPECT_EQ(::kill(background, 0), 0);
  ::kill(background, SIGKILL);
}

TEST(ProcessTest, MovedHandleWaitsOnceAndAssignmentEndsTheOldChild) {
  Process first;
  ASSERT_EQ(Spawn(Shell("exit 7"), first), 0);
  const int pid = first.Id();
  Process second(std::move(first));
  EXPECT_TRUE(first.Empty());  // NOLINT(bugprone-use-after-move): the moved-from state is the point
  EXPECT_EQ(first.Wait(), std::nullopt);
  EXPECT_FALSE(first.WaitFor(10ms));
  EXPECT_EQ(first.Terminate(), std::nullopt);
  EXPECT_EQ(second.Id(), pid);
  EXPECT_EQ(second.Wait(), Exited(7));
  EXPECT_EQ(second.Wait(), Exited(7));

  Process running;
  ASSERT_EQ(Spawn(Shell("sleep 1000"), running), 0);
  const int old = running.Id();
  Process replacement;
  ASSERT_EQ(Spawn(Shell("exit 5"), replacement), 0);
  running = std::move(replacement);
  EXPECT_FALSE(IsUnreapedChild(old));
  EXPECT_TRUE(GroupEmpties(old));
  EXPECT_EQ(running.Wait(), Exited(5));
}

TEST(ProcessTest, HostIgnoringSigchldStillWaitsAndEndsWithAnUnknownStatus) {
  // The kernel reaps such a host's children itself: waiting must still end when the
  // child does, for a plain wait and for a time-out alike.
  struct sigaction ignore {};
  struct sigaction previous {};
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(::sigaction(SIGCHLD, &ignore, &previous), 0);
  Process exiting;
  const int spawned = Spawn(Shell("exit 3"), exiting);
  const auto exited = exiting.Wait();
  const auto timedOut = RunHidden(Shell("sleep 1000"), 100ms);
  ::sigaction(SIGCHLD, &previous, nullptr);

  ASSERT_EQ(spawned, 0);
  EXPECT_EQ(exited, ExitStatus{});
  EXPECT_TRUE(timedOut.timedOut);
  EXPECT_EQ(timedOut.status, ExitStatus{});
}

TEST(ProcessTest, SeveralChildrenAreEachWaitedForAndOthersAreNeverReaped) {
  // A child of the host that the layer did not start must still be there to reap.
  char* stranger[] = {const_cast<char*>("/bin/true"), nullptr};
  pid_t strangerPid = -1;
  ASSERT_EQ(::posix_spawn(&strangerPid, "/bin/true", nullptr, nullptr, stranger, nullptr), 0);

  // Shorter-lived children started later, waited for in the order started.
  std::vector<Process> children(6);
  for (std::size_t i = 0; i < children.size(); ++i) {
    const std::string delay = "0." + std::to_string(children.size() - i);
    ASSERT_EQ(Spawn(Shell("sleep " + delay + "; exit " + std::to_string(10 + i)), children[i]), 0);
  }
  for (std::size_t i = 0; i < children.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(children[i].Wait(), Exited(static_cast<int>(10 + i)));
  }

  // And from several threads at once.
  std::vector<std::optional<ExitStatus>> results(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([i, &results] {
      Process process;
      if (Spawn(Shell("sleep 0.2; exit " + std::to_string(20 + i)), process) == 0)
        results[i] = process.Wait();
    });
  }
  for (std::thread& t : threads) t.join();
  for (std::size_t i = 0; i < results.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(results[i], Exited(static_cast<int>(20 + i)));
  }

  siginfo_t info{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(strangerPid), &info, WEXITED), 0);
  EXPECT_EQ(info.si_status, 0);
}

}  // namespace

TEST(ProcessTest, PipedInputReachesTheChildAndItsEndIsTheEndOfInput) {
  struct Row {
    const char* name;
    std::vector<std::string> writes;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {"nothing written", {}, ""},
      {"one line", {"pos 35\n"}, "pos 35\n"},
      {"pieces and an empty write", {"po", "", "s 7", "5\nclose"}, "pos 75\nclose"},
      // Far more than the socket holds: the write waits while the child reads.
      {"more than the buffer", {std::string(1 << 22, 'x')}, std::string(1 << 22, 'x')},
  };
  TempFolder folder;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SpawnOptions options = Shell("cat");
    options.input = StreamTarget::Pipe();
    options.output = StreamTarget::ToFile(folder.Path() / "received");
    Process child;
    ASSERT_EQ(Spawn(options, child), 0);
    for (const std::string& w : row.writes) EXPECT_TRUE(child.WriteInput(w));
    child.CloseInput();
    EXPECT_FALSE(child.WriteInput("late\n")) << "a closed input takes nothing";
    ASSERT_TRUE(child.WaitFor(kGenerous)) << "the end of input must end cat";
    EXPECT_EQ(child.Status(), Exited(0));
    EXPECT_EQ(ReadFile(folder.Path() / "received"), row.expected);
  }
}

TEST(ProcessTest, InputFromElsewhereOrRefused) {
  TempFolder folder;
  std::ofstream(folder.Path() / "in") << "from a file\n";
  struct Row {
    const char* name;
    StreamTarget input;
    int error;
    std::string output;
  };
  const std::vector<Row> rows = {
      {"null", StreamTarget::Null(), 0, ""},
      {"file", StreamTarget::ToFile(folder.Path() / "in"), 0, "from a file\n"},
      {"missing file", StreamTarget::ToFile(folder.Path() / "none"), ENOENT, ""},
      {"append file", StreamTarget::AppendTo(folder.Path() / "in"), EINVAL, ""},
      {"same as output", StreamTarget::SameAsOutput(), EINVAL, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SpawnOptions options = Captured("cat");
    options.input = row.input;
    Process child;
    ASSERT_EQ(Spawn(options, child), row.error);
    if (row.error != 0) {
      EXPECT_TRUE(child.Empty());
      EXPECT_FALSE(child.WriteInput("x")) << "no child, no input";
      continue;
    }
    EXPECT_FALSE(child.WriteInput("x")) << "input that is not piped cannot be written";
    ASSERT_TRUE(child.WaitFor(kGenerous));
    EXPECT_EQ(child.Output(), row.output);
  }
}

TEST(ProcessTest, WritingToAChildThatStoppedReadingFailsWithoutSigpipe) {
  // The default disposition of SIGPIPE would end this test program on a plain write.
  struct sigaction previous {};
  struct sigaction defaults {};
  defaults.sa_handler = SIG_DFL;
  ASSERT_EQ(::sigaction(SIGPIPE, &defaults, &previous), 0);
  SpawnOptions options = Shell("exec 0<&-; echo closed; sleep 30");
  options.input = StreamTarget::Pipe();
  options.output = StreamTarget::Pipe();
  Process child;
  ASSERT_EQ(Spawn(options, child), 0);
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "closed");
  EXPECT_FALSE(child.WriteInput(std::string(1 << 20, 'x')));
  EXPECT_FALSE(child.WaitFor(0ms)) << "the child runs on; only the write failed";
  child.Terminate();
  ::sigaction(SIGPIPE, &previous, nullptr);
}

TEST(ProcessTest, HostsEndOfTheInputIsNotInheritedByOtherChildren) {
  SpawnOptions reader = Shell("cat >/dev/null");
  reader.input = StreamTarget::Pipe();
  Process first;
  ASSERT_EQ(Spawn(reader, first), 0);
  // A second child alive while the first's input is closed: were the host's end
  // inherited by it, cat would never see the end of its input.
  Process second;
  ASSERT_EQ(Spawn(Shell("sleep 30"), second), 0);
  first.CloseInput();
  EXPECT_TRUE(first.WaitFor(10s));
  second.Terminate();
}

TEST(ProcessTest, OutputLinesComeOneByOneWithinTheirDeadline) {
  SpawnOptions options =
      Captured("printf 'ready 42\\n\\nsecond'; read -r line; printf '%s\\npartial' \"$line\"");
  options.input = StreamTarget::Pipe();
  Process child;
  ASSERT_EQ(Spawn(options, child), 0);
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "ready 42");
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "");
  // "second" has no line end until the child has read a line: the deadline passes.
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(child.ReadOutputLine(150ms), std::nullopt);
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, 140ms);
  EXPECT_LT(waited, 5s);
  ASSERT_TRUE(child.WriteInput("echoed\n"));
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "secondechoed");
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "partial") << "the last unfinished line, at the end";
  EXPECT_EQ(child.ReadOutputLine(kGenerous), std::nullopt);
  ASSERT_EQ(child.Wait(), Exited(0));
  EXPECT_EQ(child.Output(), "") << "lines taken leave Output()";
}

TEST(ProcessTest, OutputNotTakenAsLinesStaysInOutput) {
  Process child;
  ASSERT_EQ(Spawn(Captured("printf 'one\\ntwo\\nthree'"), child), 0);
  EXPECT_EQ(child.ReadOutputLine(kGenerous), "one");
  ASSERT_EQ(child.Wait(), Exited(0));
  EXPECT_EQ(child.Output(), "two\nthree");
  Process hidden;
  ASSERT_EQ(Spawn(Shell("echo hidden"), hidden), 0);
  EXPECT_EQ(hidden.ReadOutputLine(1s), std::nullopt) << "output that is not piped has no lines";
}
