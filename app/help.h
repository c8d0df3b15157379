#pragma once

#include <string>

#include "core/app_state.h"

namespace wavetrace::app {

// The HTML manual's first page.
inline constexpr const char* kManualPage = "index.html";
// The place in it that Help opens.
inline constexpr const char* kManualContents = "Main_Contents";

// Where Help finds the manual, given the executable's folder: installed, in
// the documentation folder beside the executables' (kManualFromBinDir, so
// <prefix>/share/doc/wavetrace-pro/manual for <prefix>/bin); else, run from a
// build folder, its docs/manual, which links the source tree's; else the
// source folder's docs/manual (a program run from elsewhere in its build
// tree). The page's path, or empty when none holds it.
std::string FindManual(const std::string& executableFolder, const std::string& sourceFolder);
// FindManual for this program.
std::string ManualPath();

// Help (503): opens the manual in the view's browser; the status line says
// where it is when the view cannot open it, and when it is not there.
void ShowHelp(core::AppState& state);

}  // namespace wavetrace::app
