#pragma once

#include <string_view>

namespace wavetrace::platform {

// The standard descriptors, for code that may not include the system headers.
inline constexpr int kStandardInput = 0;
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

// Writes all of data to the descriptor, retrying short writes. False when the
// descriptor refuses (closed pipe, full disk).
bool WriteAll(int fd, std::string_view data);

// Whether the descriptor is a terminal.
bool IsTerminal(int fd);
// Whether the user's locale (LC_ALL, else LC_CTYPE, else LANG) writes UTF-8.
bool LocaleIsUtf8();

}  // namespace wavetrace::platform
