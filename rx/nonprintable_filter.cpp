#include "rx/nonprintable_filter.h"

#include "core/allocation.h"

namespace wavetrace::rx {

uint32_t FilterNonPrintable(core::BlockAllocator& memory, core::DataBlock& block) {
  core::CharBuffer kept;
  if (memory.Alloc(kept, block.Length) != 0) return block.Length;
  const uint8_t* in = block.Buffer.Data();
  uint8_t* out = kept.Data();
  uint32_t count = 0;
  for (uint32_t i = 0; i < block.Length; ++i) {
    const uint8_t byte = in[i];
    out[count] = byte;
    // Branch-free: the byte is always written, the cursor moves only for
    // printable ones.
    count += static_cast<uint32_t>(byte >= 32 && byte < 127);
  }
  // The cursor's last write may have left a dropped byte behind the end.
  out[count] = 0;
  memory.Free(block.Buffer);
  block.Buffer = std::move(kept);
  block.Length = count;
  return count;
}

}  // namespace wavetrace::rx
