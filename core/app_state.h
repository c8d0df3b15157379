#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "core/block_sink.h"
#include "core/buffer.h"
#include "core/command_line_switches.h"
#include "core/front_end.h"
#include "core/log_sink.h"
#include "core/main_screen.h"
#include "core/memory_lock.h"
#include "core/message_queue.h"
#include "core/program_options_key.h"
#include "core/published.h"
#include "core/published_settings.h"
#include "core/settings.h"
#include "core/simulated_profile.h"
#include "core/window_list_entry.h"
#include "platform/serial_port.h"
#include "platform/suspendable_thread.h"

namespace wavetrace::platform {
class DisplayControl;
class HotKeys;
class InstanceLock;
class LogFile;
}  // namespace wavetrace::platform

namespace wavetrace::core {

inline constexpr int32_t kRxWindowBufChars = 16384;
inline constexpr int32_t kDataLogCacheBytes = 65535;
inline constexpr int32_t kDisplayPowerOn = 1;
inline constexpr int32_t kDisplayPowerOff = 4;

struct DisplayPowerRecord {
  int32_t Length = 0;
  int32_t Version = 0;
  int32_t PowerState = 0;
};

// The one process-wide record of settings and run-time state. main() owns it
// and passes it down; nothing else holds mutable state of its own.
struct AppState {
  // --- settings (persisted; fields named by their configuration key) ------
  PortSettings Port;
  DataSettings Data;
  LogSettings Log;
  SettingsSnapshot Snapshot;
  ProgramOptionsKey ProgramOptions;
  std::u16string CurrentConfigPath;
  // Where the Config menu's file dialogs ended last (run-time; empty: the
  // configuration folder).
  std::u16string ConfigDialogFolder;
  int32_t LoadWarnings = 0;  // keys missing from the last configuration loaded
  // What the worker threads read of the settings above: replaced by
  // PublishSettings on the main thread after each change, loaded by the
  // workers once per block, send or refresh cycle.
  Published<RxSettings> PublishedRx;
  Published<TxSettings> PublishedTx;
  Published<LogRecordSettings> PublishedLog;
  Published<WindowRelaySettings> PublishedWindowRelay;

  // --- start-up ------------------------------------------------------------
  CommandLineSwitches Switches;
  int32_t ScreenHeight = 0;
  int32_t AutomationMode = 0;
  DisplayPowerRecord DisplayPower;
  std::atomic<bool> ShuttingDown{false};
  int32_t FirstPaintState = 0;
  std::atomic<bool> MainWindowExists{false};
  std::u16string WindowTitle;
  std::u16string ConfigFolder;  // where the registry file and Default.cfg.txt live
  std::string RegistryFile;     // the registry of this install (a file in ConfigFolder)
  std::unique_ptr<platform::InstanceLock> Instance;
  std::unique_ptr<platform::DisplayControl> Display;

  // --- relays ----------------------------------------------------------------
  std::atomic<bool> RelayActive{false};  // the RELAY toggle
  // The network relay and its socket (relay/network_relay); the dispatcher
  // hands it every block. Installed by the main window before the receive
  // thread runs, removed after the thread has been joined
  // (declared before the threads, so it also outlives them).
  std::unique_ptr<BlockSink> NetworkRelay;
  // The window relay (relay/window_relay), installed and removed with the
  // network relay; the dispatcher hands it each block before the network.
  std::unique_ptr<BlockSink> WindowRelay;
  // Run-time, never saved: the Relay page's window "Enable" box, the window
  // chosen on the selector page, and whether the keys go through a virtual
  // keyboard (/dev/uinput) instead of the X server.
  int32_t WindowRelayEnabled = 0;
  WindowListEntry RelayTargetWindow;
  int32_t WindowRelayVirtualKeyboard = 0;
  // The hardware buttons' hot keys while they are held (AcquireHWbuttons).
  std::unique_ptr<platform::HotKeys> HardwareButtonKeys;
  // --- threads (null stands for the invalid handle) -----------------------
  std::unique_ptr<platform::SuspendableThread> RxThread;
  std::unique_ptr<platform::SuspendableThread> TxThread;
  std::unique_ptr<platform::SuspendableThread> RxWndUpdate;
  std::unique_ptr<platform::SuspendableThread> LogIntervalThread;

