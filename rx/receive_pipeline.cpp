#include "rx/receive_pipeline.h"

#include <algorithm>

#include "rx/line_end_swap.h"
#include "rx/nonprintable_filter.h"
#include "rx/postamble.h"
#include "rx/radix_view.h"
#include "rx/search_replace.h"

namespace wavetrace::rx {

uint32_t ProcessReceivedData(core::AppState& state, core::DataBlock& block) {
  // A length beyond the buffer would let every stage read past it.
  block.Length = static_cast<uint32_t>(std::min<size_t>(block.Length, block.Buffer.Size()));
  if (block.Length == 0) return 0;
  const core::DataSettings& data = state.Data;

  if (data.FilterNP == 1) FilterNonPrintable(state, block);
  if (data.DisableSnR != 1 && data.SnR_count != 0) {
    if (!SearchAndReplace(state, block)) return block.Length;
  }
  if (data.modeBINARY) ConvertToRadix(state, block);
  if (data.PostambleLengthRX != 0) {
    if (!AppendPostamble(state, block)) return block.Length;
  }
  if (data.modeASCII) SwapLfCr(block.Buffer.Data(), block.Length);
  return block.Length;
}

}  // namespace wavetrace::rx
