#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/suspendable_thread.h"

namespace wavetrace::platform {
namespace {

using namespace std::chrono_literals;

void WaitUntil(const std::function<bool()>& condition) {
  auto deadline = std::chrono::steady_clock::now() + 10s;
  while (!condition() && std::chrono::steady_clock::now() < deadline) std::this_thread::sleep_for(1ms);
}

TEST(SuspendableThread, CreatedSuspendedStartsOnlyWhenResumed) {
  std::atomic<int> runs{0};
  SuspendableThread thread(
      "t", [&](SuspendableThread&) { ++runs; }, true);
  WaitUntil([&] { return thread.IsParked(); });
  EXPECT_EQ(runs, 0);
  EXPECT_TRUE(thread.Resume());
  WaitUntil([&] { return thread.HasEnded(); });
  EXPECT_EQ(runs, 1);
  EXPECT_FALSE(thread.Resume());
}

TEST(SuspendableThread, AResumeBeforeTheParkIsNotLost) {
  std::atomic<bool> readyToPark{false};
  std::atomic<bool> passed{false};
  SuspendableThread thread(
      "t",
      [&](SuspendableThread& self) {
        while (!readyToPark) std::this_thread::yield();
        passed = self.Park();
      },
      false);
  EXPECT_TRUE(thread.Resume());  // arrives while the thread is still busy
  readyToPark = true;
  WaitUntil([&] { return thread.HasEnded(); });
  EXPECT_TRUE(passed);
}

TEST(SuspendableThread, ParkResumeCyclesAndStop) {
  std::atomic<int> cycles{0};
  SuspendableThread thread(
      "t",
      [&](SuspendableThread& self) {
        while (self.Park()) ++cycles;
      },
      false);
  for (int i = 1; i <= 5; ++i) {
    WaitUntil([&] { return thread.IsParked(); });
    thread.Resume();
    WaitUntil([&] { return cycles == i; });
  }
  EXPECT_EQ(cycles, 5);
  thread.RequestStop();
  thread.Join();
  EXPECT_TRUE(thread.HasEnded());
  EXPECT_EQ(cycles, 5);
}

TEST(SuspendableThread, StopCutsASleepShort) {
  std::atomic<bool> slept{true};
  auto start = std::chrono::steady_clock::now();
  {
    SuspendableThread thread(
        "t", [&](SuspendableThread& self) { slept = self.SleepFor(60'000); }, false);
    std::this_thread::sleep_for(10ms);
  }  // the destructor stops and joins
  EXPECT_FALSE(slept);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

}  // namespace
}  // namespace wavetrace::platform
