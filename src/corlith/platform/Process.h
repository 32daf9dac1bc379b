// Child processes: SpawnOptions say what to run and where its output goes, Spawn
// starts it in a process group of its own and hands back a move-only Process that
// waits for it, ends its whole group, and reaps it in its destructor. RunHidden is the
// common "run, wait, end the group on time-out" case. Nothing here throws.
//
// Every child starts the same way: standard input reads /dev/null (unless the options
// give it a file, the host's own, or a pipe the host writes to); standard output
// and standard error go to /dev/null unless the options say otherwise (the programs a
// host starts show no console); no descriptor above 2 is inherited; the signal mask is
// empty and every signal has its default action (but glibc's two internal real-time
// signals, which its posix_spawn leaves ignored); the working folder is changed for
// the child alone, never for the host. The child leads a new process group, so a
// time-out can end it together with everything it started. Waiting watches one child
// only (a pidfd and poll, then waitid on that child): the layer never changes SIGCHLD
// and never reaps a child it did not start. A host that sets SIGCHLD to SIG_IGN gets
// its children reaped by the kernel; their status then reads as unknown (code -1).
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corlith::platform {

/// Where one of the child's streams goes (or, for standard input, comes from).
enum class StreamKind {
  Null,          ///< /dev/null (the default: the program runs hidden)
  Inherit,       ///< the host's own stream
  File,          ///< a file, created or emptied
  AppendFile,    ///< a file, created or appended to
  Pipe,          ///< captured: Process::Output() / ErrorOutput(); for input: Process::WriteInput
  SameAsOutput,  ///< standard error only: wherever standard output goes
};

struct StreamTarget {
  StreamKind kind = StreamKind::Null;
  /// The file for File and AppendFile; a relative path is taken from the host's current
  /// folder, not the child's working folder.
  std::filesystem::path file;

  static StreamTarget Null() { return {}; }
  static StreamTarget Inherit() { return {StreamKind::Inherit, {}}; }
  static StreamTarget ToFile(std::filesystem::path path) { return {StreamKind::File, std::move(path)}; }
  static StreamTarget AppendTo(std::filesystem::path path) {
    return {StreamKind::AppendFile, std::move(path)};
  }
  static StreamTarget Pipe() { return {StreamKind::Pipe, {}}; }
  static StreamTarget SameAsOutput() { return {StreamKind::SameAsOutput, {}}; }
};

struct SpawnOptions {
  /// A path (anything with a separator, "./tool" included) or a bare name looked up on
  /// the host's PATH (empty entries, which would mean the current folder, are skipped;
  /// no PATH means "/bin:/usr/bin"). A relative path is taken from the host's current
  /// folder, also when a working folder is given.
  std::filesystem::path program;
  /// The arguments after the program's name; passed as they are, no shell sees them.
  std::vector<std::string> arguments;
  /// The child's current folder; empty: the host's.
  std::filesystem::path workingFolder;
  /// "NAME=value" entries set for the child over the host's environment.
  std::vector<std::string> environment;
  /// Names removed from the host's environment for the child.
  std::vector<std::string> unsetVariables;
  /// The child's environment is `environment` alone, nothing of the host's.
  bool replaceEnvironment = false;
  /// Standard input: Null (/dev/null, the default), Inherit, File (read from the start)
  /// or Pipe (the host writes with Process::WriteInput). AppendFile and SameAsOutput give
  /// EINVAL.
  StreamTarget input;
  StreamTarget output;
  /// SameAsOutput puts both streams in one file or one pipe, in the order written.
  StreamTarget error;
};

/// How a child ended.
struct ExitStatus {
  /// The exit code (0-255) when the program exited; -1 when a signal ended it or the
  /// status could not be learned.
  int code = -1;
  /// The signal that ended it; 0 when it exited.
  int signal = 0;

  bool Succeeded() const { return code == 0; }
  friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
};

/// How long Terminate waits after SIGTERM before it sends SIGKILL.
inline constexpr std::chrono::milliseconds kTerminateGrace{1000};

struct RunResult;

/// A started child. Move-only; a default-constructed or moved-from Process holds none.
/// One handle is for one thread at a time; several handles may wait at once.
class Process {
 public:
  Process() = default;
  Process(Process&& other) noexcept;
  /// Disposes of the child this handle held first, as the destructor does.
  Process& operator=(Process&& other) noexcept;
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  /// Reaps the child. One still running is ended first with its whole group
  /// (Terminate: this can take up to kTerminateGrace); one that has already exited is
  /// reaped and its group left alone, so that what it started in the background (a
  /// browser started by xdg-open) keeps running.
  ~Process();

  /// True when the handle holds no child: none was started into it, or it was moved away.
  bool Empty() const { return m_pid <= 0; }
  /// The child's process id, which is also its process group's id; -1 when empty. It
  /// stays readable after the child has been reaped, but then names nothing of ours.
  int Id() const { return m_pid; }

  /// Waits without a time limit for the child to end and reaps it, capturing piped
  /// output meanwhile; nullopt only for an empty handle. Later calls return the same.
  std::optional<ExitStatus> Wait();
  /// Waits at most `timeout` (no busy loop; a limit beyond a year is none); true when the
  /// child has ended and been reaped (then Status() says how), false when it still runs
  /// or the handle is empty.
  bool WaitFor(std::chrono::milliseconds timeout);
  /// How the child ended, once Wait, WaitFor or Terminate has reaped it.
  const std::optional<ExitStatus>& Status() const { return m_status; }

  /// Ends the child's whole process group: SIGTERM (and SIGCONT, so that stopped members
  /// see it), up to `grace` for the leader to exit, then SIGKILL to every member left,
  /// and only then reaps the leader (whose id keeps the group's id ours until then).
  /// Members that left the group (setsid, setpgid) are out of reach. The members other
  /// than the leader may still be on their way out when this returns, but run no further
  /// code. A child already reaped is left alone. Returns the status (nullopt when empty).
  std::optional<ExitStatus> Terminate(std::chrono::milliseconds grace = kTerminateGrace);

  /// What the child wrote to a Pipe stream, complete once it has been reaped. Reading
  /// ends when the leader exits: what it started in the background and writes later is
  /// not waited for. Not bounded: pipe only what fits in memory.
  const std::string& Output() const { return m_output; }
  const std::string& ErrorOutput() const { return m_errorOutput; }

  /// The next line the child writes to a piped standard output, without its line end,
  /// waiting at most `timeout` for it. Lines taken here leave Output(), which keeps what
  /// has not been taken. After the output has ended, a last unfinished line is returned
  /// once; nullopt when no whole line came in time, at the end of the output, or when
  /// standard output is not piped.
  std::optional<std::string> ReadOutputLine(std::chrono::milliseconds timeout);

  /// Writes all of `data` to the child's piped standard input, waiting while the pipe is
  /// full. False when input is not piped, was closed, or the child no longer reads it
  /// (never a SIGPIPE: the pipe is a local socket written without that signal).
  bool WriteInput(std::string_view data);
  /// Closes the host's end of the child's piped standard input: the child reads the end
  /// of its input. Nothing when input is not piped or already closed.
  void CloseInput() noexcept;

 private:
  friend int Spawn(const SpawnOptions& options, Process& process);
  friend RunResult RunHidden(const SpawnOptions& options, std::chrono::milliseconds timeout);

  bool WaitForExit(std::optional<std::chrono::steady_clock::time_point> deadline);
  void Drain();
  void Reap();
  void Dispose() noexcept;
  void CloseAll() noexcept;

  int m_pid = -1;
  int m_pidfd = -1;       ///< readable once the child has exited; -1 where pidfds are missing
  int m_outputFd = -1;    ///< the read end of a piped standard output
  int m_errorFd = -1;     ///< the read end of a piped standard error
  int m_inputFd = -1;     ///< the host's end of a piped standard input (close-on-exec)
  bool m_exited = false;  ///< the child has exited but is not reaped yet
  std::optional<ExitStatus> m_status;
  std::string m_output;
  std::string m_errorOutput;
};

/// Starts a child as `options` say into `process` (disposing of the child it held, as
/// the destructor does). Returns 0 or the system's error number, and then nothing runs:
/// a program that is missing (ENOENT), not executable (EACCES) or not a program
/// (ENOEXEC), a working folder or output file that cannot be used, fails here, at once,
/// and never shows up as a child that exits with 127. EINVAL: no program, or standard
/// output set to SameAsOutput.
int Spawn(const SpawnOptions& options, Process& process);

/// The result of RunHidden.
struct RunResult {
  int error = 0;          ///< Spawn's error number; when non-zero nothing ran
  bool timedOut = false;  ///< the time limit passed and the group was ended
  ExitStatus status;      ///< how the child ended (after a time-out: mostly SIGTERM)
  std::string output;     ///< standard output when piped
  std::string errorOutput;
};

/// Starts a child, waits up to `timeout` for it (as WaitFor: milliseconds::max() is no
/// limit), and on time-out ends its whole group (Terminate). Standard output and error
/// go where `options` say: /dev/null unless changed.
RunResult RunHidden(const SpawnOptions& options, std::chrono::milliseconds timeout);

}  // namespace corlith::platform
