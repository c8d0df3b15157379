#include "app/line_control.h"

#include "app/connection.h"
#include "core/code_page.h"
#include "core/decimal_text.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/files.h"
#include "serial/port.h"

namespace wavetrace::app {
namespace {

using namespace core::cmd;

std::u16string WaitingText(const core::AppState& state) {
  return u"Port closed!  Waiting for the device to come back [" + core::Utf8ToWide(state.ReconnectPath) +
         u"]...";
}

// Opens the device waited for if it is there again; the wait goes on when
// it does not open yet (udev may still be setting it up).
void TryReopen(core::AppState& state) {
  if (!platform::FileExists(state.ReconnectPath)) return;
  // A slot follows its stable name to whatever device node it has now.
  int slot = core::PortSlotOfName(state.Port.SelectedPort);
  if (slot >= 0 && !state.PortStablePath[static_cast<size_t>(slot)].empty())
    state.PortDevicePath[static_cast<size_t>(slot)] = state.ReconnectPath;
  state.Reopening = true;
  Play(state);
  if (state.PlayFlag) {
    state.ReconnectWaiting = false;
    return;
  }
  state.Reopening = false;
  state.Screen.EnableButton(kStop, true);
}

void ReportLineStatus(core::AppState& state) {
  auto port = serial::CurrentPort(state);
  if (!port || !state.Screen.IsButtonEnabled(kStop)) return;
  platform::LineStatus status = port->ReadLineStatus();
  if (state.LineStatusShown && status == state.ShownLineStatus) return;
  state.ShownLineStatus = status;
  state.LineStatusShown = true;
  core::ShowStatus(state, LineStatusText(status));
}

std::u16string OnOff(bool on) {
  return on ? u" on" : u" off";
}

}  // namespace

std::string DeviceIdentity(const core::AppState& state) {
  int slot = core::PortSlotOfName(state.Port.SelectedPort);
  if (slot >= 0 && !state.PortStablePath[static_cast<size_t>(slot)].empty())
    return state.PortStablePath[static_cast<size_t>(slot)];
  return serial::ResolvePortPath(state);
}

void BeginWaitingForDevice(core::AppState& state) {
  if (state.ReconnectPath.empty()) state.ReconnectPath = DeviceIdentity(state);
  // The simulated device never goes away; a name that stands for nothing
  // cannot come back.
  if (state.ReconnectPath.empty() || state.ReconnectPath[0] != '/') return;
  state.ReconnectWaiting = true;
  state.Screen.EnableButton(kStop, true);
  core::ShowStatus(state, WaitingText(state));
}

void CancelWaitingForDevice(core::AppState& state) {
  state.ReconnectWaiting = false;
  state.Screen.EnableButton(kStop, false);
  core::ShowStatus(state, u"Port closed!  Send/Receive deactivated.");
}

void CheckPortLines(core::AppState& state) {
  if (state.ReconnectWaiting && !state.PortOpen) TryReopen(state);
  if (state.Switches.LineStatus) ReportLineStatus(state);
}

void OnPortOpened(core::AppState& state) {
  EnableLineCommands(state, true);
  state.ReconnectWaiting = false;
  state.ReconnectPath = DeviceIdentity(state);
  state.RtsOn = state.Port.RTS == 1;
  state.DtrOn = state.Port.DTR == 1;
  state.Screen.CheckMenuItem(kToggleRts, state.RtsOn);
  state.Screen.CheckMenuItem(kToggleDtr, state.DtrOn);
  state.LineStatusShown = false;
  if (state.Reopening) {
    state.Reopening = false;
    core::ShowStatus(state, u"Port opened again!  The device came back; Send/Receive active...");
  }
}

void SendBreak(core::AppState& state) {
  auto port = serial::CurrentPort(state);
  if (!port) {
    core::ShowStatus(state, u"Port closed!  No break sent.");
    return;
  }
  if (platform::SysResult failure = port->SetBreak(true); !failure) {
    core::ShowStatusError(state, u"Error sending a break.", failure);
    return;
  }
  state.Queue.SetTimer(core::kBreakTimerId, core::kBreakMs);
}

void EndBreak(core::AppState& state) {
  state.Queue.KillTimer(core::kBreakTimerId);
  auto port = serial::CurrentPort(state);
  if (!port) return;
  port->SetBreak(false);
  core::ShowStatus(state, u"Break sent.");
}

void ToggleModemLine(core::AppState& state, bool rts) {
  auto port = serial::CurrentPort(state);
  if (!port) return;
  bool& on = rts ? state.RtsOn : state.DtrOn;
  on = !on;
  port->SetModemLine(rts, on);
  state.Screen.CheckMenuItem(rts ? kToggleRts : kToggleDtr, on);
  core::ShowStatus(state, std::u16string(rts ? u"RTS" : u"DTR") + OnOff(on) + u".");
}

std::optional<platform::LineStatus> OpenPortLineStatus(core::AppState& state) {
  auto port = serial::CurrentPort(state);
  if (!port) return std::nullopt;
  return port->ReadLineStatus();
}

void ToggleLineStatusStrip(core::AppState& state) {
  bool shown = !state.Screen.StripShown(core::strip::kLineStatusStrip);
  state.Screen.ShowStrip(core::strip::kLineStatusStrip, shown);
  state.Screen.CheckMenuItem(kLineStatus, shown);
}

void EnableLineCommands(core::AppState& state, bool portOpen) {
  for (int item : {kSendBreak, kToggleRts, kToggleDtr}) state.Screen.GreyMenuItem(item, !portOpen);
}

std::u16string LineStatusText(const platform::LineStatus& s) {
  std::u16string text = u"Line status: ";
  if (s.LinesKnown) {
    text += u"CTS" + OnOff(s.Cts) + u", DSR" + OnOff(s.Dsr) + u", DCD" + OnOff(s.Dcd) + u", RI" + OnOff(s.Ri);
  } else {
    text += u"modem lines n/a";
  }
  text += u"; ";
  if (s.CountersKnown) {
    text += u"framing errors " + core::DecimalText(s.Frame) + u", parity errors " +
            core::DecimalText(s.Parity) + u", overruns " + core::DecimalText(s.Overrun) +
            u", buffer overruns " + core::DecimalText(s.BufferOverrun) + u", breaks " +
            core::DecimalText(s.Breaks);
  } else {
    text += u"error counters n/a";
  }
  return text;
}

}  // namespace wavetrace::app
