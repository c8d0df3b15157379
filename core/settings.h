#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace wavetrace::core {

// The settings blocks of AppState. Fields are named by their configuration
// file key; each feature adds the keys it owns.

// One search-and-replace rule slot (sections SnR_01, SnR_02). The byte fields
// are the texts after conversion to the code page and escape parsing; the
// receive thread matches with those, never with the texts.
struct SnRRule {
  static constexpr size_t kTextChars = 42;  // wide storage, terminator included
  static constexpr size_t kBytes = 42;

  std::u16string wcszSearchFor;
  std::u16string wcszReplaceWith;
  std::array<uint8_t, kBytes> SearchBytes{};
  std::array<uint8_t, kBytes> ReplaceBytes{};
  // Exactly one is 1: replace all, first occurring, last occurring.
  int32_t Rall = 1;
  int32_t Rfo = 0;
  int32_t Rlo = 0;
  int32_t SearchLength = 0;
  int32_t ReplaceLength = 0;
  // The replacement text in the code page before escape parsing, and whether
  // it holds the {TIME_STAMP} token: the receive thread rebuilds the
  // replacement from these at each match and never reads the wide texts,
  // which the option page may be changing at the same time.
  std::array<uint8_t, kBytes> ReplaceTextBytes{};
  int32_t ReplaceHasTimeStamp = 0;
};

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

  // Section POSTAMBLE, receive side. PostambleBytesRX is the parsed form of
  // the keys text; PostambleLengthRX counts its bytes (0 = no postamble).
  static constexpr size_t kPostambleChars = 16;
  std::u16string wcszPostambleKeysRX;
  std::array<uint8_t, kPostambleChars> PostambleBytesRX{};
  int32_t PostambleLengthRX = 0;

  // Sections SnR and SnR_nn. Slot 0 is never used; rules live in 1 and 2.
  static constexpr int32_t kMaxSnRRules = 2;
  int32_t SnR_count = 0;
  int32_t DisableSnR = 0;
  std::array<SnRRule, kMaxSnRRules + 1> SnR{};
  int32_t SnRCurrentRule = 1;  // the rule the Replace page shows, 1-based
};

// Logging settings record (section DataLog).
struct LogSettings {
  static constexpr size_t kTimeStampBytes = 32;

  // A one-character byte string: ',', TAB, ';' or ' '.
  std::array<uint8_t, 2> Delimiter{',', 0};
  int32_t DateFormat = 1;  // 1..4, see rx/time_stamp.h
  int32_t TimeFormat = 6;  // 5..7
  // Zero-terminated; readers compare the two to see whether the clock text
  // moved on since the previous stamp. Guarded by the receive-data lock.
  std::array<uint8_t, kTimeStampBytes> CurrentTimeStamp{};
  std::array<uint8_t, kTimeStampBytes> PreviousTimeStamp{};
};

}  // namespace wavetrace::core
