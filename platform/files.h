#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace wavetrace::platform {

// The folder that takes the place of the program folder: $WAVETRACE_HOME,
// else $XDG_CONFIG_HOME/wavetrace-pro, else ~/.config/wavetrace-pro.
// Without trailing slash. Not created here.
std::string ConfigFolder();
// The user's documents folder ($XDG_DOCUMENTS_DIR, else the home folder).
std::string DocumentsFolder();

// Creates the folder and its parents; true when it exists afterwards.
bool MakeFolders(const std::string& path);
bool FileExists(const std::string& path);
// Size in bytes, or nothing when the file cannot be examined (errno tells why).
std::optional<uint64_t> FileSize(const std::string& path);
// Whole file, or nothing when it cannot be read (errno tells why).
std::optional<std::string> ReadWholeFile(const std::string& path);
// Writes a temporary file beside path and renames it over path, so a full
// disk or a crash never leaves a half-written file. False with errno set.
bool WriteFileAtomically(const std::string& path, const std::string& contents);

}  // namespace wavetrace::platform
