#pragma once

#include "core/app_state.h"

namespace wavetrace::app {

// PLAY (6001): open and configure the selected port, then resume the receive
// thread, which reports the opened state.
void Play(core::AppState& state);
// Whether a port named on the command line that fails to open at start ends
// the run (with kStartPortFailedExitCode): so in a run without a window. A
// run told to wait for its device would answer false here.
bool EndsWhenStartPortFails(const core::AppState& state);
// STOP (6002): end a repeat run, close the port; the receive thread then
// reports the closed state.
void Stop(core::AppState& state);
// SEND (5080): the transmit thread sends the transmit field's text (once, or
// as a repeat run when REPEAT is on). The display comes on first.
void Send(core::AppState& state);
// REPEAT (6003): switches repeat sending on or off.
void ToggleRepeat(core::AppState& state);
// RELAY (6005): switches the relays on or off.
void ToggleRelay(core::AppState& state);
// WM_RX_ACTIVE: the opened state.
void ShowOpenedState(core::AppState& state);
// WM_RX_SUSPENDED: the closed state. A port whose device went away is
// released here and the status line says so.
void ShowClosedState(core::AppState& state);

}  // namespace wavetrace::app
