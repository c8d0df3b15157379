#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::log {

// The clock and the pauses of the interval recorder; tests drive it by hand.
class IntervalClock {
 public:
  virtual ~IntervalClock() = default;
  // Milliseconds, wrapping at 2^32.
  virtual uint32_t Ticks() = 0;
  // Pauses; false when the thread is asked to end.
  virtual bool Sleep(int ms) = 0;
};

// Interval recording: while RECORD is on with RecordALL 0 and a port is open,
// opens the log to received data every RecordInterval seconds for
// RecordDuration seconds (each interval counted from the opening of the
// window before), checking every 100 ms whether RECORD went off or the port
// closed. Interval and duration are read when sampling starts. Returns when
// the program shuts down or the clock says to end.
void LogIntervalThread(core::AppState& state, IntervalClock& clock);

}  // namespace wavetrace::log
