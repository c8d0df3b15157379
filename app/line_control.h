#pragma once

#include <optional>
#include <string>

#include "core/app_state.h"
#include "platform/serial_port.h"

namespace wavetrace::app {

// The device a port stands for, to find it again after it went away: a
// slot's stable name (its /dev/serial/by-id link) when it has one, else the
// device path; a device path as given.
std::string DeviceIdentity(const core::AppState& state);

// The device of the open port went away (or the port named at start could
// not be opened) and the port is to be opened again when it comes back.
void BeginWaitingForDevice(core::AppState& state);
// STOP while waiting: the wait ends.
void CancelWaitingForDevice(core::AppState& state);
// Every 500 ms: a device waited for that is there again is opened with the
// same line setting; with --line-status a change of the lines or counters
// is reported.
void CheckPortLines(core::AppState& state);
// The opened state: the output lines start as the settings say.
void OnPortOpened(core::AppState& state);

// Command 239: a break of 250 ms (the end comes with the break timer).
void SendBreak(core::AppState& state);
void EndBreak(core::AppState& state);
// Commands 240, 241: RTS or DTR switched by hand while the port is open.
void ToggleModemLine(core::AppState& state, bool rts);

// The open port's line status; nothing while no port is open.
std::optional<platform::LineStatus> OpenPortLineStatus(core::AppState& state);
// Command 242: the line status strip shown or hidden.
void ToggleLineStatusStrip(core::AppState& state);
// The commands that act on an open port's lines: enabled only while one is open.
void EnableLineCommands(core::AppState& state, bool portOpen);

// "Line status: CTS on, DSR on, DCD off, RI off; framing errors 0, ..." with
// "n/a" for what the port cannot tell.
std::u16string LineStatusText(const platform::LineStatus& status);

}  // namespace wavetrace::app
