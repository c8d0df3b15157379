#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace wavetrace::log {

// The size of the log file in words: below 10000 bytes "[<label>: %.0f
// Bytes]", below 1000000 "%.2f KB" of size / 1000, else "%.2f MB" of
// size / 1000000 (decimal units, deliberately).
std::u16string SizeText(std::u16string_view label, uint64_t size);

// RECORD (6004): switches recording on or off and says so on the status line.
void ToggleRecord(core::AppState& state);
// Opens the log file and starts recording; false when it cannot be opened
// (reported, RECORD stays off).
bool RecordOn(core::AppState& state);
// Writes what the cache holds, closes the file and stops recording.
void RecordOff(core::AppState& state);

}  // namespace wavetrace::log
