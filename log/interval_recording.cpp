#include "log/interval_recording.h"

namespace wavetrace::log {
namespace {

constexpr int kCheckMs = 100;
constexpr int kIdleMs = 200;

enum class Wait { kElapsed, kInterrupted, kEnd };

bool Sampling(const core::AppState& state) {
  return state.RecordFlag && state.PortOpen;
}

// Waits until span milliseconds have passed since start (in wrapping
// arithmetic), giving up when RECORD goes off or the port closes.
Wait WaitFrom(const core::AppState& state, IntervalClock& clock, uint32_t start, uint32_t span) {
  while (static_cast<uint32_t>(clock.Ticks() - start) < span) {
    if (!Sampling(state)) return Wait::kInterrupted;
    if (!clock.Sleep(kCheckMs)) return Wait::kEnd;
  }
  return Wait::kElapsed;
}

// One run of windows while sampling lasts; false when the thread must end.
bool SampleWindows(core::AppState& state, IntervalClock& clock) {
  const auto settings = state.PublishedLog.Load();
  if (settings->RecordALL != 0) return true;
  uint32_t interval = static_cast<uint32_t>(settings->RecordInterval) * 1000;
  uint32_t duration = static_cast<uint32_t>(settings->RecordDuration) * 1000;
  uint32_t start = clock.Ticks();
  while (Sampling(state)) {
    state.LogOpen = false;
    if (WaitFrom(state, clock, start, interval) == Wait::kEnd) return false;
    // The next interval counts from this opening.
    start = clock.Ticks();
    if (Sampling(state)) state.LogOpen = true;
    Wait wait = WaitFrom(state, clock, clock.Ticks(), duration);
    state.LogOpen = false;
    if (wait == Wait::kEnd) return false;
  }
  return true;
}

}  // namespace

void LogIntervalThread(core::AppState& state, IntervalClock& clock) {
  while (!state.ShuttingDown) {
    if (!SampleWindows(state, clock)) return;
    if (state.ShuttingDown || !clock.Sleep(kIdleMs)) return;
  }
}

}  // namespace wavetrace::log
