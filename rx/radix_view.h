#pragma once

#include <cstdint>

#include "core/allocation.h"
#include "core/buffer.h"
#include "core/published_settings.h"

namespace wavetrace::rx {

// Output bytes per input byte in the worst case: 10 for radix 2 ("[" eight
// digits "]"), 5 for 8 and 10, 4 for hex. The new block is sized from this in
// one allocation.
int32_t RadixBytesPerByte(int32_t radix);

// Renders the block as numbers in the view's radix (EffectiveBase): upper-case
// digits padded to 8 (radix 2), 3 (8, 10) or 2 (16) places, each in "[" "]"
// unless BinBrackets is non-zero. With NonChars 1 the bytes '!'..'~' pass as
// they are (the blank is converted). Returns the new length (also stored in
// the block); when the buffer cannot be had the block stays as it is.
uint32_t ConvertToRadix(const core::RxSettings& settings, core::BlockAllocator& memory,
                        core::DataBlock& block);

}  // namespace wavetrace::rx
