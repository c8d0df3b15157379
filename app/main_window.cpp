#include "app/main_window.h"

#include <array>

#include "app/command_line.h"
#include "app/connection.h"
#include "app/display_power.h"
#include "app/help.h"
#include "app/line_control.h"
#include "app/receive_options.h"
#include "app/reference_screens.h"
#include "app/start_configuration.h"
#include "app/startup.h"
#include "app/tray_notification.h"
#include "app/worker_threads.h"
#include "automation/function_buttons.h"
#include "automation/port_scan.h"
#include "automation/script.h"
#include "config/config_file.h"
#include "core/allocation.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "log/log_file.h"
#include "log/record_command.h"
#include "platform/clock.h"
#include "platform/display_control.h"
#include "relay/network_relay.h"
#include "relay/window_relay.h"
#include "rx/log_cache.h"
#include "serial/port.h"
#include "serial/tx_thread.h"

namespace wavetrace::app {
namespace {

using namespace core::cmd;

// Commands whose features are not part of the program yet: their menu items
// and buttons stay grey and the window ignores them. Every command is there
// now; a feature that comes later lists its commands here until it lands.
constexpr std::array<int, 0> kUnavailable{};

bool IsUnavailable(int command) {
  return !IsCommandAvailable(command);
}

}  // namespace

void SetRadix(core::AppState& state, int base) {
  state.Data.Base = base;
  static constexpr std::array<std::pair<int, int>, 4> kItems = {
      {{2, kBinary}, {8, kOctal}, {10, kDecimal}, {16, kHex}}};
  for (auto [value, item] : kItems) state.Screen.CheckMenuItem(item, false);
  for (auto [value, item] : kItems) {
    if (value == state.Data.Base) state.Screen.CheckMenuItem(item, true);
  }
  core::PublishSettings(state);
}

void ShowViewMode(core::AppState& state) {
  bool ascii = state.Data.modeASCII != 0;
  bool binary = state.Data.modeBINARY != 0;
  state.Screen.EnableButton(kAsciiButton, !(ascii && !binary));
  state.Screen.EnableButton(kBinaryButton, !(binary && !ascii));
}

void SetViewMode(core::AppState& state, bool ascii) {
  state.Data.modeASCII = ascii ? 1 : 0;
  state.Data.modeBINARY = ascii ? 0 : 1;
  ShowViewMode(state);
  core::PublishSettings(state);
}

namespace {

void Toggle(core::AppState& state, uint8_t& flag, int item) {
  flag = flag ? 0 : 1;
  core::PublishSettings(state);
  state.Screen.CheckMenuItem(item, flag != 0);
}

void ClearReceiveWindow(core::AppState& state) {
  state.Screen.RxClear();
}

void ClearSendHistory(core::AppState& state) {
  state.Screen.SetTxText(u"");
  state.Screen.SetTxHistory({});
  state.Screen.SetTxSelection(-1);
  serial::AddSentHistory(state, true);
}

// The Config menu's file dialog: it starts where the last one ended (at
// first the configuration folder), a save with the current file's name.
// Empty when cancelled.
std::u16string ChooseConfigFile(core::AppState& state, bool save) {
  if (!state.View) return {};
  std::u16string folder = state.ConfigDialogFolder.empty() ? state.ConfigFolder : state.ConfigDialogFolder;
  std::u16string start = folder;
  if (save) start += u"/" + state.CurrentConfigPath.substr(state.CurrentConfigPath.rfind(u'/') + 1);
  std::u16string path = state.View->ChooseConfigFile(save, start);
  if (path.empty()) return path;
  state.ConfigDialogFolder = path.substr(0, path.rfind(u'/'));
  return save ? WithConfigExtension(path) : path;
}

// The Config menu: Load..., Save, SaveAs..., Set as Default.
void OnConfigCommand(core::AppState& state, int command, int64_t source) {
  if (command == kConfigLoad) {
    // A script has loaded the file itself: only the screen follows.
    if (source == core::kFromMainWindow) {
      ApplySettingsToScreen(state);
      return;
    }
    std::u16string path = ChooseConfigFile(state, false);
    if (!path.empty() && config::ConfigLoad(state, path) == 0) {
      state.CurrentConfigPath = path;
      ApplySettingsToScreen(state);
    }
    return;
  }
  if (command == kConfigSave) {
    config::ConfigSave(state, state.CurrentConfigPath);
  } else if (command == kConfigSaveAs) {
    std::u16string path = ChooseConfigFile(state, true);
    if (!path.empty() && config::ConfigSave(state, path) == 0) state.CurrentConfigPath = path;
  } else if (command == kConfigSetDefault) {
    config::ConfigSave(state, state.ConfigFolder + u"/" + config::kDefaultConfigName);
  }
}

// "Run script": the script chosen in a file dialog runs on its own thread.
void RunScriptCommand(core::AppState& state) {
  std::u16string path = state.View ? state.View->ChooseScriptFile() : u"";
  if (path.empty()) return;
  std::u16string text;
  platform::SysResult failure;
  if (automation::LoadScript(path, text, failure) != 0) {
    // Picked in a dialog, a file that gives nothing to run is worth a word.
    if (!failure) {
      core::ShowStatusError(state, u"Script file could not be read [" + path + u"]", failure);
    } else {
      core::ShowStatus(state, u"Script file is empty [" + path + u"]");
    }
    return;
  }
  automation::StartScriptThread(state, std::move(text));
}

// A screen the view could not put up is reported in a box.
void ShowScreen(core::AppState& state, bool shown, std::u16string_view failure) {
  if (!shown) core::ShowErrorBox(state, failure, {});
}

void ToggleSoftwareButtons(core::AppState& state) {
  state.SoftwareButtonsShown = !state.SoftwareButtonsShown;
  automation::ShowSoftwareButtons(state, state.SoftwareButtonsShown);
  state.Screen.CheckMenuItem(kSoftwareButtons, state.SoftwareButtonsShown);
}

// The controls of the two strips below the receive window.
void OnStripCommand(core::AppState& state, int key) {
  using namespace core::strip;
  if (key == kPsmStrip + kPsmStart) {
    automation::PsmStart(state);
  } else if (key == kPsmStrip + kPsmStop) {
    automation::PsmStop(state);
    // --scan: the run ends with its one scan. The thread that sent this is
    // still on its way out, so the shutdown that joins it comes later.
    if (state.Switches.Scan && state.PsmOutcome != automation::kScanNotRun) {
      bool ran =
          state.PsmOutcome == automation::kScanCompleted || state.PsmOutcome == automation::kScanStopped;
      core::Message exit = core::MakeMessage(core::kWmCall);
      exit.Call = [&state, ran] {
        Shutdown(state, ran ? 0 : kFailureExitCode);
        return int64_t{0};
      };
      state.Queue.Post(std::move(exit));
    }
  } else if (key == kPsmStrip + kPsmTx) {
    automation::PsmToggleTx(state);
  } else if (key >= kSoftwareStrip + kFirstSoftwareButton &&
             key < kSoftwareStrip + kFirstSoftwareButton + kSoftwareButtonCount) {
    // Buttons 3 to 6 stay disabled: a press of one is not taken.
    if (!state.Screen.IsButtonEnabled(key)) return;
    automation::PressFunctionButton(state, automation::ButtonKind::kSoftware,
                                    key - kSoftwareStrip - kFirstSoftwareButton + 1);
  }
}

int64_t OnCommand(core::AppState& state, int command, int64_t source) {
  if (IsUnavailable(command)) return 0;
  switch (command) {
    case kExit:
      Shutdown(state);
      return 0;
    case kPlay:
      // No port chosen yet (a first run): the Port page first.
      if (source != core::kFromCommandLine && ChoosePortBeforePlay(state)) return 0;
      Play(state);
      // A port named on the command line that cannot be opened ends a run
      // without a window: nobody is there to pick another. Told to reopen
      // it, the program waits for its device instead.
      if (source == core::kFromCommandLine && !state.PortOpen) {
        if (state.Port.ReopenPort == 1) {
          BeginWaitingForDevice(state);
        } else if (EndsWhenStartPortFails(state)) {
          Shutdown(state, kStartPortFailedExitCode);
        }
      }
      return 0;
    case kSendBreak:
      SendBreak(state);
      return 0;
    case kToggleRts:
    case kToggleDtr:
      ToggleModemLine(state, command == kToggleRts);
      return 0;
    case kLineStatus:
      ToggleLineStatusStrip(state);
      return 0;
    case kScreenOff:
      DisplayOff(state);
      return 0;
    case kStop:
      Stop(state);
      return 0;
    case kSend:
      Send(state);
      return 0;
    case kRepeat:
      ToggleRepeat(state);
      return 0;
    case kRelay:
      ToggleRelay(state);
      return 0;
    case kRecord:
      log::ToggleRecord(state);
      return 0;
    case kRunScript:
      RunScriptCommand(state);
      return 0;
    case kSoftwareButtons:
      ToggleSoftwareButtons(state);
      return 0;
    case kHelp:
      ShowHelp(state);
      return 0;
    case kAbout:
      if (state.View) state.View->ShowAbout(AboutReleaseLine(), state.AutomationMode != 0);
      return 0;
    case kConfigLoad:
    case kConfigSave:
    case kConfigSaveAs:
    case kConfigSetDefault:
      OnConfigCommand(state, command, source);
      return 0;
    case kTransmitOptions:
      if (state.View) state.View->ShowTransmitOptions();
      return 0;
    case kReceiveOptions:
      ShowScreen(state,
                 state.View && state.View->ShowReceiveOptions(static_cast<int>(RxOptionsPage::kFilters)),
                 u"Creating Receive Options dialog.");
      return 0;
    case kAsciiChart:
      ShowScreen(state, state.View && state.View->ShowAsciiChart(AsciiChartVariantB(state)),
                 u"Creating ASCII Chart Dialog.");
      return 0;
    case kCommPinouts:
      ShowScreen(state, state.View && state.View->ShowPinouts(), u"Creating Pinouts Dialog.");
      return 0;
    case kCommProperties:
      if (state.View) state.View->ShowCommProperties();
      return 0;
    case kProgramOptions:
      if (state.View) state.View->ShowProgramOptions();
      return 0;
    case kClearReceiveWindow:
    case kClearButton:
      ClearReceiveWindow(state);
      return 0;
    case kClearSendHistory:
      ClearSendHistory(state);
      return 0;
    case kPauseRxDisplay:
      Toggle(state, state.Data.PauseRxDisplay, kPauseRxDisplay);
      return 0;
    case kFullscreen:
      Toggle(state, state.Data.RxFullScreen, kFullscreen);
      return 0;
    case kBacklightOnReceive:
      Toggle(state, state.Data.RxBacklightEvent, kBacklightOnReceive);
      return 0;
    case kDecimal:
      SetRadix(state, 10);
      return 0;
    case kHex:
      SetRadix(state, 16);
      return 0;
    case kOctal:
      SetRadix(state, 8);
      return 0;
    case kBinary:
      SetRadix(state, 2);
      return 0;
    case kAsciiButton:
      SetViewMode(state, true);
      return 0;
    case kBinaryButton:
      SetViewMode(state, false);
      return 0;
    default:
      return 0;
  }
}

}  // namespace

std::u16string WithConfigExtension(const std::u16string& path) {
  std::u16string name = path.substr(path.rfind(u'/') + 1);
  return name.find(u'.') == std::u16string::npos ? path + u".cfg.txt" : path;
}

bool ChoosePortBeforePlay(core::AppState& state) {
  // A script or a port scan runs unattended: it gets the error as before.
  bool unattended = state.ScriptRunning || !state.PsmStopRequested;
  if (!state.Port.SelectedPort.empty() || unattended || !state.View || !state.View->HasOptionPages())
    return false;
  core::ShowStatus(state, kChoosePortText);
  state.View->ShowCommProperties();
  return state.Port.SelectedPort.empty();
}

bool IsCommandAvailable(int command) {
  for (int c : kUnavailable) {
    if (c == command) return false;
  }
  return true;
}

void ShowClosedControls(core::AppState& state) {
  auto& screen = state.Screen;
  screen.EnableButton(kMenuBarPlay, true);
  screen.EnableButton(kPlay, true);
  screen.EnableButton(kSend, false);
  screen.EnableButton(kStop, false);
  for (int command : kUnavailable) {
    screen.GreyMenuItem(command, true);
    screen.EnableButton(command, false);
  }
  EnableLineCommands(state, false);
}

int CreateMainWindow(core::AppState& state) {
  state.Queue.SetHandler([&state](const core::Message& m) { return MainWindowProc(state, m); });
  state.Screen.SetListener([&state] { state.Queue.Post(core::MakeMessage(core::kWmScreenChanged)); });

  // The create handler. The relays are in place before the receive thread.
  relay::InstallWindowRelay(state);
  relay::InstallNetworkRelay(state);
  if (CreateWorkerThreads(state) != 0) {
    if (state.View) state.View->SetWaitCursor(false);
    EndWorkerThreads(state);
    return -1;
  }
  state.MainWindowExists = true;
  if (!state.Display) state.Display = std::make_unique<platform::DisplayControl>();
  ShowClosedControls(state);
  automation::ShowPsmStrip(state);
  automation::ShowSoftwareButtons(state, state.SoftwareButtonsShown);
  state.Queue.SetTimer(core::kKeepAliveTimerId, core::kKeepAliveIntervalMs);
  state.KeepAliveTimerRunning = true;
  state.FirstPaintState = 2;
  if (state.ProgramOptions.AcquireHWbuttons == 1) automation::RegisterHardwareButtons(state, true);
  ConfigureAtStart(state);
  return 0;
}

int64_t MainWindowProc(core::AppState& state, const core::Message& message) {
  switch (message.Code) {
    case core::kWmCommand:
      return OnCommand(state, static_cast<int>(message.WParam), message.LParam);
    case core::kWmTimer:
      if (message.WParam == core::kKeepAliveTimerId) {
        KeepAlive(state);
        CheckPortLines(state);
      }
      if (message.WParam == core::kBreakTimerId) EndBreak(state);
      if (message.WParam == core::kPsmStartTimerId || message.WParam == core::kPsmStopTimerId)
        automation::OnPsmTimer(state, static_cast<uint32_t>(message.WParam));
      return 0;
    case core::kWmStripCommand:
      OnStripCommand(state, static_cast<int>(message.WParam));
      return 0;
    case core::kWmHotKey:
      automation::OnHotKey(state, static_cast<int>(message.WParam));
      return 0;
    case core::kWmRxActive:
      ShowOpenedState(state);
      if (state.View) state.View->TransmitPathChanged();
      return 0;
    case core::kWmRxSuspended:
      ShowClosedState(state);
      if (state.View) state.View->TransmitPathChanged();
      return 0;
    case core::kWmChar:
      if (message.WParam == 13) DisplayOn(state);
      return 0;
    case core::kWmTrayCallback:
      if (message.LParam == core::kWmLButtonDown) state.Screen.Activate();
      return 0;
    case core::kWmActivateInstance:
      state.Screen.Activate();
      return 0;
    case core::kWmTxIdle:
      if (state.View) state.View->TransmitPathChanged();
      return 0;
    case core::kWmScreenChanged:
      if (state.View) state.View->RenderScreenChanges();
      return 0;
    default:
      return 0;
  }
}

void Shutdown(core::AppState& state, int exitCode) {
  if (state.ShuttingDown.exchange(true)) return;
  // From here a worker's Send returns at once: nothing waits on the main
  // thread while it joins the workers.
  state.Queue.BeginShutdown();
  // The script and the port scan drive the main window: they end first.
  automation::EndScript(state);
  automation::EndPortScan(state);
  // What the device sent just before the end is read and shown first (the
  // receive thread keeps reading meanwhile), for a quarter second at most.
  for (int wait = 0; wait < 50; ++wait) {
    auto port = serial::CurrentPort(state);
    if (!port || !state.PlayFlag || port->QueuedInput() == 0) break;
    platform::SleepMs(5);
  }
  serial::ClosePort(state);
  automation::RegisterHardwareButtons(state, false);
  state.PlayFlag = false;
  state.TxActive = false;
  core::ShowStatus(state, u"Shutting down...");
  // RELAY off before the receive thread is joined: closing the socket ends a
  // send that a stalled server holds up.
  if (state.RelayActive) ToggleRelay(state);
  DisplayOn(state);
  EndWorkerThreads(state);
  state.WindowRelay.reset();
  state.NetworkRelay.reset();
  // The update thread's last flush has written the cache.
  log::CloseLogFile(state);
  state.Queue.KillTimer(core::kKeepAliveTimerId);
  state.KeepAliveTimerRunning = false;
  ShellNotification(state, kNotifyRemove);
  state.Screen.SetTrayState(0);
  core::FreeBuffer(state, state.g_RxWindowBuf);
  rx::FreeLogCache(state);
  state.Queue.PostQuit(exitCode);
}

}  // namespace wavetrace::app
