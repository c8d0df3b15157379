#pragma once

#include <cstdint>
#include <string>

namespace wavetrace::core {

// The start-up switches and what the command line set with them.
struct CommandLineSwitches {
  static constexpr char16_t kScriptSwitch[] = u"/SCRIPT::";
  static constexpr char16_t kQuietSwitch[] = u"/Q";
  static constexpr char16_t kNoGuiSwitch[] = u"/NOGUI";
  static constexpr char16_t kDebugSwitch[] = u"/DEBUGON";

  std::u16string ScriptPath;  // the script run in automation mode
  int32_t Quiet = 0;          // "/Q": the headless view keeps the status line off stderr
  int32_t NoGui = 0;          // "/NOGUI": no window (the headless front end)
  int32_t Debug = 0;          // "/DEBUGON": the script echoes each command it finds
  std::u16string ConfigPath;  // --config: a configuration loaded after the default one
  // A line setting given on the command line: applied over the loaded
  // configuration, then the port is opened (empty or 0: keep the setting).
  std::u16string Port;
  uint32_t Baud = 0;
  int32_t DataBits = 0;
  std::u16string Parity;
  std::u16string StopBits;
  std::u16string SendText;  // --send: sent once after the port opens
  std::string SimSetting;   // --sim-setting: the simulated device's own line setting
  // --relay tcp://HOST:PORT or udp://HOST:PORT (empty host: none given).
  std::string RelayHost;
  uint32_t RelayPort = 0;
  int32_t RelayTcp = 1;
  // --relay-window TITLE: the first listed window whose title holds TITLE
  // is the window relay's target, and RELAY goes on once the port is open.
  std::u16string RelayWindowTitle;
  // --record [FILE]: RECORD goes on once the port is open, into FILE when given.
  int32_t Record = 0;
  std::u16string RecordPath;
  // Logging settings set over the loaded configuration (1: set).
  int32_t LogTimestamp = 0;  // --log-timestamp
  int32_t LogTransmit = 0;   // --log-tx
  int32_t LogOverwrite = 0;  // --log-overwrite
  int32_t NeverDrop = 0;     // --never-drop
  int32_t Reconnect = 0;     // --reconnect: reopen the port when its device comes back
  int32_t LineStatus = 0;    // --line-status: report the modem lines and error counters as they change
  int32_t SendBreak = 0;     // --send-break: a break once the port is open
  // --exit-after-script: the program ends once the script has run out.
  int32_t ExitAfterScript = 0;
  // --scan: one port scan of Port, printed, then the program ends.
  int32_t Scan = 0;
  // --scan-rotate: what the scan varies, as the "Rotate through:" boxes
  // (bit 0 baud, 1 data bits, 2 parity, 3 stop bits).
  int32_t ScanRotate = 1;
  int32_t ScanInterval = 0;  // --scan-interval: seconds (0: as set)
  // --layout: the window's layout, 1 compact, 2 desktop (0: as chosen).
  int32_t Layout = 0;
};

}  // namespace wavetrace::core
