#pragma once

#include <array>
#include <cstdint>

#include "core/app_state.h"
#include "platform/clock.h"

namespace wavetrace::rx {

// DateFormat: 1 "dd/mm/yyyy", 2 "mm/dd/yyyy", 3 "yyyy/mm/dd", 4 none.
// TimeFormat: 5 "hh:mm", 6 "hh:mm:ss", 7 none, 8 "hh:mm:ss.mmm". Any other value gives an
// empty part. The Delimiter goes between date and time only when both exist.
// The result is zero-filled and at most 31 bytes long.
void FormatTimeStamp(const core::LogSettings& log, const platform::LocalTime& time,
                     std::array<uint8_t, core::LogSettings::kTimeStampBytes>& stamp);

// Moves the current stamp to the previous one and builds a new current stamp
// from the local time, under the receive-data lock, so a reader holding the
// lock always sees a consistent pair.
void BuildTimeStamp(core::AppState& state);
// The same for a given time (the clock is read by the overload above).
void BuildTimeStamp(core::AppState& state, const platform::LocalTime& now);

}  // namespace wavetrace::rx
