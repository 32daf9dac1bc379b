#include <corlith/platform/Process.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string_view>
#include <system_error>

extern char** environ;

namespace corlith::platform {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Deadline = std::optional<Clock::time_point>;

// Without pidfds (a kernel before 5.3, or a sandbox that refuses the call) nothing
// wakes poll when the child exits, so the exit is looked for at this interval.
constexpr std::chrono::milliseconds kExitCheckInterval{10};

// What one wake-up reads from a pipe at most before the time limit is looked at again.
constexpr std::size_t kReadPerWakeUp = 1 << 20;

void CloseFd(int& fd) noexcept {
  if (fd >= 0) ::close(fd);
  fd = -1;
}

// Limits far beyond any real wait mean "no limit", so that now() + timeout never
// overflows.
Deadline DeadlineAfter(std::chrono::milliseconds timeout) {
  if (timeout > std::chrono::hours(24 * 365)) return std::nullopt;
  return Clock::now() + std::max(timeout, std::chrono::milliseconds::zero());
}

int PollTimeout(const Deadline& deadline) {
  if (!deadline) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

std::string_view NameOf(std::string_view entry) { return entry.substr(0, entry.find('=')); }

// A bare name is looked up the way execvp would, but in the host, so that a working
// folder given to the child cannot change which program runs; a path is made
// absolute for the same reason.
int ResolveProgram(const fs::path& program, std::string& resolved) {
  std::error_code ec;
  if (program.native().find('/') != std::string::npos) {
    resolved = fs::absolute(program, ec).native();
    return ec.value();
  }
  const char* variable = std::getenv("PATH");
  const std::string_view search = variable != nullptr ? variable : "/bin:/usr/bin";
  int error = ENOENT;
  std::size_t start = 0;
  while (start <= search.size()) {
    std::size_t end = search.find(':', start);
    if (end == std::string_view::npos) end = search.size();
    const std::string_view folder = search.substr(start, end - start);
    start = end + 1;
    if (folder.empty()) continue;
    const fs::path candidate = fs::absolute(fs::path(folder) / program, ec);
    struct stat st {};
    if (ec || ::stat(candidate.c_str(), &st) != 0) continue;
    if (!S_ISREG(st.st_mode) || ::access(candidate.c_str(), X_OK) != 0) {
      error = EACCES;  // as execvp: found, but not runnable, unless a later folder has it
      continue;
    }
    resolved = candidate.native();
    return 0;
  }
  return error;
}

std::vector<std::string> ChildEnvironment(const SpawnOptions& options) {
  std::vector<std::string> entries;
  if (!options.replaceEnvironment) {
    auto replaced = [&options](std::string_view name) {
      return std::any_of(options.environment.begin(), options.environment.end(),
                         [name](const std::string& e) { return NameOf(e) == name; }) ||
             std::find(options.unsetVariables.begin(), options.unsetVariables.end(), name) !=
                 options.unsetVariables.end();
    };
    for (char** e = environ; *e != nullptr; ++e) {
      if (!replaced(NameOf(*e))) entries.emplace_back(*e);
    }
  }
  entries.insert(entries.end(), options.environment.begin(), options.environment.end());
  return entries;
}

std::vector<char*> NullTerminated(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& t : texts) pointers.push_back(t.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Moves both descriptors of a new pair above 2 (close-on-exec kept); on failure closes
// both and returns the error number.
int MoveAboveStandardStreams(int (&fds)[2]) {
  for (int& fd : fds) {
    if (fd > 2) continue;
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 3);
    const int error = errno;
    ::close(fd);
    fd = moved;
    if (moved < 0) {
      for (int& other : fds) CloseFd(other);
      return error;
    }
  }
  return 0;
}

// The parent's read end is non-blocking, so that the last read after the child's exit
// takes what is there and never waits for a grandchild still holding the write end.
// Both ends sit above 2 even in a host that closed its standard streams, where a
// dup2 onto the same number would otherwise be a no-op that keeps close-on-exec.
int MakePipe(int& readFd, int& writeFd) {
  int fds[2];
  if (::pipe2(fds, O_CLOEXEC) != 0) return errno;
  if (const int error = MoveAboveStandardStreams(fds); error != 0) return error;
  ::fcntl(fds[0], F_SETFL, ::fcntl(fds[0], F_GETFL) | O_NONBLOCK);
  readFd = fds[0];
  writeFd = fds[1];
  return 0;
}

// A child's piped standard input is one end of a local stream socket: the host writes
// its end with MSG_NOSIGNAL, so a child that has gone away gives EPIPE and never a
// SIGPIPE, whatever the host's disposition of that signal and on any thread. The host's
// end is close-on-exec (no other child inherits it) and, as in MakePipe, above 2.
int MakeInputSocket(int& hostFd, int& childFd) {
  int fds[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0) return errno;
  if (const int error = MoveAboveStandardStreams(fds); error != 0) return error;
  // The child only reads: its end refuses writes, the host's end reads nothing.
  ::shutdown(fds[0], SHUT_RD);
  ::shutdown(fds[1], SHUT_WR);
  hostFd = fds[0];
  childFd = fds[1];
  return 0;
}

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&m_actions); }
  ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  posix_spawn_file_actions_t* Get() { return &m_actions; }

 private:
  posix_spawn_file_actions_t m_actions{};
};

