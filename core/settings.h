#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace wavetrace::core {

// The settings blocks of AppState. Fields are named by their configuration
// file key; each feature adds the keys it owns.

inline constexpr int kPortSlots = 20;  // COM0..COM9, VSP0..VSP9

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

  bool operator==(const PortSettings&) const = default;
};

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

// Logging settings record (section DataLog).
struct LogSettings {
  std::u16string wszLogDir;  // always ends in the folder separator
  std::u16string wszLogFile;
  int32_t LOGtimestamp = 0;
  int32_t LOGtransmitdata = 0;
  int32_t LOGoverwrite = 0;
  int32_t RecordALL = 1;
  int32_t RecordInterval = 10;
  int32_t RecordDuration = 1;

  bool operator==(const LogSettings&) const = default;
};

// Copies of the port and data settings taken after discovery and after each
// configuration load, so later changes can be compared with what was loaded.
struct SettingsSnapshot {
  PortSettings Port;
  DataSettings Data;
};

}  // namespace wavetrace::core
