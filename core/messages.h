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
// A control of one of the two strips: WParam = the strip's key plus the
// control's number (see strip below).
inline constexpr uint32_t kWmStripCommand = 0xB005;
// A hot key was pressed: WParam = its identifier (193 to 207).
inline constexpr uint32_t kWmHotKey = 0x0312;

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
// The port's lines by hand: a break, RTS and DTR switched.
inline constexpr int kSendBreak = 239;
inline constexpr int kToggleRts = 240;
inline constexpr int kToggleDtr = 241;
// The strip of modem-line lamps and error counts.
inline constexpr int kLineStatus = 242;
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

// The port scan strip and the software button strip number their controls
// alike (from 6020); the model and the strip message tell them apart by
// the strip's key added to the number.
namespace strip {
inline constexpr int kPsmStrip = 1 << 16;
inline constexpr int kSoftwareStrip = 2 << 16;
inline constexpr int kLineStatusStrip = 3 << 16;
inline constexpr int kPsmStart = 6020;
inline constexpr int kPsmStop = 6021;
inline constexpr int kPsmTx = 6022;
inline constexpr int kFirstSoftwareButton = 6020;  // buttons 1 to 6: 6020 to 6025
inline constexpr int kSoftwareButtonCount = 6;
}  // namespace strip

// Hot keys 193 to 207; the first four are hardware buttons 1 to 4.
inline constexpr int kFirstHotKey = 193;
inline constexpr int kLastHotKey = 207;
inline constexpr int kHardwareButtonCount = 4;

inline constexpr uint32_t kKeepAliveTimerId = 153;
// One-shot: the port scan strip's STOP, or START and Tx, come back 500 ms
// after a start or a stop.
inline constexpr uint32_t kPsmStartTimerId = 154;
inline constexpr uint32_t kPsmStopTimerId = 155;
inline constexpr int kPsmButtonDelayMs = 500;
// One-shot: the end of a break.
inline constexpr uint32_t kBreakTimerId = 156;
inline constexpr int kBreakMs = 250;
inline constexpr int kKeepAliveIntervalMs = 500;

}  // namespace wavetrace::core
