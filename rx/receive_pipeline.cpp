#include "rx/receive_pipeline.h"

#include <algorithm>

#include "rx/line_end_swap.h"
#include "rx/nonprintable_filter.h"
#include "rx/postamble.h"
#include "rx/radix_view.h"
#include "rx/search_replace.h"

namespace wavetrace::rx {

uint32_t ProcessReceivedData(const core::RxSettings& settings, core::BlockAllocator& memory,
                             StampSource& stamps, core::DataBlock& block) {
  // A length beyond the buffer would let every stage read past it.
  block.Length = static_cast<uint32_t>(std::min<size_t>(block.Length, block.Buffer.Size()));
  if (block.Length == 0) return 0;

  if (settings.FilterNP == 1) FilterNonPrintable(memory, block);
  if (settings.DisableSnR != 1 && settings.SnR_count != 0) {
    if (!SearchAndReplace(settings, memory, stamps, block)) return block.Length;
  }
  if (settings.modeBINARY) ConvertToRadix(settings, memory, block);
  if (settings.PostambleLengthRX != 0) {
    if (!AppendPostamble(settings, memory, block)) return block.Length;
  }
  if (settings.modeASCII) SwapLfCr(block.Buffer.Data(), block.Length);
  return block.Length;
}

uint32_t ProcessReceivedData(core::AppState& state, const core::RxSettings& settings,
                             core::DataBlock& block) {
  core::SharedAllocator memory(state);
  SharedStampSource stamps(state);
  return ProcessReceivedData(settings, memory, stamps, block);
}

}  // namespace wavetrace::rx
