#pragma once

#include <cstdint>

#include "core/allocation.h"
#include "core/app_state.h"
#include "core/buffer.h"
#include "core/published_settings.h"
#include "rx/time_stamp.h"

namespace wavetrace::rx {

// Runs the receive stages over one block, in this order, each on the output
// of the one before:
//   1. FilterNonPrintable    when FilterNP is 1;
//   2. search and replace    when DisableSnR is not 1 and SnR_count is not 0;
//   3. ConvertToRadix        when modeBINARY is set;
//   4. the receive postamble when PostambleLengthRX is not 0;
//   5. LF CR to CR LF        when modeASCII is set.
// When stage 2 or 4 cannot grow the block, the pipeline ends there with the
// block as it stands. Returns the new length (also in block.Length); a block
// of length 0 is returned at once. The whole block is processed under the
// one settings record given.
uint32_t ProcessReceivedData(const core::RxSettings& settings, core::BlockAllocator& memory,
                             StampSource& stamps, core::DataBlock& block);

// The same with the program's allocation routines and stamps.
uint32_t ProcessReceivedData(core::AppState& state, const core::RxSettings& settings, core::DataBlock& block);

}  // namespace wavetrace::rx
