#pragma once

#include <cstdint>

namespace wavetrace::core {

// The settings blocks of AppState. Fields are named by their configuration
// file key; each feature adds the keys it owns.

// Port settings block (section COMMs).
struct PortSettings {};

// Data settings block (DATA_h, POSTAMBLE, SnR, relays, buttons).
struct DataSettings {
  // A terminal opens in the text view with hexadecimal escapes.
  uint8_t modeASCII = 1;
  uint8_t modeBINARY = 0;
  int32_t Base = 16;
  int32_t BinBrackets = 0;
  int32_t NonChars = 0;
  int32_t FilterNP = 0;
  uint32_t TxRepeatNum = 0;
  uint32_t TxRepeatDelay = 0;
  uint32_t RxDelayReadThread = 0;
  int32_t TxClrRCVEtxt = 0;
  uint8_t PauseRxDisplay = 0;
  uint8_t RxFullScreen = 0;
  int32_t ShowClassNames = 0;
  uint8_t RxBacklightEvent = 0;
};

// Logging settings record (section DataLog).
struct LogSettings {};

}  // namespace wavetrace::core
