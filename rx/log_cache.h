#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::rx {

// The bytes waiting to be written to the log file, guarded by the
// receive-data lock.

// Frees an existing cache, sets the count to 0 and allocates 65535 bytes.
// 1 on failure, 0 on success.
int AllocLogCache(core::AppState& state);
void FreeLogCache(core::AppState& state);
// Appends n bytes: 0, or 1 when the cache would overflow; then the warning
// is shown and everything waiting is dropped, this block included.
int AppendToLogCache(core::AppState& state, const uint8_t* bytes, uint32_t n);
// Appends all n bytes, zero bytes included, at the count; the caller makes
// room first (what does not fit is cut).
void AppendWholeToLogCache(core::AppState& state, const uint8_t* bytes, uint32_t n);
// Zeroes the filled part and sets the count to 0.
void ClearLogCache(core::AppState& state);

}  // namespace wavetrace::rx
