#include "app/connection.h"

#include <cstring>

#include "app/line_control.h"
#include "app/main_window.h"
#include "app/startup.h"
#include "app/tray_notification.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "log/record_command.h"
#include "relay/network_relay.h"
#include "relay/window_relay.h"
#include "serial/port.h"

namespace wavetrace::app {

using namespace core::cmd;

namespace {

// --relay-window: the first listed window whose title holds the text.
void ChooseStartWindow(core::AppState& state) {
  const std::u16string& title = state.Switches.RelayWindowTitle;
  relay::WindowList list = relay::FillWindowList(state);
  // Without a display the relay's activation says why.
  if (list.Unavailable.empty() && !relay::ChooseWindowByTitle(state, list, title))
    core::ShowStatus(state, u"No listed window's title contains \"" + title + u"\"");
}

}  // namespace

void Play(core::AppState& state) {
  if (state.PortOpen) return;
  state.PlayFlag = true;
  state.Screen.EnableButton(kPlay, false);
  core::ShowStatus(state, u"Opening port...");
  auto failed = [&state](const char16_t* message, const platform::SysResult& failure) {
    serial::ClosePort(state);
    core::ShowStatusError(state, message, failure);
    state.PlayFlag = false;
    state.Screen.EnableButton(kPlay, true);
    state.Screen.EnableButton(kMenuBarPlay, true);
  };
  platform::SysResult failure;
  if (serial::ConfigurePort(state, failure) == 0) {
    failed(u"Error! Selected port failed to open. Check settings.", failure);
    return;
  }
  // A thread that cannot be resumed leaves no system code behind.
  if (!state.RxThread || !state.RxThread->Resume()) failed(u"Error resuming suspended RxThread.", {});
}

bool EndsWhenStartPortFails(const core::AppState& state) {
  return state.Switches.NoGui != 0 && state.Port.ReopenPort != 1;
}

void Stop(core::AppState& state) {
  // Waiting for a device that went away: STOP ends the wait.
  if (state.ReconnectWaiting && !state.PortOpen) {
    CancelWaitingForDevice(state);
    return;
  }
  state.TxActive = false;
  core::ShowStatus(state, u"Closing port...");
  serial::ClosePort(state);
  std::lock_guard lock(state.RxDataLock);
  if (!state.g_RxWindowBuf.Empty()) {
    std::memset(state.g_RxWindowBuf.Data(), 0, core::kRxWindowBufChars * sizeof(char16_t));
  }
}

void Send(core::AppState& state) {
  if (state.DisplayPower.PowerState == core::kDisplayPowerOff)
    state.Queue.Send(core::MakeMessage(core::kWmChar, 13));
  // With the port closed there is nothing to send to.
  if (!state.PortOpen) return;
  state.TxActive = true;
  if (!state.TxThread || !state.TxThread->Resume()) {
    core::ShowStatusError(state, u"Error resuming suspended TxThread.", {});
    state.TxActive = false;
    state.Screen.EnableButton(kSend, true);
    state.Screen.SetTxEnabled(true);
    state.Screen.GreyMenuItem(kClearSendHistory, false);
  }
}

void ToggleRepeat(core::AppState& state) {
  bool on = !state.TxRepeat;
  state.TxRepeat = on;
  state.Screen.SetButtonPressed(kRepeat, on);
  core::ShowStatus(state, on ? u"REPEAT Send activated." : u"REPEAT Send deactivated.");
  if (state.Screen.IsButtonEnabled(kSend)) state.Screen.SetFocus(kSend);
}

void ToggleRelay(core::AppState& state) {
  bool on = !state.RelayActive;
  state.RelayActive = on;
  state.Screen.SetButtonPressed(kRelay, on);
  if (on) {
    relay::RelayActivate(state);
  } else {
    relay::RelayDeactivate(state);
  }
}

void ShowOpenedState(core::AppState& state) {
  auto& screen = state.Screen;
  screen.EnableButton(kMenuBarPlay, false);
  screen.EnableButton(kPlay, false);
  for (int item : {kCommProperties, kConfigLoad, kRunScript}) screen.GreyMenuItem(item, true);
  ShellNotification(state, kNotifyActive);
  if (IsCommandAvailable(kSend)) screen.EnableButton(kSend, true);
  screen.EnableButton(kStop, true);
  core::ShowStatus(state, u"Port opened!  Send/Receive active...");
  BeginDataOnNewLine(state);
  if (screen.IsButtonEnabled(kSend)) screen.SetFocus(kSend);
  OnPortOpened(state);
  // --send-break: one break, as soon as the port is open.
  if (state.PendingBreak) {
    state.PendingBreak = false;
    SendBreak(state);
  }
  // --record: recording starts with the first opening, before any --send.
  if (state.PendingRecord) {
    state.PendingRecord = false;
    if (!state.RecordFlag) log::RecordOn(state);
  }
  // --send: the text goes out once, as soon as the port is open.
  if (!state.PendingSendText.empty()) {
    screen.SetTxText(state.PendingSendText);
    state.PendingSendText.clear();
    Send(state);
  }
  // --relay, --relay-window: received data goes to the server and the
  // window from the first block on.
  if (state.PendingRelay) {
    state.PendingRelay = false;
    if (!state.Switches.RelayWindowTitle.empty()) ChooseStartWindow(state);
    if (!state.RelayActive) ToggleRelay(state);
  }
}

void ShowClosedState(core::AppState& state) {
  auto port = serial::CurrentPort(state);
  bool deviceGone = port && port->HungUp();
  // The receive thread has parked on a device that vanished: let it go, so
  // the adapter can be plugged in again and opened with PLAY.
  if (deviceGone) serial::ClosePort(state);
  auto& screen = state.Screen;
  state.PlayFlag = false;
  screen.EnableButton(kMenuBarPlay, true);
  screen.SetFocus(kSend);
  screen.EnableButton(kSend, false);
  screen.EnableButton(kStop, false);
  screen.EnableButton(kPlay, true);
  // Only the communication properties come back; Load... and Run script stay
  // grey until something else enables them.
  if (IsCommandAvailable(kCommProperties)) screen.GreyMenuItem(kCommProperties, false);
  EnableLineCommands(state, false);
  ShellNotification(state, kNotifyIdle);
  if (deviceGone) {
    // A hang-up leaves no error code: the words say it all.
    core::ShowStatus(state, u"Port closed!  The device went away.");
    if (state.Port.ReopenPort == 1) BeginWaitingForDevice(state);
  } else {
    core::ShowStatus(state, u"Port closed!  Send/Receive deactivated.");
  }
}

}  // namespace wavetrace::app
