#pragma once

#include <string>
#include <vector>

#include "core/app_state.h"
#include "platform/os_info.h"

namespace wavetrace::app {

// The start-up's operating-system test: the system must be Linux.
bool IsSupportedPlatform(const platform::OsInfo& os);

// 0 when the registry holds this release; leaves the numbers read in
// state.ProgramOptions.
int CheckVersionInRegistry(core::AppState& state);
std::u16string VersionMismatchText(const core::AppState& state);

// The window titles tried, in order, when several instances are allowed:
// the plain title, then "%s#%d" for 2..30.
std::vector<std::u16string> InstanceTitleCandidates(const std::u16string& plainTitle);
// Sets the title and applies the single-instance rule: 0 on success, 1 when
// another instance has the title (it was asked to come to the front), -1 on
// failure.
int InitInstance(core::AppState& state);

// The welcome text, piece by piece, as the first paint inserts it.
std::vector<std::u16string> WelcomeTextPieces(bool automationMode, const std::u16string& scriptPath);
// The first paint: writes the welcome text once (first-paint state 2). A
// stream that is not a terminal has no use for it (welcome false).
void OnFirstPaint(core::AppState& state, bool welcome = true);
// When the port opens on the welcome text with the caret after it, a line
// end goes after the text, so that the data begins on a line of its own.
void BeginDataOnNewLine(core::AppState& state);

// "Rel. 2.71.3089  (11.2008)" as the About screen shows it.
std::u16string AboutReleaseLine();

// The start-up sequence up to the message loop. Returns 0 when the loop is
// to run, -1 when the program must end (a failure, or another instance took
// over). The front end has been attached as state.View.
int StartUp(core::AppState& state, const platform::OsInfo& os);

// Ends a run whose message loop has returned; returns the exit code.
int AfterMessageLoop(core::AppState& state);

}  // namespace wavetrace::app
