#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::core {

// No single shared buffer may be larger than this; a larger request fails the
// same way as an exhausted heap (a runaway length must not take the machine).
inline constexpr int64_t kMaxAllocationBytes = int64_t{256} << 20;

// The shared allocation routines. Each holds the memory lock for its whole
// work, zero-fills the block and stores it in the slot (replacing what was
// there). They return 0 on success, 1 on failure; a failure leaves the slot
// empty and writes two error blocks into the receive window.
int AllocCharBuffer(AppState& state, CharBuffer& slot, int64_t count);
// count is in wide characters (twice as many bytes).
int AllocWideBuffer(AppState& state, WideBuffer& slot, int64_t count);
void FreeBuffer(AppState& state, CharBuffer& slot);
void FreeBuffer(AppState& state, WideBuffer& slot);

// The shared allocation routines as a stage that works on blocks sees them:
// it needs buffers, not the whole state.
class BlockAllocator {
 public:
  virtual ~BlockAllocator() = default;
  // As AllocCharBuffer: 0 on success, 1 on failure (reported).
  virtual int Alloc(CharBuffer& slot, int64_t count) = 0;
  virtual void Free(CharBuffer& slot) = 0;
};

// The routines above, under the memory lock of the one state.
class SharedAllocator final : public BlockAllocator {
 public:
  explicit SharedAllocator(AppState& state) : state_(state) {}
  int Alloc(CharBuffer& slot, int64_t count) override { return AllocCharBuffer(state_, slot, count); }
  void Free(CharBuffer& slot) override { FreeBuffer(state_, slot); }

 private:
  AppState& state_;
};

}  // namespace wavetrace::core