  // --- ports -----------------------------------------------------------------
  // The device each port slot stands for (run-time only).
  std::array<std::string, kPortSlots> PortDevicePath;
  // The stable name of the device behind each slot (its /dev/serial/by-id
  // link), where it has one (run-time only).
  std::array<std::string, kPortSlots> PortStablePath;
  // Virtual ports of the program options: device paths for VSP1..VSP9.
  std::array<std::string, kPortSlots> VirtualPortPath;

  // The simulated device on VSP0.
  SimulatedProfile Simulated;

  // --- connection ------------------------------------------------------------
  // The open port; empty while closed. Threads take a copy under the mutex,
  // so closing never pulls the port from under a thread that uses it.
  std::shared_ptr<platform::SerialPort> PortHandle;
  std::mutex PortHandleMutex;
  uint32_t WriteTotalTimeoutMultiplier = 0;
  uint32_t WriteTotalTimeoutConstant = 0;
  std::atomic<bool> PlayFlag{false};
  std::atomic<bool> TxActive{false};
  std::atomic<bool> TxRepeat{false};    // the REPEAT toggle
  std::atomic<bool> TxShowSent{false};  // the sent text is still to be shown once
  // Sent texts the transmit field's drop-down keeps, the oldest dropped first.
  static constexpr int32_t kSentHistoryKept = 3;
  int32_t SentHistoryCount = 0;    // entries the transmit thread added to the history
  std::u16string PendingSendText;  // --send: sent once the port has opened
  bool PendingRelay = false;       // --relay: RELAY goes on once the port has opened
  bool PendingRecord = false;      // --record: RECORD goes on once the port has opened
  bool PendingBreak = false;       // --send-break: a break once the port has opened
  // Reopening: the device the open port stands for (its stable name, else its
  // path), and whether the program waits for it to come back.
  std::string ReconnectPath;
  bool ReconnectWaiting = false;
  bool Reopening = false;  // the PLAY under way is a reopening
  // The output lines as the user switched them, and the line status shown last.
  bool RtsOn = false;
  bool DtrOn = false;
  platform::LineStatus ShownLineStatus;
  bool LineStatusShown = false;
  std::atomic<bool> PortScanMode{false};
  std::atomic<bool> PortOpen{false};  // the port handle is valid
  bool SoftwareButtonsShown = false;

  // --- automation (run-time) ----------------------------------------------
  // 1 runs the script, 4 ends it, anything else holds it where it is.
  std::atomic<int32_t> ScriptState{4};
  std::atomic<bool> ScriptRunning{false};
  // Automation mode: the script loaded at start-up, until its thread starts.
  std::u16string ScriptText;
  std::unique_ptr<platform::SuspendableThread> AutomationThread;
  PortScanSettings Psm;
  std::atomic<bool> PsmStopRequested{true};  // also true while no scan runs
  std::atomic<int32_t> PsmOutcome{0};        // how the last scan ended (automation::ScanOutcome)
  std::unique_ptr<platform::SuspendableThread> PsmThread;

  // --- shared buffers and their locks --------------------------------------
  MemoryLock MemLock;
  std::recursive_mutex RxDataLock;
  WideBuffer g_RxWindowBuf;
  // Installed by a front end without a window before the threads start: it
  // takes the display turn of each processed block in place of the receive
  // window's buffer (not owned).
  BlockSink* RxDisplay = nullptr;
  CharBuffer DataLogCache;
  uint32_t DataLogCacheCount = 0;

  // --- recording (run-time; the file fields are guarded by RxDataLock) ----
  std::atomic<bool> RecordFlag{false};               // RECORD is on
  std::atomic<bool> LogOpen{false};                  // the log takes received data now
  std::unique_ptr<platform::LogFile> LogFileHandle;  // null while closed
  uint64_t LogFileSize = 0;                          // after the last open, write or close
  bool LogWriteFailing = false;                      // the last write failed and was reported
  // Where the receive and transmit paths hand their data for the log.
  std::unique_ptr<LogSink> LogRecords;

  // --- start-bar notification and tray ------------------------------------
  bool NotificationEnabled = true;
  bool AlternateIcon = false;
  bool KeepAliveTimerRunning = false;

  // --- the main window and its view ---------------------------------------
  MessageQueue Queue;
  MainScreen Screen;
  FrontEnd* View = nullptr;  // not owned; set by main()

  AppState();
  ~AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;
};

}  // namespace wavetrace::core
