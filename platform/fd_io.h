#pragma once

#include <string_view>

namespace wavetrace::platform {

// Writes all of data to the descriptor, retrying short writes. False when the
// descriptor refuses (closed pipe, full disk).
bool WriteAll(int fd, std::string_view data);

}  // namespace wavetrace::platform
