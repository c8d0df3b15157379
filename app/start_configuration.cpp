#include "app/start_configuration.h"

#include "app/main_window.h"
#include "app/port_discovery.h"
#include "automation/port_scan.h"
#include "config/config_file.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "log/log_names.h"
#include "platform/line_setting_text.h"
#include "platform/socket.h"
#include "platform/system_error.h"

namespace wavetrace::app {
namespace {

using namespace core::cmd;

// --relay: the TCP_relay settings name the server (a name is looked up now,
// as the octet fields hold an address), and RELAY goes on with the port.
void ApplyRelaySwitch(core::AppState& state) {
  const auto& sw = state.Switches;
  if (sw.RelayHost.empty()) return;
  uint32_t address = 0;
  if (platform::SysResult failure = platform::ResolveIpv4(sw.RelayHost, address); !failure) {
    core::ShowStatusError(state, u"Relay server not found [" + core::Utf8ToWide(sw.RelayHost) + u"]",
                          failure);
    return;
  }
  for (int i = 0; i < 4; ++i) {
    state.Data.IP[i] = core::Utf8ToWide(std::to_string((address >> (24 - 8 * i)) & 0xff));
  }
  state.Data.RelayTCP_RemotePort = static_cast<int32_t>(sw.RelayPort);
  state.Data.Relay_SocketType_TCP = sw.RelayTcp;
  state.Data.Relay_SocketType_UDP = sw.RelayTcp ? 0 : 1;
  state.Data.EnableTCPIPrelay = 1;
  state.PendingRelay = true;
}

// --relay-window: the window relay is enabled and RELAY goes on with the
// port; the window is looked for then (it may open after this program).
void ApplyRelayWindowSwitch(core::AppState& state) {
  if (state.Switches.RelayWindowTitle.empty()) return;
  state.WindowRelayEnabled = 1;
  state.PendingRelay = true;
}

// Logging options of the command line go over the loaded configuration.
void ApplyLogSwitches(core::AppState& state) {
  const auto& sw = state.Switches;
  core::LogSettings& log = state.Log;
  if (sw.LogTimestamp) log.LOGtimestamp = 1;
  if (sw.LogTransmit) log.LOGtransmitdata = 1;
  if (sw.LogOverwrite) log.LOGoverwrite = 1;
  if (sw.NeverDrop) log.NeverDropLogData = 1;
  if (!sw.RecordPath.empty()) log::SplitLogPath(log, sw.RecordPath);
  state.PendingRecord = sw.Record != 0;
}

// --scan: one port scan of the selected port, with what the command line
// says to vary; --send TEXT is sent after each opening (the strip's Tx).
void ApplyScanSwitches(core::AppState& state) {
  const auto& sw = state.Switches;
  core::PortScanSettings& psm = state.Psm;
  psm.PsmEnabled = 1;
  psm.PsmRotateBaud = sw.ScanRotate & 1 ? 1 : 0;
  psm.PsmRotateDataBits = sw.ScanRotate & 2 ? 1 : 0;
  psm.PsmRotateParity = sw.ScanRotate & 4 ? 1 : 0;
  psm.PsmRotateStopBits = sw.ScanRotate & 8 ? 1 : 0;
  if (sw.ScanInterval) psm.PsmScanInterval = sw.ScanInterval;
  if (!sw.SendText.empty()) {
    state.Screen.SetTxText(sw.SendText);
    state.Screen.SetButtonPressed(core::strip::kPsmStrip + core::strip::kPsmTx, true);
  }
  automation::ShowPsmStrip(state);
  state.Queue.Post(core::MakeMessage(core::kWmStripCommand, core::strip::kPsmStrip + core::strip::kPsmStart));
}

void LoadStartConfiguration(core::AppState& state) {
  if (state.ProgramOptions.DEFAULTcfg != 1) config::ConfigLoad(state, state.CurrentConfigPath);
  const auto& sw = state.Switches;
  if (!sw.ConfigPath.empty()) {
    platform::SysResult failure;
    if (config::ConfigLoad(state, sw.ConfigPath, failure) == 0) {
      state.CurrentConfigPath = sw.ConfigPath;
    } else if (!failure) {
      // The load says nothing when the file cannot be opened; asked for by
      // name, that must not pass in silence.
      core::ShowStatusError(state, u"Config file not found [" + sw.ConfigPath + u"]", failure);
    }
  }
  // A line setting from the command line goes over the loaded one, and the
  // port opens as soon as the main window runs.
  if (sw.Baud) state.Port.SelectedBaud = sw.Baud;
  if (sw.DataBits) state.Port.SelectedDataBits = static_cast<uint8_t>(sw.DataBits);
  if (!sw.Parity.empty()) state.Port.Parity = sw.Parity;
  if (!sw.StopBits.empty()) state.Port.StopBits = sw.StopBits;
  ApplyRelaySwitch(state);
  ApplyRelayWindowSwitch(state);
  ApplyLogSwitches(state);
  if (sw.Reconnect) state.Port.ReopenPort = 1;
  state.PendingBreak = sw.SendBreak != 0;
  if (!sw.Port.empty()) state.Port.SelectedPort = sw.Port;
  core::PublishSettings(state);
  if (sw.Scan) {
    ApplyScanSwitches(state);
    return;
  }
  state.PendingSendText = sw.SendText;
  if (!sw.Port.empty()) state.Queue.Post(core::MakeMessage(core::kWmCommand, kPlay, core::kFromCommandLine));
}

}  // namespace

void ApplySettingsToScreen(core::AppState& state) {
  ShowViewMode(state);
  SetRadix(state, state.Data.Base);
  state.Screen.CheckMenuItem(kPauseRxDisplay, state.Data.PauseRxDisplay != 0);
  state.Screen.CheckMenuItem(kFullscreen, state.Data.RxFullScreen != 0);
  state.Screen.CheckMenuItem(kBacklightOnReceive, state.Data.RxBacklightEvent != 0);
}

void ConfigureAtStart(core::AppState& state) {
  state.CurrentConfigPath = state.ConfigFolder + u"/" + config::kDefaultConfigName;
  if (!state.Switches.SimSetting.empty())
    platform::ParseLineSetting(state.Switches.SimSetting, state.Simulated.SimulatedSetting);
  DiscoverPorts(state);
  config::TakeSettingsSnapshot(state);
  LoadStartConfiguration(state);
  ApplySettingsToScreen(state);
}

}  // namespace wavetrace::app
