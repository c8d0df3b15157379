#pragma once

#include <string>
#include <string_view>

#include "platform/serial_port.h"

namespace wavetrace::serial {

// What a receiver set to `receiver` reads when a sender set to `sender` sends
// these bytes back to back: the frames are laid out in time at the sender's
// rate and sampled at the receiver's, as a UART does (start-bit edge, mid-bit
// samples). A failed stop bit or parity check reads as a zero byte, as Linux
// delivers it. Equal settings give the bytes unchanged but for the data bits
// the line does not carry. Deterministic.
// The receiver's error counts: failed parity checks, missing stop bits.
struct UartErrors {
  uint32_t Frame = 0;
  uint32_t Parity = 0;
};
std::string TranscodeUart(std::string_view bytes, const platform::LineSettings& sender,
                          const platform::LineSettings& receiver, UartErrors* errors = nullptr);

// Whether two settings frame bytes the same way on the wire.
bool SameFraming(const platform::LineSettings& a, const platform::LineSettings& b);

// Bits one byte takes on the wire (start, data, parity, stop).
double BitsPerFrame(const platform::LineSettings& line);

}  // namespace wavetrace::serial
