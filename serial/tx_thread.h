#pragma once

#include <cstdint>
#include <string>

#include "core/app_state.h"
#include "core/buffer.h"
#include "platform/suspendable_thread.h"

namespace wavetrace::serial {

inline constexpr int kWriteSkipped = 99;  // WriteToPort: no send under way

// Sends the transmit field's text once: 0 sent (or nothing to send), 1
// failed; for "[File::name]" the file transmission's result. The whole send
// uses the one settings record given.
int SendTransmitText(core::AppState& state, const core::TxSettings& settings);
// The transmit-side processing of the text in the block: clears the receive
// window when asked, appends the transmit postamble, parses the escapes in
// the Base radix. Returns the byte count to send.
uint32_t PrepareTxData(core::AppState& state, const core::TxSettings& settings, core::DataBlock& block,
                       uint32_t length);
// 0 written, 1 the write failed (reported), 99 no send under way. Nothing is
// written while the PLAY flag is clear.
int WriteToPort(core::AppState& state, const uint8_t* bytes, uint32_t count);
// The total write time-out of count bytes at the port's line speed.
int WriteTimeoutMs(const core::AppState& state, uint32_t count);
// After a successful send: the sent text on the status line (once per run)
// and in the history drop-down, which keeps three. With reset set, only the
// count of added entries starts over.
void AddSentHistory(core::AppState& state, bool reset, const std::string& sentBytes = {});

// The pause after each send of a repeat run: whole 100 ms steps for delays of
// 100 ms and more (the rest dropped), else one sleep.
struct RepeatPause {
  int Steps = 0;  // 100 ms steps
  int SingleSleepMs = 0;
};
RepeatPause RepeatPauseOf(uint32_t delayMs);

// The transmit thread: one send (or a repeat run) per SEND, then it parks;
// it ends only at shutdown.
void TxThread(core::AppState& state, platform::SuspendableThread& self);

}  // namespace wavetrace::serial
