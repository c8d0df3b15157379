#pragma once

#include "core/app_state.h"

namespace wavetrace::app {

// Command 235: the display goes dark while the program goes on working.
void DisplayOff(core::AppState& state);
// Enter (character 13) while the program has the display off, and shutdown.
void DisplayOn(core::AppState& state);
// The keep-alive timer (every 500 ms): while a port is open the machine must
// not idle into sleep, and a display switched off by the program comes back
// when the window is not the active one.
void KeepAlive(core::AppState& state);

}  // namespace wavetrace::app
