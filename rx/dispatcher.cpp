#include "rx/dispatcher.h"

#include "core/allocation.h"
#include "core/code_page.h"
#include "rx/receive_window.h"

namespace wavetrace::rx {

int DispatchReceivedData(core::AppState& state, const core::RxSettings& settings, const uint8_t* block,
                         uint32_t n) {
  if (n == 0) return 1;
  core::WideBuffer wide;
  if (core::AllocWideBuffer(state, wide, int64_t{n} + 2) != 0) return 1;
  for (uint32_t i = 0; i < n; ++i) wide[i] = core::ByteToWide(block[i]);
  // The log first, the window second, then the window relay and the
  // network relay. A display stream, when one is installed,
  // takes the window's turn with every byte in order; paused, it shows nothing.
  if (state.LogRecords) state.LogRecords->ReceivedData(block, n);
  if (state.RxDisplay) {
    if (!settings.PauseRxDisplay) state.RxDisplay->TakeBlock(block, n);
  } else {
    AppendToRxWindowBuf(state, settings, wide.Data());
  }
  if (state.WindowRelay) state.WindowRelay->TakeBlock(block, n);
  if (state.NetworkRelay) state.NetworkRelay->TakeBlock(block, n);
  core::FreeBuffer(state, wide);
  return 0;
}

}  // namespace wavetrace::rx
