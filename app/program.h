#pragma once

#include <functional>

#include "app/command_line.h"
#include "core/app_state.h"

namespace wavetrace::app {

// Runs the program with the front end already attached to state.View:
// start-up, the message loop (messageLoop), and the end of the run. SIGINT
// and SIGTERM become command 211, so every run ends through the shutdown.
// Returns the process exit code (-1 when start-up failed).
int RunProgram(core::AppState& state, const std::function<int()>& messageLoop);

// --list-ports: discovery as at start-up, then the port table, a line a slot:
// slot, present, display name, device path.
std::string PortTableText(core::AppState& state);
int ListPorts();
// --list-windows: the window relay's list as the selector page shows it (the
// default configuration's "Show Class names"), a window a line; 1 with the
// reason on standard error when there is no X display to list.
int ListWindows();

// The whole headless program on standard output and standard error.
int RunHeadless(const CommandLine& commandLine);

}  // namespace wavetrace::app
