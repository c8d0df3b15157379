#pragma once

#include <cstdint>

namespace wavetrace::core {

// Message codes of the logical main window.
inline constexpr uint32_t kWmQuit = 0x0012;
inline constexpr uint32_t kWmChar = 0x0102;
inline constexpr uint32_t kWmCommand = 0x0111;  // WParam: command number
inline constexpr uint32_t kWmTimer = 0x0113;    // WParam: timer identifier
inline constexpr uint32_t kWmRxActive = 0xA001;
inline constexpr uint32_t kWmRxSuspended = 0xA002;
inline constexpr uint32_t kWmRxEnded = 0xA003;
inline constexpr uint32_t kWmTrayCallback = 0xA004;  // LParam: mouse message
// Internal: run Message::Call on the main thread.
inline constexpr uint32_t kWmCall = 0xB001;
// Internal: the main-screen model has changes for the view.
inline constexpr uint32_t kWmScreenChanged = 0xB002;
// Internal: another instance asked this one to come to the front.
inline constexpr uint32_t kWmActivateInstance = 0xB003;
// Internal: the transmit thread finished a send run (or ended) and the
// transmit path is free again.
inline constexpr uint32_t kWmTxIdle = 0xB004;

inline constexpr int64_t kWmLButtonDown = 513;
// LParam of a command the program sends itself (a script's CONFIG load
// refreshes the screen without asking for a file).
inline constexpr int64_t kFromMainWindow = -1;
// LParam of the PLAY that --port posts at start.
inline constexpr int64_t kFromCommandLine = -2;

// Command numbers (menu items, buttons, menu-bar buttons).
namespace cmd {
inline constexpr int kMenuBarPlay = 1000;
inline constexpr int kExit = 211;
inline constexpr int kCommProperties = 221;
inline constexpr int kTransmitOptions = 222;
inline constexpr int kReceiveOptions = 223;
inline constexpr int kProgramOptions = 224;
inline constexpr int kAsciiChart = 231;
inline constexpr int kClearReceiveWindow = 232;
inline constexpr int kClearSendHistory = 233;
inline constexpr int kPauseRxDisplay = 234;
inline constexpr int kScreenOff = 235;
inline constexpr int kFullscreen = 236;
inline constexpr int kSoftwareButtons = 237;
inline constexpr int kCommPinouts = 238;
inline constexpr int kConfigLoad = 312;
inline constexpr int kConfigSave = 313;
inline constexpr int kConfigSaveAs = 314;
inline constexpr int kConfigSetDefault = 315;
inline constexpr int kAbout = 500;
inline constexpr int kCopy = 501;
inline constexpr int kPaste = 502;
inline constexpr int kHelp = 503;
inline constexpr int kRunScript = 510;
inline constexpr int kAsciiButton = 5020;
inline constexpr int kBinaryButton = 5030;
inline constexpr int kClearButton = 5050;
inline constexpr int kSend = 5080;
inline constexpr int kPlay = 6001;
inline constexpr int kStop = 6002;
inline constexpr int kRepeat = 6003;
inline constexpr int kRecord = 6004;
inline constexpr int kRelay = 6005;
inline constexpr int kDecimal = 8101;
inline constexpr int kHex = 8102;
inline constexpr int kOctal = 8103;
inline constexpr int kBinary = 8104;
inline constexpr int kBacklightOnReceive = 8137;
}  // namespace cmd

inline constexpr uint32_t kKeepAliveTimerId = 153;
inline constexpr int kKeepAliveIntervalMs = 500;

}  // namespace wavetrace::core
