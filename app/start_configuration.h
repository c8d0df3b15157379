#pragma once

#include "core/app_state.h"

namespace wavetrace::app {

// Check marks and buttons that follow the settings (after a load).
void ApplySettingsToScreen(core::AppState& state);

// The main window's start configuration: the configuration path, the
// simulated device's setting from the command line, port discovery, the
// settings snapshot, the default configuration (unless DEFAULTcfg is 1),
// then the one named on the command line with the command line's line
// setting over it, and the screen following the result.
void ConfigureAtStart(core::AppState& state);

}  // namespace wavetrace::app
