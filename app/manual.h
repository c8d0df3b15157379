#pragma once

#include <string>

namespace wavetrace::app {

// Where the manual's first page lies below an installation prefix.
inline constexpr const char* kInstalledManual = "share/doc/wavetrace-pro/manual/index.html";
// ... and in the source folder.
inline constexpr const char* kSourceManual = "docs/manual/index.html";

// The manual's first page: the installed copy beside the program (the prefix
// is the folder above the executable's folder), else the copy in the source
// folder the program was built from. Empty when neither exists.
std::string FindManual(const std::string& executablePath, const std::string& sourceFolder);
// FindManual for this program.
std::string ManualPath();

}  // namespace wavetrace::app