class SpawnAttributes {
 public:
  SpawnAttributes() { posix_spawnattr_init(&m_attributes); }
  ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  posix_spawnattr_t* Get() { return &m_attributes; }

 private:
  posix_spawnattr_t m_attributes{};
};

// Sets up descriptor `target` (0, 1 or 2) of the child; `childEnd` is the child's end of
// the pipe when the target is a pipe. Standard input can only read: a file to append to,
// or "same as output", is refused there.
int AddStream(posix_spawn_file_actions_t* actions, int target, const StreamTarget& stream, int childEnd) {
  const bool input = target == STDIN_FILENO;
  std::error_code ec;
  switch (stream.kind) {
    case StreamKind::Null:
      return posix_spawn_file_actions_addopen(actions, target, "/dev/null", input ? O_RDONLY : O_WRONLY, 0);
    case StreamKind::Inherit:
      return 0;
    case StreamKind::File:
    case StreamKind::AppendFile: {
      if (input && stream.kind == StreamKind::AppendFile) return EINVAL;
      const fs::path file = fs::absolute(stream.file, ec);
      if (ec) return ec.value();
      const int flags =
          input ? O_RDONLY : O_WRONLY | O_CREAT | (stream.kind == StreamKind::File ? O_TRUNC : O_APPEND);
      return posix_spawn_file_actions_addopen(actions, target, file.c_str(), flags, 0666);
    }
    case StreamKind::Pipe:
      return posix_spawn_file_actions_adddup2(actions, childEnd, target);
    case StreamKind::SameAsOutput:
      return target == STDERR_FILENO ? posix_spawn_file_actions_adddup2(actions, STDOUT_FILENO, target)
                                     : EINVAL;
  }
  return EINVAL;
}

// Appends what the pipe holds now to `into`; at most `limit` bytes, so that a writer
// that keeps the pipe full cannot keep this reading forever. Closes the pipe at its
// end or on an error.
void ReadAvailable(int& fd, std::string& into, std::size_t limit) {
  char buffer[65536];
  while (fd >= 0 && limit > 0) {
    const ssize_t n = ::read(fd, buffer, std::min(sizeof buffer, limit));
    if (n > 0) {
      into.append(buffer, static_cast<std::size_t>(n));
      limit -= static_cast<std::size_t>(n);
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else if (n < 0 && errno == EAGAIN) {
      return;
    } else {
      CloseFd(fd);
    }
  }
}

std::size_t PipeHolds(int fd) {
  int available = 0;
  return ::ioctl(fd, FIONREAD, &available) == 0 && available > 0 ? static_cast<std::size_t>(available) : 0;
}

}  // namespace

Process::Process(Process&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)),
      m_pidfd(std::exchange(other.m_pidfd, -1)),
      m_outputFd(std::exchange(other.m_outputFd, -1)),
      m_errorFd(std::exchange(other.m_errorFd, -1)),
      m_inputFd(std::exchange(other.m_inputFd, -1)),
      m_exited(std::exchange(other.m_exited, false)),
      m_status(std::exchange(other.m_status, std::nullopt)),
      m_output(std::move(other.m_output)),
      m_errorOutput(std::move(other.m_errorOutput)) {}

Process& Process::operator=(Process&& other) noexcept {
  if (this != &other) {
    Dispose();
    m_pid = std::exchange(other.m_pid, -1);
    m_pidfd = std::exchange(other.m_pidfd, -1);
    m_outputFd = std::exchange(other.m_outputFd, -1);
    m_errorFd = std::exchange(other.m_errorFd, -1);
    m_inputFd = std::exchange(other.m_inputFd, -1);
    m_exited = std::exchange(other.m_exited, false);
    m_status = std::exchange(other.m_status, std::nullopt);
    m_output = std::move(other.m_output);
    m_errorOutput = std::move(other.m_errorOutput);
  }
  return *this;
}

Process::~Process() { Dispose(); }

void Process::Dispose() noexcept {
  if (m_pid > 0 && !m_status) {
    if (WaitForExit(Clock::now())) {
      Reap();
    } else {
      Terminate();
    }
  }
  CloseAll();
  m_pid = -1;
  m_exited = false;
  m_status.reset();
  m_output.clear();
  m_errorOutput.clear();
}

