#include "platform/clock.h"

#include <time.h>

#include <chrono>
#include <thread>

namespace wavetrace::platform {

uint32_t TickCount() {
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<uint32_t>(static_cast<uint64_t>(ts.tv_sec) * 1000u +
                               static_cast<uint64_t>(ts.tv_nsec) / 1000000u);
}

LocalTime GetLocalTime() {
  timespec ts{};
  clock_gettime(CLOCK_REALTIME, &ts);
  tm parts{};
  localtime_r(&ts.tv_sec, &parts);
  return LocalTime{
      parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_wday, parts.tm_mday,
      parts.tm_hour,        parts.tm_min,     parts.tm_sec,  static_cast<int>(ts.tv_nsec / 1000000)};
}

void SleepMs(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace wavetrace::platform
