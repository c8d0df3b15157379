#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/app_state.h"

namespace wavetrace::app {

// What the transmit options sheet edits: the Repeat page, the Filters page
// and the Configure Button page.
struct TransmitOptionValues {
  uint32_t TxRepeatNum = 0;        // sends in a repeat run, 0 = without end
  uint32_t TxRepeatDelay = 0;      // milliseconds after each send of a run
  std::u16string PostambleKeysTX;  // in escape notation, e.g. "[0D][0A]"
  int32_t TxClrRCVEtxt = 0;        // 1: empty the receive window before each send
  int32_t TxSendWholeFile = 0;     // 1: a file's last partial chunk is always sent
  std::array<std::u16string, 4> HardwareButtonData{};
  std::array<std::u16string, 6> SoftwareButtonData{};
  std::array<std::u16string, 6> SoftwareButtonCaption{};
};

TransmitOptionValues TransmitOptionsOf(const core::AppState& state);
// Stores the values; the transmit postamble is parsed as the receive one is
// (at most 13 characters of the field are kept). The software button strip
// shows the new captions.
void ApplyTransmitOptions(core::AppState& state, const TransmitOptionValues& values);

}  // namespace wavetrace::app
