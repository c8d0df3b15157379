#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/suspendable_thread.h"

namespace wavetrace::platform {
namespace {

using namespace std::chrono_literals;

bool WaitUntil(const std::function<bool()>& condition) {
  auto deadline = std::chrono::steady_clock::now() + 10s;
  while (!condition() && std::chrono::steady_clock::now() < deadline) std::this_thread::sleep_for(1ms);
  return condition();
}

TEST(SuspendableThread, CreatedSuspendedStartsOnlyWhenResumedAndAResumeBeforeTheParkIsNotLost) {
  std::atomic<int> runs{0};
  SuspendableThread suspended(
      "t", [&](SuspendableThread&) { ++runs; }, true);
  ASSERT_TRUE(WaitUntil([&] { return suspended.IsParked(); }));
  EXPECT_EQ(runs, 0);
  EXPECT_TRUE(suspended.Resume());
  ASSERT_TRUE(WaitUntil([&] { return suspended.HasEnded(); }));
  EXPECT_EQ(runs, 1);
  EXPECT_FALSE(suspended.Resume());

  std::atomic<bool> readyToPark{false}, passed{false};
  SuspendableThread busy(
      "t",
      [&](SuspendableThread& self) {
        while (!readyToPark) std::this_thread::yield();
        passed = self.Park();
      },
      false);
  EXPECT_TRUE(busy.Resume());  // arrives while the thread is still busy
  readyToPark = true;
  ASSERT_TRUE(WaitUntil([&] { return busy.HasEnded(); }));
  EXPECT_TRUE(passed);
}

TEST(SuspendableThread, ParkResumeCyclesStopAndAStopCutsASleepShort) {
  std::atomic<int> cycles{0};
  SuspendableThread thread(
      "t",
      [&](SuspendableThread& self) {
        while (self.Park()) ++cycles;
      },
      false);
  for (int i = 1; i <= 5; ++i) {
    ASSERT_TRUE(WaitUntil([&] { return thread.IsParked(); }));
    thread.Resume();
    ASSERT_TRUE(WaitUntil([&] { return cycles == i; }));
  }
  thread.RequestStop();
  thread.Join();
  EXPECT_EQ(cycles, 5);

  std::atomic<bool> slept{true};
  auto start = std::chrono::steady_clock::now();
  {
    SuspendableThread sleeper(
        "t", [&](SuspendableThread& self) { slept = self.SleepFor(60'000); }, false);
    std::this_thread::sleep_for(10ms);
  }  // the destructor stops and joins
  EXPECT_FALSE(slept);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

}  // namespace
}  // namespace wavetrace::platform
