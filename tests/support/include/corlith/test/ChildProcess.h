// Process tests start a real child: this test binary re-run with a --gtest_filter that
// selects one test and extra environment variables that tell that test to play the
// child's part. The parent waits and looks at the exit status and standard output.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace testing {
class UnitTest;
}

namespace corlith::test {

/// A child running this program; move-only, and never left behind (see the destructor).
class ChildProcess {
 public:
  /// Starts this program with --gtest_filter=filter, this process's environment and
  /// environment ("NAME=value" entries replacing variables of the same name). The
  /// sharding and output variables of Google Test are dropped, so that the child runs
  /// the filtered tests whole and writes no report over the parent's. Check Started().
  static ChildProcess Start(const std::string& filter, const std::vector<std::string>& environment = {});

  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  /// Kills and reaps a child not yet waited for, so a failed test leaves no process.
  ~ChildProcess();

  /// False when the program could not be started; Wait then returns -1.
  bool Started() const { return m_pid > 0; }
  /// Reads the child's standard output to its end, then waits for it to exit. Returns
  /// the exit status, 128 + the signal number when a signal ended it, or -1 when it
  /// never started; later calls return the same. Start several children at once only
  /// when each writes less than a pipe holds (64 KiB), as they are read one by one.
  int Wait();
  /// The child's standard output, complete once Wait has returned. (Standard error goes
  /// where the parent's goes.)
  const std::string& Output() const { return m_output; }

 private:
  ChildProcess(pid_t pid, int outputFd) : m_pid(pid), m_outputFd(outputFd) {}
  void Release() noexcept;

  pid_t m_pid = -1;
  int m_outputFd = -1;
  int m_status = -1;
  std::string m_output;
};

/// Starts the test that is running now again, in a child with environment added.
/// (A template so that only its callers, never this header, need Google Test.)
template <typename UnitTest = testing::UnitTest>
ChildProcess StartThisTest(const std::vector<std::string>& environment) {
  const auto* info = UnitTest::GetInstance()->current_test_info();
  return ChildProcess::Start(std::string(info->test_suite_name()) + "." + info->name(), environment);
}

}  // namespace corlith::test
