#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/app_state.h"
#include "core/published_settings.h"
#include "platform/clock.h"

namespace wavetrace::rx {

// The order of a date's parts; a date of kNone is empty.
enum class DateOrder { kDayFirst, kMonthFirst, kYearFirst, kNone };
// "%02d/%02d/%d" of day, month, year (kDayFirst), month, day, year
// (kMonthFirst), or "%d/%02d/%02d" of year, month, day (kYearFirst), with
// separator in place of "/". Stamps and log file names share it.
std::string FormatDate(DateOrder order, const platform::LocalTime& time, char separator);

// DateFormat: 1 "dd/mm/yyyy", 2 "mm/dd/yyyy", 3 "yyyy/mm/dd", 4 none.
// TimeFormat: 5 "hh:mm", 6 "hh:mm:ss", 7 none, 8 "hh:mm:ss.mmm". Any other value gives an
// empty part. The Delimiter goes between date and time only when both exist.
// The result is zero-filled and at most 31 bytes long.
void FormatTimeStamp(const core::TimeStampFormat& format, const platform::LocalTime& time,
                     std::array<uint8_t, core::LogSettings::kTimeStampBytes>& stamp);

// Moves the current stamp to the previous one and builds a new current stamp
// from the local time, under the receive-data lock, so a reader holding the
// lock always sees a consistent pair.
void BuildTimeStamp(core::AppState& state, const core::TimeStampFormat& format);
// The same for a given time (the clock is read by the overload above).
void BuildTimeStamp(core::AppState& state, const core::TimeStampFormat& format,
                    const platform::LocalTime& now);

// Where a stage takes the stamps it inserts: each call builds the next stamp.
class StampSource {
 public:
  virtual ~StampSource() = default;
  virtual std::string NextStamp(const core::TimeStampFormat& format) = 0;
};

// The program's stamps: BuildTimeStamp on the one state, so the stamp a rule
// inserts is the current stamp the log sees.
class SharedStampSource final : public StampSource {
 public:
  explicit SharedStampSource(core::AppState& state) : state_(state) {}
  std::string NextStamp(const core::TimeStampFormat& format) override;

 private:
  core::AppState& state_;
};

}  // namespace wavetrace::rx