void Process::CloseAll() noexcept {
  CloseFd(m_pidfd);
  CloseFd(m_outputFd);
  CloseFd(m_errorFd);
  CloseFd(m_inputFd);
}

void Process::CloseInput() noexcept { CloseFd(m_inputFd); }

bool Process::WriteInput(std::string_view data) {
  while (m_inputFd >= 0 && !data.empty()) {
    const ssize_t n = ::send(m_inputFd, data.data(), data.size(), MSG_NOSIGNAL);
    if (n > 0) {
      data.remove_prefix(static_cast<std::size_t>(n));
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      return false;
    }
  }
  return m_inputFd >= 0;
}

std::optional<std::string> Process::ReadOutputLine(std::chrono::milliseconds timeout) {
  const Deadline deadline = DeadlineAfter(timeout);
  // Only the bytes that came in since the last look are searched, so a long line that
  // arrives in many pieces costs linear time.
  std::size_t searched = 0;
  for (;;) {
    const std::size_t end = m_output.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = m_output.substr(0, end);
      m_output.erase(0, end + 1);
      return line;
    }
    searched = m_output.size();
    if (m_outputFd < 0) {
      if (m_output.empty()) return std::nullopt;
      return std::exchange(m_output, std::string());
    }
    pollfd fd{m_outputFd, POLLIN, 0};
    const int ready = ::poll(&fd, 1, PollTimeout(deadline));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return std::nullopt;
    ReadAvailable(m_outputFd, m_output, kReadPerWakeUp);
    // A writer that keeps sending without a line end cannot hold this past the limit.
    if (deadline && Clock::now() >= *deadline && m_outputFd >= 0 &&
        m_output.find('\n', searched) == std::string::npos) {
      return std::nullopt;
    }
  }
}

bool Process::WaitForExit(Deadline deadline) {
  if (m_exited || m_status) return true;
  for (;;) {
    pollfd fds[3]{};
    nfds_t count = 0;
    if (m_pidfd >= 0) fds[count++] = {m_pidfd, POLLIN, 0};
    const nfds_t outputAt = count;
    if (m_outputFd >= 0) fds[count++] = {m_outputFd, POLLIN, 0};
    const nfds_t errorAt = count;
    if (m_errorFd >= 0) fds[count++] = {m_errorFd, POLLIN, 0};
    int timeout = PollTimeout(deadline);
    if (m_pidfd < 0 && (timeout < 0 || timeout > kExitCheckInterval.count())) {
      timeout = static_cast<int>(kExitCheckInterval.count());
    }
    const int ready = ::poll(fds, count, timeout);
    if (ready > 0) {
      if (m_outputFd >= 0 && fds[outputAt].revents != 0) ReadAvailable(m_outputFd, m_output, kReadPerWakeUp);
      if (m_errorFd >= 0 && fds[errorAt].revents != 0)
        ReadAvailable(m_errorFd, m_errorOutput, kReadPerWakeUp);
    }
    if (m_pidfd >= 0) {
      m_exited = ready > 0 && fds[0].revents != 0;
    } else {
      // WNOWAIT: the leader stays a zombie, and its id the group's, until Reap.
      siginfo_t info{};
      const int result = ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT);
      m_exited = (result == 0 && info.si_pid != 0) || (result != 0 && errno == ECHILD);
    }
    if (m_exited) return true;
    if (deadline && Clock::now() >= *deadline) return false;
  }
}

void Process::Drain() {
  if (m_outputFd >= 0) ReadAvailable(m_outputFd, m_output, PipeHolds(m_outputFd));
  if (m_errorFd >= 0) ReadAvailable(m_errorFd, m_errorOutput, PipeHolds(m_errorFd));
}

void Process::Reap() {
  siginfo_t info{};
  int result;
  do {
    result = ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED);
  } while (result != 0 && errno == EINTR);
  ExitStatus status;
  if (result == 0 && info.si_code == CLD_EXITED) {
    status.code = info.si_status;
  } else if (result == 0) {
    status.signal = info.si_status;
  }
  m_status = status;
  m_exited = false;
  Drain();
  CloseAll();
}

std::optional<ExitStatus> Process::Wait() {
  if (Empty()) return std::nullopt;
  if (!m_status) {
    WaitForExit(std::nullopt);
    Reap();
  }
  return m_status;
}

bool Process::WaitFor(std::chrono::milliseconds timeout) {
  if (Empty()) return false;
  if (m_status) return true;
  if (!WaitForExit(DeadlineAfter(timeout))) return false;
  Reap();
  return true;
}

