#pragma once

#include <cstdint>

namespace wavetrace::platform {

// Milliseconds of a monotonic clock, wrapping at 2^32 like a tick count.
uint32_t TickCount();

struct LocalTime {
  int Year = 0;
  int Month = 0;      // 1..12
  int DayOfWeek = 0;  // 0 = Sunday
  int Day = 0;
  int Hour = 0;
  int Minute = 0;
  int Second = 0;
  int Milliseconds = 0;
};
LocalTime GetLocalTime();

void SleepMs(int ms);

}  // namespace wavetrace::platform
