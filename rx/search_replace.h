#pragma once

#include <cstdint>

#include "core/allocation.h"
#include "core/buffer.h"
#include "core/published_settings.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {

// A "Replace all" rule whose replacement contains its own search text grows
// a block without end. No block grows past this size through the rules; the
// rule stops there and the block keeps what was built.
inline constexpr int64_t kMaxReplaceBlockBytes = int64_t{16} << 20;
// Bytes a rule may copy while replacing one match at a time in one block
// (the path for timestamped or zero-bearing rules); past it the rule stops
// as at the size bound, so a pathological rule cannot stall the receiver.
inline constexpr int64_t kMaxReplaceWorkBytes = int64_t{256} << 20;

// Stage 2: applies rules 1..SnR_count in order, each to the output of the one
// before. Returns false when a block could not grow (no buffer, or the size
// bound); the block then holds the rules applied so far and the pipeline ends.
bool SearchAndReplace(const core::RxSettings& settings, core::BlockAllocator& memory, StampSource& stamps,
                      core::DataBlock& block);

// One replacement at position p with the match's bytes, exactly as a
// single step of the rule: a longer replacement builds a new block from the
// pieces before, the replacement and after, each ending at its first zero
// byte; an equal or shorter one is written in place, the tail moved down and
// the `SearchLength - ReplaceLength` bytes from the old length downward zeroed
// (one past the old end first, so the byte at the new length keeps its old
// value). `work` collects the bytes copied. Returns false when the block could
// not grow or the work bound is passed; the block is then unchanged.
bool ReplaceAt(core::BlockAllocator& memory, core::DataBlock& block, int64_t p, const core::SnRRule& rule,
               const RuleReplacement& replacement, int64_t& work);

}  // namespace wavetrace::rx
