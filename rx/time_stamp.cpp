#include "rx/time_stamp.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

namespace wavetrace::rx {
namespace {

using Stamp = std::array<uint8_t, core::LogSettings::kTimeStampBytes>;

// The stamp's date: 1 to 3 name an order, any other value none.
DateOrder StampDateOrder(int32_t format) {
  static constexpr DateOrder kOrders[] = {DateOrder::kDayFirst, DateOrder::kMonthFirst, DateOrder::kYearFirst};
  return format >= 1 && format <= 3 ? kOrders[format - 1] : DateOrder::kNone;
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

std::string FormatDate(DateOrder order, const platform::LocalTime& t, char separator) {
  char out[32] = {};
  switch (order) {
    case DateOrder::kDayFirst:
      std::snprintf(out, sizeof out, "%02d%c%02d%c%d", t.Day, separator, t.Month, separator, t.Year);
      break;
    case DateOrder::kMonthFirst:
      std::snprintf(out, sizeof out, "%02d%c%02d%c%d", t.Month, separator, t.Day, separator, t.Year);
      break;
    case DateOrder::kYearFirst:
      std::snprintf(out, sizeof out, "%d%c%02d%c%02d", t.Year, separator, t.Month, separator, t.Day);
      break;
    case DateOrder::kNone:
      break;
  }
  return out;
}

void FormatTimeStamp(const core::TimeStampFormat& format, const platform::LocalTime& time, Stamp& stamp) {
  std::string date = FormatDate(StampDateOrder(format.DateFormat), time, '/');
  char clock[32];
  FormatTime(format.TimeFormat, time, clock);
  char separator[2] = {0, 0};
  if (format.DateFormat != 4 && format.TimeFormat != 7) separator[0] = static_cast<char>(format.Delimiter);
  stamp.fill(0);
  std::snprintf(reinterpret_cast<char*>(stamp.data()), stamp.size(), "%s%s%s", date.c_str(), separator, clock);
}

void BuildTimeStamp(core::AppState& state, const core::TimeStampFormat& format,
                    const platform::LocalTime& now) {
  std::lock_guard lock(state.RxDataLock);
  core::LogSettings& log = state.Log;
  log.PreviousTimeStamp = log.CurrentTimeStamp;
  FormatTimeStamp(format, now, log.CurrentTimeStamp);
}

void BuildTimeStamp(core::AppState& state, const core::TimeStampFormat& format) {
  std::lock_guard lock(state.RxDataLock);
  BuildTimeStamp(state, format, platform::GetLocalTime());
}

std::string SharedStampSource::NextStamp(const core::TimeStampFormat& format) {
  std::lock_guard lock(state_.RxDataLock);
  BuildTimeStamp(state_, format);
  const auto& current = state_.Log.CurrentTimeStamp;
  return std::string(current.begin(), std::find(current.begin(), current.end(), uint8_t{0}));
}

}  // namespace wavetrace::rx
