#pragma once

#include <cstdint>

#include "platform/system_error.h"

namespace wavetrace::platform {

// Sets both directions of the terminal fd to any rate through termios2 and
// BOTHER (kept apart: the kernel's termios headers clash with the C library's).
SysResult SetCustomRate(int fd, uint32_t rate);
// The output rate the driver holds now, 0 when it cannot be read.
uint32_t CurrentRate(int fd);

}  // namespace wavetrace::platform
