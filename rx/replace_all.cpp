#include "rx/replace_all.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "rx/byte_search.h"
#include "rx/search_replace.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {
namespace {

// The block as built so far: appends only, grown by doubling.
class Output {
 public:
  explicit Output(int64_t capacity) { Reserve(capacity); }

  [[nodiscard]] int64_t Size() const { return size_; }
  [[nodiscard]] const uint8_t* Data() const { return data_.get(); }
  void Push(uint8_t byte) {
    if (size_ == capacity_) Reserve(capacity_ * 2);
    data_[size_++] = byte;
  }
  void Append(const uint8_t* bytes, int64_t count) {
    if (size_ + count > capacity_) Reserve(std::max(capacity_ * 2, size_ + count));
    std::memcpy(data_.get() + size_, bytes, static_cast<size_t>(count));
    size_ += count;
  }

 private:
  void Reserve(int64_t capacity) {
    capacity = std::max<int64_t>(capacity, 64);
    auto bigger = std::make_unique_for_overwrite<uint8_t[]>(static_cast<size_t>(capacity));
    if (size_ > 0) std::memcpy(bigger.get(), data_.get(), static_cast<size_t>(size_));
    data_ = std::move(bigger);
    capacity_ = capacity;
  }

  std::unique_ptr<uint8_t[]> data_;
  int64_t size_ = 0;
  int64_t capacity_ = 0;
};

// The part of the block not yet searched: a few bytes of the last replacement
// (kept reversed, so taking from and giving back to the front is cheap),
// followed by the untouched rest of the original block.
class Pending {
 public:
  Pending(const uint8_t* source, int64_t sourceLength, int64_t start)
      : source_(source), sourceLength_(sourceLength), next_(start) {}

  [[nodiscard]] int64_t Size() const { return static_cast<int64_t>(carry_.size()) + sourceLength_ - next_; }
  [[nodiscard]] int64_t CarrySize() const { return static_cast<int64_t>(carry_.size()); }
  [[nodiscard]] uint8_t At(int64_t i) const {
    const auto carry = CarrySize();
    return i < carry ? carry_[static_cast<size_t>(carry - 1 - i)] : source_[next_ + i - carry];
  }

  void MoveTo(Output& out, int64_t count) {
    for (; count > 0 && !carry_.empty(); --count) {
      out.Push(carry_.back());
      carry_.pop_back();
    }
    out.Append(source_ + next_, count);
    next_ += count;
  }
  void Drop(int64_t count) {
    for (; count > 0 && !carry_.empty(); --count) carry_.pop_back();
    next_ += count;
  }
  void PushFront(const uint8_t* bytes, int64_t count) {
    for (int64_t k = count - 1; k >= 0; --k) carry_.push_back(bytes[k]);
  }

  // The lowest match at or after the front, as an index into the pending
  // bytes, or -1. Matches that start in the carry are checked byte by byte;
  // the rest is a plain search of the original block.
  [[nodiscard]] int64_t Find(const uint8_t* pattern, int64_t length) const {
    const int64_t size = Size();
    const int64_t carry = CarrySize();
    for (int64_t j = 0; j < carry && j + length <= size; ++j) {
      int64_t k = 0;
      while (k < length && At(j + k) == pattern[k]) ++k;
      if (k == length) return j;
    }
    const int64_t hit = FindBytes(source_, sourceLength_, pattern, length, next_, true);
    return hit < 0 ? -1 : carry + hit - next_;
  }

  // Appends everything still pending to out.
  void Drain(Output& out) { MoveTo(out, Size()); }

 private:
  std::vector<uint8_t> carry_;
  const uint8_t* source_;
  int64_t sourceLength_;
  int64_t next_;
};

enum class StepKind { None, Grow, Shrink, Same };

StepKind KindOf(int64_t searchLength, int64_t replaceLength) {
  if (replaceLength > searchLength) return StepKind::Grow;
  return replaceLength < searchLength ? StepKind::Shrink : StepKind::Same;
}

bool HasZero(const uint8_t* bytes, int64_t count) {
  return std::memchr(bytes, 0, static_cast<size_t>(count)) != nullptr;
}

// Zero bytes only at the end: then a growing step's piecewise copy equals a
// plain insertion (the zero fill of the new block restores the cut-off end).
bool ZerosOnlyAtEnd(const uint8_t* data, int64_t length) {
  const void* zero = std::memchr(data, 0, static_cast<size_t>(length));
  if (!zero) return true;
  const auto* z = static_cast<const uint8_t*>(zero);
  return std::all_of(z, data + length, [](uint8_t b) { return b == 0; });
}

}  // namespace

