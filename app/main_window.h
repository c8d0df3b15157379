#pragma once

#include <cstdint>
#include <string>

#include "core/app_state.h"

namespace wavetrace::app {

// Creates the logical main window: installs its message handler, runs the
// create handler (worker threads, controls, keep-alive timer, configuration
// path). 0 on success, -1 on failure (the failure has been reported).
int CreateMainWindow(core::AppState& state);

// The main window procedure: commands and thread messages, on the main thread.
int64_t MainWindowProc(core::AppState& state, const core::Message& message);

// Command 211: the shutdown order, ending with the quit message that carries
// exitCode.
void Shutdown(core::AppState& state, int exitCode = 0);

// False for commands whose features the program does not have yet (their
// items and buttons stay grey).
bool IsCommandAvailable(int command);

// What a configuration saved under a name without an extension is called:
// the name with ".cfg.txt".
std::u16string WithConfigExtension(const std::u16string& path);

// PLAY while no port is selected (a first run), with a user at the window:
// the status line asks for a port and the communication properties open.
// True when there is still no port to open afterwards (PLAY does nothing);
// false when PLAY goes on, with the port chosen there.
inline constexpr char16_t kChoosePortText[] =
    u"No port selected: choose a port on the Port page of the Communication Properties.";
bool ChoosePortBeforePlay(core::AppState& state);

// The closed state shown when no port is open (also the state at start).
void ShowClosedControls(core::AppState& state);
// The radix commands (2, 8, 10, 16) and the ASCII/BINARY view buttons: the
// setting with its check marks and buttons.
void SetRadix(core::AppState& state, int base);
void SetViewMode(core::AppState& state, bool ascii);
// The ASCII and BINARY buttons follow the two view flags: a button is greyed
// while its view is the only one on. A loaded file may have both off (or
// both on); showing it never rewrites what it holds.
void ShowViewMode(core::AppState& state);

}  // namespace wavetrace::app
