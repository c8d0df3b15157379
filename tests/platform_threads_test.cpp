#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/suspendable_thread.h"

namespace wavetrace::platform {
namespace {

using namespace std::chrono_literals;

// A start held until the resume and a resume that comes before the park are
// caught by the pty and headless tests; these are not.
TEST(SuspendableThread, AnEndedThreadRefusesAResumeAndAStopEndsAParkAndCutsASleepShort) {
  std::atomic<bool> parked{true};
  SuspendableThread parker(
      "t", [&](SuspendableThread& self) { parked = self.Park(); }, false);
  parker.RequestStop();
  parker.Join();
  EXPECT_FALSE(parked);
  EXPECT_TRUE(parker.HasEnded());
  EXPECT_FALSE(parker.Resume());

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
