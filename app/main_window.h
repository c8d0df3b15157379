#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::app {

// Start-bar notification operations.
inline constexpr int kNotifyAdd = 100;
inline constexpr int kNotifyRemove = 130;
inline constexpr int kNotifyActive = 140;
inline constexpr int kNotifyIdle = 145;

// Creates the logical main window: installs its message handler, runs the
// create handler (worker threads, controls, keep-alive timer, configuration
// path). 0 on success, -1 on failure (the failure has been reported).
int CreateMainWindow(core::AppState& state);

// The main window procedure: commands and thread messages, on the main thread.
int64_t MainWindowProc(core::AppState& state, const core::Message& message);

// The start-bar notification and tray icon; returns whether it is enabled.
bool ShellNotification(core::AppState& state, int operation);

// Command 211: the shutdown order, ending with the quit message.
void Shutdown(core::AppState& state);

// False for commands whose features the program does not have yet (their
// items and buttons stay grey).
bool IsCommandAvailable(int command);

// The closed state shown when no port is open (also the state at start).
void ShowClosedControls(core::AppState& state);
// Check marks and buttons that follow the settings (after a load).
void ApplySettingsToScreen(core::AppState& state);
// The default configuration (unless DEFAULTcfg is 1), then the one named on
// the command line.
void LoadStartConfiguration(core::AppState& state);

}  // namespace wavetrace::app