std::optional<ExitStatus> Process::Terminate(std::chrono::milliseconds grace) {
  if (Empty()) return std::nullopt;
  if (m_status) return m_status;
  // The group's id is the leader's, and stays ours while the leader is unreaped, so
  // these signals cannot reach a group that has since taken the same number. The
  // leader is signalled by its id as well: it may have moved itself into another
  // group, and waiting for it below must end.
  if (!m_exited) {
    ::kill(-m_pid, SIGTERM);
    ::kill(m_pid, SIGTERM);
    ::kill(-m_pid, SIGCONT);
    ::kill(m_pid, SIGCONT);
    WaitForExit(DeadlineAfter(grace));
  }
  ::kill(-m_pid, SIGKILL);
  ::kill(m_pid, SIGKILL);
  WaitForExit(std::nullopt);
  Reap();
  return m_status;
}

int Spawn(const SpawnOptions& options, Process& process) {
  process = Process();
  if (options.program.empty() || options.output.kind == StreamKind::SameAsOutput) return EINVAL;
  std::string program;
  if (const int error = ResolveProgram(options.program, program); error != 0) return error;

  Process child;
  if (options.input.kind == StreamKind::AppendFile || options.input.kind == StreamKind::SameAsOutput) {
    return EINVAL;
  }
  int outputWrite = -1;
  int errorWrite = -1;
  int inputRead = -1;
  struct ChildEnds {
    int& output;
    int& error;
    int& input;
    ~ChildEnds() {
      CloseFd(output);
      CloseFd(error);
      CloseFd(input);
    }
  } childEnds{outputWrite, errorWrite, inputRead};
  if (options.output.kind == StreamKind::Pipe) {
    if (const int error = MakePipe(child.m_outputFd, outputWrite); error != 0) return error;
  }
  if (options.error.kind == StreamKind::Pipe) {
    if (const int error = MakePipe(child.m_errorFd, errorWrite); error != 0) return error;
  }
  if (options.input.kind == StreamKind::Pipe) {
    if (const int error = MakeInputSocket(child.m_inputFd, inputRead); error != 0) return error;
  }

  FileActions actions;
  int error = AddStream(actions.Get(), STDIN_FILENO, options.input, inputRead);
  if (error == 0) error = AddStream(actions.Get(), STDOUT_FILENO, options.output, outputWrite);
  if (error == 0) error = AddStream(actions.Get(), STDERR_FILENO, options.error, errorWrite);
  if (error == 0) error = posix_spawn_file_actions_addclosefrom_np(actions.Get(), STDERR_FILENO + 1);
  if (error == 0 && !options.workingFolder.empty()) {
    error = posix_spawn_file_actions_addchdir_np(actions.Get(), options.workingFolder.c_str());
  }
  if (error != 0) return error;

  SpawnAttributes attributes;
  sigset_t noSignals;
  sigset_t allSignals;
  sigemptyset(&noSignals);
  sigfillset(&allSignals);
  posix_spawnattr_setflags(attributes.Get(),
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawnattr_setpgroup(attributes.Get(), 0);
  posix_spawnattr_setsigmask(attributes.Get(), &noSignals);
  posix_spawnattr_setsigdefault(attributes.Get(), &allSignals);

  std::vector<std::string> arguments;
  arguments.reserve(options.arguments.size() + 1);
  arguments.push_back(options.program.native());
  arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
  std::vector<std::string> environment = ChildEnvironment(options);
  std::vector<char*> argv = NullTerminated(arguments);
  std::vector<char*> envp = NullTerminated(environment);

  // glibc's posix_spawn returns only once the child has called exec, and returns the
  // error of any file action or of the exec itself: a program that cannot start never
  // becomes a child to wait for.
  pid_t pid = -1;
  error = posix_spawn(&pid, program.c_str(), actions.Get(), attributes.Get(), argv.data(), envp.data());
  if (error != 0) return error;
  child.m_pid = pid;
  // pidfd_open through syscall: glibc 2.36's <sys/pidfd.h> lacks extern "C". The child
  // is ours and unreaped, so its id cannot name another process yet.
  child.m_pidfd = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
  if (child.m_pidfd < 0) child.m_pidfd = -1;
  process = std::move(child);
  return 0;
}

RunResult RunHidden(const SpawnOptions& options, std::chrono::milliseconds timeout) {
  RunResult result;
  Process process;
  result.error = Spawn(options, process);
  if (result.error != 0) return result;
  if (!process.WaitFor(timeout)) {
    result.timedOut = true;
    process.Terminate();
  }
  result.status = process.m_status.value_or(ExitStatus{});
  result.output = std::move(process.m_output);
  result.errorOutput = std::move(process.m_errorOutput);
  return result;
}

}  // namespace corlith::platform
