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

  bool operator==(const SnRRule&) const = default;
};

inline constexpr int kPortSlots = 20;  // COM0..COM9, VSP0..VSP9

// "COM0:".."COM9:" for slots 0..9, "VSP0:".."VSP9:" for 10..19.
std::u16string PortSlotName(int slot);
// The slot a name stands for, or -1.
int PortSlotOfName(const std::u16string& name);

// Port settings block (section COMMs) with the port table's flags and names.
struct PortSettings {
  PortSettings();

  // Present flags: slots 0..9 are persisted as COM0Ser..COM9Ser.
  std::array<uint8_t, kPortSlots> PortPresent{};
  std::u16string RawIrPort;
  // Display names; slots 1..9 are persisted as FriendlyName_01..FriendlyName_09.
  std::array<std::u16string, kPortSlots> FriendlyName;
  std::u16string SelectedPort;
  uint32_t SelectedBaud = 9600;
  uint8_t SelectedDataBits = 8;
  std::u16string Parity = u"None";
  std::u16string StopBits = u"1";
  int32_t XON = 0;
  int32_t RTS = 0;
  int32_t CtsFlow = 0;  // not persisted
  int32_t DTR = 0;
  int32_t DsrFlow = 0;  // not persisted
  int32_t CustomBauds_count = 0;
  uint32_t CustomBaud_01 = 0;
  // 1: a port whose device went away is opened again when the device comes
  // back under the same name (saved as an extra key).
  int32_t ReopenPort = 0;

  bool operator==(const PortSettings&) const = default;
};

inline constexpr size_t kPostambleBytes = 16;

// The data settings the receive thread reads: the views, the filters, the
// rules, the receive postamble, the read delay (the published RxSettings
// carries a copy of them).
struct ReceiveViewSettings {
  // A terminal opens in the text view with hexadecimal escapes.
  uint8_t modeASCII = 1;
  uint8_t modeBINARY = 0;
  int32_t Base = 16;
  int32_t BinBrackets = 0;
  int32_t NonChars = 0;
  int32_t FilterNP = 0;
  uint32_t RxDelayReadThread = 0;
  uint8_t PauseRxDisplay = 0;
  uint8_t RxBacklightEvent = 0;
  // Section POSTAMBLE, receive side: the parsed form of the keys text;
  // PostambleLengthRX counts its bytes (0 = no postamble).
  static constexpr size_t kPostambleChars = kPostambleBytes;
  std::array<uint8_t, kPostambleBytes> PostambleBytesRX{};
  int32_t PostambleLengthRX = 0;
  // Sections SnR and SnR_nn. Slot 0 is never used; rules live in 1 and 2.
  static constexpr int32_t kMaxSnRRules = 2;
  int32_t SnR_count = 0;
  int32_t DisableSnR = 0;
  std::array<SnRRule, kMaxSnRRules + 1> SnR{};

  bool operator==(const ReceiveViewSettings&) const = default;
};

// The data settings the transmit thread reads besides Base (the published
// TxSettings carries a copy of them).
struct TransmitSettings {
  uint32_t TxRepeatNum = 0;
  uint32_t TxRepeatDelay = 0;
  int32_t TxClrRCVEtxt = 0;
  // 1: a file's last partial chunk is always sent (by default a file between
  // one and two chunks long loses its tail, as it always has).
  int32_t TxSendWholeFile = 0;
  // The transmit postamble, parsed as the receive one.
  std::array<uint8_t, kPostambleBytes> PostambleBytesTX{};
  int32_t PostambleLengthTX = 0;

  bool operator==(const TransmitSettings&) const = default;
};

// Data settings block (DATA_h, POSTAMBLE, SnR, relays, buttons).
struct DataSettings : ReceiveViewSettings, TransmitSettings {
  uint8_t RxFullScreen = 0;
  int32_t ShowClassNames = 0;

  // The postambles as typed, with bracket escapes.
  std::u16string wcszPostambleKeysRX;
  std::u16string wcszPostambleKeysTX;

  int32_t SnRCurrentRule = 1;  // the rule the Replace page shows, 1-based

  // TCP_relay
  std::array<std::u16string, 4> IP{};  // IP_01..IP_04: the server's four octets as text
  int32_t EnableTCPIPrelay = 0;
  int32_t RelayTCP_RemotePort = 0;
  int32_t Relay_SocketType_TCP = 1;
  int32_t Relay_SocketType_UDP = 0;

  // WINDOW_relay
  int32_t TRANSLATE_KEYBOARD_CODES = 0;

  // Function buttons; only the first two of each kind are saved.
  std::array<std::u16string, 4> HardwareButtonData{};
  std::array<std::u16string, 6> SoftwareButtonData{};
  std::array<std::u16string, 6> SoftwareButtonCaption{};

  bool operator==(const DataSettings&) const = default;
};

// The logging settings the recorder and the interval recording read (the
// published LogRecordSettings carries a copy of them).
struct LogRecordFields {
  int32_t LOGtimestamp = 0;
  int32_t LOGtransmitdata = 0;
  int32_t TSremoveCRLF = 0;  // 1: no CR LF before each stamped record
  // 1: a full log cache goes to the file instead of being dropped, and
  // records are cached whole, zero bytes included (saved as an extra key).
  int32_t NeverDropLogData = 0;
  int32_t RecordALL = 1;
  int32_t RecordInterval = 10;
  int32_t RecordDuration = 1;

  bool operator==(const LogRecordFields&) const = default;
};

// Logging settings record (section DataLog).
struct LogSettings : LogRecordFields {
  std::u16string wszLogDir;  // always ends in the folder separator
  std::u16string wszLogFile;
  int32_t LOGoverwrite = 0;

  static constexpr size_t kTimeStampBytes = 32;

  // A one-character byte string: ',', TAB, ';' or ' '.
  std::array<uint8_t, 2> Delimiter{',', 0};
  int32_t DateFormat = 1;  // 1..4, see rx/time_stamp.h
  int32_t TimeFormat = 6;  // 5..7, or 8 for hh:mm:ss.mmm
  // Zero-terminated; readers compare the two to see whether the clock text
  // moved on since the previous stamp. Guarded by the receive-data lock.
  std::array<uint8_t, kTimeStampBytes> CurrentTimeStamp{};
  std::array<uint8_t, kTimeStampBytes> PreviousTimeStamp{};

  bool operator==(const LogSettings&) const = default;
};

// Port scan mode: the options of its page and its strip (run-time only,
// never saved; they keep their values while the program runs).
struct PortScanSettings {
  int32_t PsmEnabled = 0;
  // The "Rotate through:" boxes: 1 varies that part of the line setting.
  int32_t PsmRotateBaud = 1;
  int32_t PsmRotateDataBits = 0;
  int32_t PsmRotateParity = 0;
  int32_t PsmRotateStopBits = 0;
  int32_t PsmScanInterval = 1;  // seconds, 1 to 60
  int32_t PsmSendOnOpen = 0;    // the strip's "Tx": send the transmit field after each opening

  bool operator==(const PortScanSettings&) const = default;
};

// Copies of the port and data settings taken after discovery and after each
// configuration load, so later changes can be compared with what was loaded.
struct SettingsSnapshot {
  PortSettings Port;
  DataSettings Data;
};

}  // namespace wavetrace::core
