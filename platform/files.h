#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::platform {

// The folder that takes the place of the program folder: $WAVETRACE_HOME,
// else $XDG_CONFIG_HOME/wavetrace-pro, else ~/.config/wavetrace-pro.
// Without trailing slash. Not created here.
std::string ConfigFolder();
// The user's documents folder: $XDG_DOCUMENTS_DIR, else ~/Documents when it
// exists, else the home folder.
std::string DocumentsFolder();

// The folder of the running executable (from /proc/self/exe), without
// trailing slash; empty when the system does not say.
std::string ExecutableFolder();

// Creates the folder and its parents; succeeds when it exists afterwards.
SysResult MakeFolders(const std::string& path);
bool FileExists(const std::string& path);
// The running program's file (/proc/self/exe); empty when it cannot be read.
std::string ExecutablePath();
// Size in bytes of a file that can be examined (a folder cannot).
SysResult FileSize(const std::string& path, uint64_t& size);
// The whole file.
SysResult ReadWholeFile(const std::string& path, std::string& contents);
// The whole file, or nothing when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);
// Writes a temporary file beside path and renames it over path, so a full
// disk or a crash never leaves a half-written file.
SysResult WriteFileAtomically(const std::string& path, const std::string& contents);

}  // namespace wavetrace::platform
