// Desktop hooks: headless waiting really takes its time, installing hooks for a scope
// restores the previous ones (null meaning headless), and the recording hooks see every
// call, in order, from any number of threads.
#include <corlith/framework/DesktopHooks.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using corlith::DesktopCall;
using corlith::HeadlessDesktopHooks;
using corlith::RecordingDesktopHooks;
using corlith::ScopedDesktopHooks;
using Clock = std::chrono::steady_clock;

long ElapsedMs(Clock::time_point start) {
  return static_cast<long>(
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

TEST(HeadlessDesktopHooks, WaitSleepsForTheGivenTime) {
  ScopedDesktopHooks headless(nullptr);
  for (const DWORD ms : {0u, 30u, 120u}) {
    SCOPED_TRACE(ms);
    const auto start = Clock::now();
    corlith::GetDesktopHooks()->Wait(ms);
    const long elapsed = ElapsedMs(start);
    EXPECT_GE(elapsed, static_cast<long>(ms));
    EXPECT_LT(elapsed, static_cast<long>(ms) + 2000);
  }
}

TEST(DesktopHooksInstall, ScopesRestoreThePreviousHooksAndNullMeansHeadless) {
  const auto original = corlith::GetDesktopHooks();
  ASSERT_NE(original, nullptr);
  auto outer = std::make_shared<RecordingDesktopHooks>();
  auto inner = std::make_shared<RecordingDesktopHooks>();
  {
    ScopedDesktopHooks outerScope(outer);
    {
      ScopedDesktopHooks innerScope(inner);
      corlith::GetDesktopHooks()->SetArrowCursor();
    }
    corlith::GetDesktopHooks()->ReleaseMouseCapture();
    {
      ScopedDesktopHooks headless(nullptr);
      const auto current = corlith::GetDesktopHooks();
      EXPECT_NE(dynamic_cast<HeadlessDesktopHooks*>(current.get()), nullptr);
      current->SetArrowCursor();  // goes nowhere near the recorders
    }
    EXPECT_EQ(corlith::GetDesktopHooks(), outer);
  }
  EXPECT_NE(corlith::GetDesktopHooks(), outer);
  EXPECT_NE(corlith::GetDesktopHooks(), nullptr);
  EXPECT_EQ(inner->Calls(), std::vector<DesktopCall>{DesktopCall::SetArrowCursor});
  EXPECT_EQ(outer->Calls(), std::vector<DesktopCall>{DesktopCall::ReleaseMouseCapture});
}

TEST(RecordingDesktopHooks, RecordsCallsInOrderAndWaitReturnsAtOnce) {
  auto recording = std::make_shared<RecordingDesktopHooks>();
  ScopedDesktopHooks scope(recording);
  const auto hooks = corlith::GetDesktopHooks();
  const auto start = Clock::now();
  hooks->Wait(600000);
  hooks->SetArrowCursor();
  hooks->ReleaseMouseCapture();
  hooks->ProcessWindowMessage();
  hooks->Wait(5);
  hooks->SetArrowCursor();
  EXPECT_LT(ElapsedMs(start), 1000);

  EXPECT_EQ(recording->Calls(),
            (std::vector<DesktopCall>{DesktopCall::Wait, DesktopCall::SetArrowCursor,
                                      DesktopCall::ReleaseMouseCapture, DesktopCall::ProcessWindowMessage,
                                      DesktopCall::Wait, DesktopCall::SetArrowCursor}));
  EXPECT_EQ(recording->Waits(), (std::vector<DWORD>{600000, 5}));
  const struct {
    DesktopCall call;
    int count;
  } kCounts[] = {{DesktopCall::Wait, 2},
                 {DesktopCall::ProcessWindowMessage, 1},
                 {DesktopCall::SetArrowCursor, 2},
                 {DesktopCall::ReleaseMouseCapture, 1}};
  for (const auto& row : kCounts) {
    SCOPED_TRACE(static_cast<int>(row.call));
    EXPECT_EQ(recording->Count(row.call), row.count);
  }

  recording->Clear();
  EXPECT_TRUE(recording->Calls().empty());
  EXPECT_TRUE(recording->Waits().empty());
  for (const auto& row : kCounts) EXPECT_EQ(recording->Count(row.call), 0);
}

TEST(RecordingDesktopHooks, CountsEveryCallFromManyThreads) {
  RecordingDesktopHooks recording;
  constexpr int kThreads = 8;
  constexpr int kEach = 1000;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&recording, t] {
      for (int i = 0; i < kEach; ++i) {
        recording.Wait(static_cast<DWORD>(t));
        recording.ProcessWindowMessage();
        recording.SetArrowCursor();
        recording.ReleaseMouseCapture();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  for (const DesktopCall call : {DesktopCall::Wait, DesktopCall::ProcessWindowMessage,
                                 DesktopCall::SetArrowCursor, DesktopCall::ReleaseMouseCapture}) {
    SCOPED_TRACE(static_cast<int>(call));
    EXPECT_EQ(recording.Count(call), kThreads * kEach);
  }
  EXPECT_EQ(recording.Calls().size(), static_cast<std::size_t>(4 * kThreads * kEach));
  std::vector<int> perThread(kThreads, 0);
  for (const DWORD ms : recording.Waits()) ++perThread.at(ms);
  EXPECT_EQ(perThread, std::vector<int>(kThreads, kEach));
}

}  // namespace
