#pragma once

#include <cstdint>

#include "core/app_state.h"
#include "core/buffer.h"
#include "platform/suspendable_thread.h"

namespace wavetrace::serial {

inline constexpr int32_t kReceiveBlockBytes = 8192;
inline constexpr int kIdleWaitMs = 50;

// Reads what the open port has queued into a fresh block: the count read,
// 0 when nothing was read (the PLAY flag clear, no memory, a read error:
// the slot is then empty).
uint32_t ReadInData(core::AppState& state, core::DataBlock& block);

// The receive thread: waits for port events, reads, processes and
// dispatches blocks; parks itself whenever the port closes or its device
// goes away, and tells the main window.
void RxThread(core::AppState& state, platform::SuspendableThread& self);

}  // namespace wavetrace::serial
