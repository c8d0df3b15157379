#include "rx/time_stamp.h"

#include <cstdio>
#include <mutex>

namespace wavetrace::rx {
namespace {

using Stamp = std::array<uint8_t, core::LogSettings::kTimeStampBytes>;

void FormatDate(int32_t format, const platform::LocalTime& t, char (&out)[32]) {
  switch (format) {
    case 1:
      std::snprintf(out, sizeof out, "%02d/%02d/%d", t.Day, t.Month, t.Year);
      break;
    case 2:
      std::snprintf(out, sizeof out, "%02d/%02d/%d", t.Month, t.Day, t.Year);
      break;
    case 3:
      std::snprintf(out, sizeof out, "%d/%02d/%02d", t.Year, t.Month, t.Day);
      break;
    default:
      out[0] = 0;
      break;
  }
}

void FormatTime(int32_t format, const platform::LocalTime& t, char (&out)[32]) {
  switch (format) {
    case 5:
      std::snprintf(out, sizeof out, "%02d:%02d", t.Hour, t.Minute);
      break;
    case 6:
      std::snprintf(out, sizeof out, "%02d:%02d:%02d", t.Hour, t.Minute, t.Second);
      break;
    case 8:  // milliseconds, for fast lines
      std::snprintf(out, sizeof out, "%02d:%02d:%02d.%03d", t.Hour, t.Minute, t.Second, t.Milliseconds);
      break;
    default:
      out[0] = 0;
      break;
  }
}

}  // namespace

void FormatTimeStamp(const core::LogSettings& log, const platform::LocalTime& time, Stamp& stamp) {
  char date[32];
  char clock[32];
  FormatDate(log.DateFormat, time, date);
  FormatTime(log.TimeFormat, time, clock);
  char separator[2] = {0, 0};
  if (log.DateFormat != 4 && log.TimeFormat != 7) separator[0] = static_cast<char>(log.Delimiter[0]);
  stamp.fill(0);
  std::snprintf(reinterpret_cast<char*>(stamp.data()), stamp.size(), "%s%s%s", date, separator, clock);
}

void BuildTimeStamp(core::AppState& state, const platform::LocalTime& now) {
  std::lock_guard lock(state.RxDataLock);
  core::LogSettings& log = state.Log;
  log.PreviousTimeStamp = log.CurrentTimeStamp;
  FormatTimeStamp(log, now, log.CurrentTimeStamp);
}

void BuildTimeStamp(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  BuildTimeStamp(state, platform::GetLocalTime());
}

}  // namespace wavetrace::rx
