#pragma once

#include <string>

namespace wavetrace::platform {

// The outcome of a port, file, lock or socket operation. A failure carries the
// errno of the call that failed, read right there, and the call's name; a
// refusal that is the program's own (a line setting Linux cannot run) has the
// name and code 0. Nothing else ever reads or writes errno for a report.
struct SysResult {
  int Errno = 0;
  const char* Operation = nullptr;  // null: the operation succeeded

  [[nodiscard]] bool Ok() const { return Operation == nullptr; }
  explicit operator bool() const { return Ok(); }
};

// The failure of the call just made: errno, read at once, and its name.
SysResult FailedCall(const char* operation);
// An allocation that could not be had.
SysResult OutOfMemory();

// Operation names that the reports look at.
inline constexpr char kOpenPortOperation[] = "open";
inline constexpr char kLockPortOperation[] = "flock";

// The system's own description of a code ("No such file or directory").
std::string ErrorText(int code);
// The device is busy (held by another program) or has gone away.
bool IsDeviceBusyOrGone(const SysResult& result);
// The port exists but the user may not open it (not in the dialout group).
bool IsPortAccessDenied(const SysResult& result);

}  // namespace wavetrace::platform
