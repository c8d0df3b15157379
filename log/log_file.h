#pragma once

#include <cstdint>

#include "core/app_state.h"
#include "platform/system_error.h"

namespace wavetrace::log {

// The log file of AppState, under the receive-data lock: opened at RECORD on,
// written by the flushes, closed at RECORD off.

// Opens folder + name at its end (truncated when LOGoverwrite is 1), closing
// a file that is open, and stores its size. 0 on success; 1 on failure, with
// the failing call in failure.
int OpenLogFile(core::AppState& state, platform::SysResult& failure);
int OpenLogFile(core::AppState& state);
// Writes n bytes to the open file and stores its size. 0, or 1 after a
// failed write: "Error writing to LogFile: " and the path are reported once
// for a run of failures, and again only after a write has succeeded.
int WriteLogFile(core::AppState& state, const uint8_t* bytes, uint32_t n);
// Closes the file if open and returns its size.
uint64_t CloseLogFile(core::AppState& state);

}  // namespace wavetrace::log