PassResult ReplaceAllPass(core::BlockAllocator& memory, core::DataBlock& block, const core::SnRRule& rule,
                          RuleReplacement& replacement, int64_t start) {
  const int64_t searchLength = std::clamp<int64_t>(rule.SearchLength, 0, core::SnRRule::kBytes);
  const uint8_t* pattern = rule.SearchBytes.data();
  const int64_t startLength = block.Length;
  uint8_t* data = block.Buffer.Data();

  const int64_t first = FindBytes(data, startLength, pattern, searchLength, start, true);
  if (first < 0) return {};

  bool plainInsertions = ZerosOnlyAtEnd(data, startLength) && !HasZero(pattern, searchLength);
  Output out(startLength + 64);
  out.Append(data, first);
  Pending pending(data, startLength, first);

  StepKind kind = StepKind::None;
  int64_t length = startLength;
  uint8_t staleByte = 0;
  // A plain rule's replacement is the same at every match; a stamped one is
  // built afresh at each.
  const bool stamped = replacement.Stamped();
  const uint8_t* bytes = replacement.Bytes();
  int64_t replaceLength = std::clamp<int64_t>(replacement.Length(), 0, core::SnRRule::kBytes);
  bool replacementHasZero = HasZero(bytes, replaceLength);
  PassResult result;
  // j is the match's place in the pending bytes; the first match found above
  // is at their front.
  for (int64_t j = 0; j >= 0; j = pending.Find(pattern, searchLength)) {
    const int64_t p = out.Size() + j;
    if (stamped) {
      replacement.NextMatch();
      replaceLength = std::clamp<int64_t>(replacement.Length(), 0, core::SnRRule::kBytes);
      replacementHasZero = HasZero(bytes, replaceLength);
    }
    const StepKind stepKind = KindOf(searchLength, replaceLength);
    if ((kind != StepKind::None && stepKind != kind) ||
        (stepKind == StepKind::Grow && (!plainInsertions || replacementHasZero))) {
      pending.MoveTo(out, j);
      result = {PassOutcome::Interrupted, p};
      break;
    }
    if (stepKind == StepKind::Grow && length + (replaceLength - searchLength) > kMaxReplaceBlockBytes) {
      result = {PassOutcome::Stopped, -1};
      break;
    }
    kind = stepKind;
    if (kind == StepKind::Shrink) {
      // The single step leaves the byte at the new length as it was before
      // the step; remember it for the end.
      staleByte = pending.At(j + (length - (searchLength - replaceLength)) - p);
    }
    pending.MoveTo(out, j);
    pending.Drop(searchLength);
    length += replaceLength - searchLength;
    plainInsertions = plainInsertions && !replacementHasZero;
    // The next search starts one byte after this match's start.
    if (replaceLength > 0) {
      out.Push(bytes[0]);
      pending.PushFront(bytes + 1, replaceLength - 1);
    } else if (pending.Size() > 0) {
      pending.MoveTo(out, 1);
    } else {
      break;
    }
  }
  pending.Drain(out);

  // Bring the block up to date as the single steps would have left it.
  if (kind == StepKind::Grow) {
    core::CharBuffer grown;
    if (memory.Alloc(grown, length) != 0) return {PassOutcome::Stopped, -1};
    std::memcpy(grown.Data(), out.Data(), static_cast<size_t>(out.Size()));
    memory.Free(block.Buffer);
    block.Buffer = std::move(grown);
  } else if (kind != StepKind::None) {
    std::memcpy(data, out.Data(), static_cast<size_t>(out.Size()));
    if (kind == StepKind::Shrink) {
      data[length] = staleByte;
      std::memset(data + length + 1, 0, static_cast<size_t>(startLength - length));
    }
  }
  block.Length = static_cast<uint32_t>(length);
  return result;
}

}  // namespace wavetrace::rx
