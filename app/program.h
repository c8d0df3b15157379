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

// The whole headless program on standard output and standard error.
int RunHeadless(const CommandLine& commandLine);

}  // namespace wavetrace::app
