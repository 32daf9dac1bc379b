#include <corlith/test/ChildProcess.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

extern char** environ;

namespace corlith::test {

namespace {

std::string_view NameOf(std::string_view entry) { return entry.substr(0, entry.find('=')); }

bool IsDropped(std::string_view name) {
  return name == "GTEST_SHARD_INDEX" || name == "GTEST_TOTAL_SHARDS" || name == "GTEST_OUTPUT";
}

// This process's environment without the dropped variables and those that extra
// replaces, then extra.
std::vector<std::string> ChildEnvironment(const std::vector<std::string>& extra) {
  std::vector<std::string> entries;
  for (char** e = environ; *e != nullptr; ++e) {
    const std::string_view entry(*e);
    bool keep = !IsDropped(NameOf(entry));
    for (const std::string& x : extra) keep = keep && NameOf(entry) != NameOf(x);
    if (keep) entries.emplace_back(entry);
  }
  entries.insert(entries.end(), extra.begin(), extra.end());
  return entries;
}

}  // namespace

ChildProcess ChildProcess::Start(const std::string& filter, const std::vector<std::string>& environment) {
  int fds[2];
  // Close-on-exec, so that children started at the same time never hold each other's
  // pipe open (the reader would then wait for the wrong child's exit).
  if (::pipe2(fds, O_CLOEXEC) != 0) return ChildProcess(-1, -1);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);

  std::vector<std::string> entries = ChildEnvironment(environment);
  std::vector<char*> envp;
  envp.reserve(entries.size() + 1);
  for (std::string& e : entries) envp.push_back(e.data());
  envp.push_back(nullptr);
  std::string self = "/proc/self/exe";
  std::string filterArgument = "--gtest_filter=" + filter;
  char* argv[] = {self.data(), filterArgument.data(), nullptr};

  pid_t pid = -1;
  const int error = posix_spawn(&pid, self.c_str(), &actions, nullptr, argv, envp.data());
  posix_spawn_file_actions_destroy(&actions);
  ::close(fds[1]);
  if (error != 0) {
    ::close(fds[0]);
    return ChildProcess(-1, -1);
  }
  return ChildProcess(pid, fds[0]);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)),
      m_outputFd(std::exchange(other.m_outputFd, -1)),
      m_status(other.m_status),
      m_output(std::move(other.m_output)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  if (this != &other) {
    Release();
    m_pid = std::exchange(other.m_pid, -1);
    m_outputFd = std::exchange(other.m_outputFd, -1);
    m_status = other.m_status;
    m_output = std::move(other.m_output);
  }
  return *this;
}

ChildProcess::~ChildProcess() { Release(); }

void ChildProcess::Release() noexcept {
  if (m_outputFd >= 0) ::close(m_outputFd);
  m_outputFd = -1;
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    while (::waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  m_pid = -1;
}

int ChildProcess::Wait() {
  if (m_outputFd >= 0) {
    char buffer[4096];
    for (;;) {
      const ssize_t n = ::read(m_outputFd, buffer, sizeof buffer);
      if (n > 0) {
        m_output.append(buffer, static_cast<std::size_t>(n));
      } else if (n == 0 || errno != EINTR) {
        break;
      }
    }
    ::close(m_outputFd);
    m_outputFd = -1;
  }
  if (m_pid > 0) {
    int status = 0;
    pid_t waited;
    while ((waited = ::waitpid(m_pid, &status, 0)) < 0 && errno == EINTR) {
    }
    if (waited == m_pid) {
      m_status = WIFEXITED(status) ? WEXITSTATUS(status) : WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
    }
    m_pid = -1;
  }
  return m_status;
}

}  // namespace corlith::test
