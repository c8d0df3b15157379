#include "rx/search_replace.h"

#include <algorithm>
#include <cstring>

#include "rx/bounded_copy.h"
#include "rx/byte_search.h"
#include "rx/replace_all.h"
#include "rx/replace_rules.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {
namespace {

// A rule that replaces one match (first or last occurring).
bool ApplySingle(core::BlockAllocator& memory, core::DataBlock& block, const core::SnRRule& rule,
                 RuleReplacement& replacement) {
  const bool forward = rule.Rfo == 1;
  const int64_t p = FindBytes(block.Buffer.Data(), block.Length, rule.SearchBytes.data(),
                              std::clamp<int64_t>(rule.SearchLength, 0, core::SnRRule::kBytes), 0, forward);
  if (p < 0) return true;
  replacement.NextMatch();
  int64_t work = 0;
  return ReplaceAt(memory, block, p, rule, replacement, work);
}

bool ApplyAll(core::BlockAllocator& memory, core::DataBlock& block, const core::SnRRule& rule,
              RuleReplacement& replacement) {
  int64_t start = 0;
  int64_t work = 0;
  for (;;) {
    const PassResult pass = ReplaceAllPass(memory, block, rule, replacement, start);
    if (pass.Outcome == PassOutcome::Finished) return true;
    if (pass.Outcome == PassOutcome::Stopped) return false;
    if (!ReplaceAt(memory, block, pass.InterruptedAt, rule, replacement, work)) return false;
    start = pass.InterruptedAt + 1;
  }
}

}  // namespace

bool ReplaceAt(core::BlockAllocator& memory, core::DataBlock& block, int64_t p, const core::SnRRule& rule,
               const RuleReplacement& replacement, int64_t& work) {
  const int64_t searchLength = std::clamp<int64_t>(rule.SearchLength, 0, core::SnRRule::kBytes);
  const int64_t replaceLength = std::clamp<int64_t>(replacement.Length(), 0, core::SnRRule::kBytes);
  const int64_t length = block.Length;
  const uint8_t* bytes = replacement.Bytes();

  if (replaceLength > searchLength) {
    const int64_t grown = length + (replaceLength - searchLength);
    work += grown;
    if (grown > kMaxReplaceBlockBytes || work > kMaxReplaceWorkBytes) return false;
    core::CharBuffer next;
    if (memory.Alloc(next, grown) != 0) return false;
    const uint8_t* old = block.Buffer.Data();
    uint8_t* cursor = AppendUntilZero(next.Data(), old, static_cast<size_t>(p));
    cursor = AppendUntilZero(cursor, bytes, static_cast<size_t>(replaceLength));
    AppendUntilZero(cursor, old + p + searchLength, static_cast<size_t>(length - p - searchLength));
    memory.Free(block.Buffer);
    block.Buffer = std::move(next);
    block.Length = static_cast<uint32_t>(grown);
    return true;
  }

  const int64_t tail = length - p - searchLength;
  work += replaceLength + tail;
  if (work > kMaxReplaceWorkBytes) return false;
  uint8_t* data = block.Buffer.Data();
  std::memcpy(data + p, bytes, static_cast<size_t>(replaceLength));
  if (replaceLength != searchLength) {
    std::memmove(data + p + replaceLength, data + p + searchLength, static_cast<size_t>(tail));
    // Zeroing starts one past the old end (every block has two spare bytes)
    // and so leaves the byte at the new end with its old value. Nothing reads
    // past the length; the block is kept exactly as this step has always
    // left it.
    const int64_t difference = searchLength - replaceLength;
    for (int64_t k = 0; k < difference; ++k) data[length - k] = 0;
    block.Length = static_cast<uint32_t>(length - difference);
  }
  return true;
}

bool SearchAndReplace(const core::RxSettings& settings, core::BlockAllocator& memory, StampSource& stamps,
                      core::DataBlock& block) {
  const int32_t count = core::ActiveRuleCount(settings.SnR_count);
  for (int32_t i = 1; i <= count; ++i) {
    const core::SnRRule& rule = settings.SnR[i];
    RuleReplacement replacement(rule, settings.Stamp, stamps);
    const bool ok = rule.Rall == 1 ? ApplyAll(memory, block, rule, replacement)
                                   : ApplySingle(memory, block, rule, replacement);
    if (!ok) return false;
  }
  return true;
}

}  // namespace wavetrace::rx
