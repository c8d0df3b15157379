#pragma once

#include <cstdint>

namespace wavetrace::rx {

// Turns every LF CR pair into CR LF, in place, scanning forward and going on
// one byte after each hit (so LF LF CR becomes LF CR LF). The length does not
// change.
void SwapLfCr(uint8_t* data, uint32_t length);

}  // namespace wavetrace::rx
