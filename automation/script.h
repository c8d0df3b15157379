#pragma once

#include <string>

#include "core/app_state.h"
#include "platform/system_error.h"

namespace wavetrace::automation {

// Reads a script file and converts it from the code page. 0 on success; -1
// when it cannot be read (failure says why) or holds nothing (failure clear).
int LoadScript(const std::u16string& path, std::u16string& text, platform::SysResult& failure);

// Starts the automation thread on a loaded script: 0 when it runs, -1 when
// it could not be started (reported). A script already running is not
// replaced: -1.
int StartScriptThread(core::AppState& state, std::u16string text);
// LoadScript, then StartScriptThread ("Run script"): 0 or -1. A file that
// cannot be read or is empty starts nothing, silently.
int StartScript(core::AppState& state, const std::u16string& path);

// Ends a running script at its next check and waits for its thread, serving
// the steps it waits for meanwhile (on the main thread).
void EndScript(core::AppState& state);

}  // namespace wavetrace::automation
