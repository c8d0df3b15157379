#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::rx {

// Hands one processed block on: to the log, as wide text to the receive
// window, then to the relays. 0 on success; 1 when n is 0 or the wide copy
// could not be had (then the block is neither shown nor logged).
int DispatchReceivedData(core::AppState& state, const uint8_t* block, uint32_t n);

}  // namespace wavetrace::rx
