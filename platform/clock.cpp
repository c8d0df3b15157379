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

bool FileTimeNow(uint64_t& fileTime) {
  timespec ts{};
  if (clock_gettime(CLOCK_REALTIME, &ts) != 0 || ts.tv_sec < 0) return false;
  constexpr uint64_t kSecondsFrom1601To1970 = 11644473600ull;
  fileTime = (static_cast<uint64_t>(ts.tv_sec) + kSecondsFrom1601To1970) * 10000000ull +
             static_cast<uint64_t>(ts.tv_nsec) / 100u;
  return true;
}

void SleepMs(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

}  // namespace wavetrace::platform
