#pragma once

#include <cstdint>

#include "core/allocation.h"
#include "core/buffer.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {

enum class PassOutcome {
  Finished,     // no further match; the block holds the result
  Stopped,      // the size bound was reached or no buffer; the block holds what was built
  Interrupted,  // the match at InterruptedAt needs a single step (see below)
};

struct PassResult {
  PassOutcome Outcome = PassOutcome::Finished;
  int64_t InterruptedAt = -1;
};

// Runs a "Replace all" rule from position start in one pass over the block,
// with the same result, byte for byte (including what is left beyond the new
// length), as replacing one match at a time and searching again one byte
// after each match start. Replacing one at a time costs a copy of the block
// per match; this costs one copy in all.
//
// The pass hands a match back (Interrupted, block brought up to date, the
// replacement already moved on to that match) when a single step
// would not be a plain insertion: a growing step while the block or the rule
// holds zero bytes that would cut the copies short, or a step of a different
// kind (growing, shrinking, same length) than the pass's first step. The
// caller applies that match with ReplaceAt and starts a new pass after it.
PassResult ReplaceAllPass(core::BlockAllocator& memory, core::DataBlock& block, const core::SnRRule& rule,
                          RuleReplacement& replacement, int64_t start);

}  // namespace wavetrace::rx
