#pragma once

#include <cstdint>

#include "core/allocation.h"
#include "core/buffer.h"

namespace wavetrace::rx {

// Keeps only the bytes 32..126 of the block, in order; CR, LF and TAB go too.
// Returns the new length (also stored in the block). When the new buffer
// cannot be had, the block is left as it is and its old length returned.
uint32_t FilterNonPrintable(core::BlockAllocator& memory, core::DataBlock& block);

}  // namespace wavetrace::rx
