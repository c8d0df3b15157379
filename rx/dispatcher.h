#pragma once

#include <cstdint>

#include "core/app_state.h"
#include "core/published_settings.h"

namespace wavetrace::rx {

// Hands one processed block on: to the log, as wide text to the receive
// window (or, when a display stream is installed, as bytes to it), then to
// the relays. 0 on success; 1 when n is 0 or the wide copy could not be had
// (then the block is neither shown nor logged). settings are the ones the
// block was processed under.
int DispatchReceivedData(core::AppState& state, const core::RxSettings& settings, const uint8_t* block,
                         uint32_t n);

}  // namespace wavetrace::rx
