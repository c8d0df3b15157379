#pragma once

#include <string>

namespace wavetrace::platform {

// The calling thread's last system error code (errno).
int LastError();
void SetLastError(int code);
// The system's own description of a code ("No such file or directory").
std::string ErrorText(int code);
// Codes that mean the device is busy or has gone away.
bool IsDeviceBusyOrGone(int code);

}  // namespace wavetrace::platform
