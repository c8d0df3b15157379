#include "platform/system_error.h"

#include <cerrno>
#include <cstring>

namespace wavetrace::platform {

SysResult FailedCall(const char* operation) {
  return {errno, operation};
}

SysResult OutOfMemory() {
  return {ENOMEM, "allocate"};
}

std::string ErrorText(int code) {
  char buffer[256] = {};
  // The GNU strerror_r may return a static text instead of filling buffer.
  const char* text = strerror_r(code, buffer, sizeof buffer);
  return text ? text : buffer;
}

bool IsDeviceBusyOrGone(const SysResult& result) {
  int code = result.Errno;
  // Another program's lock on the port answers "would block": it is busy.
  bool locked =
      result.Operation && std::strcmp(result.Operation, kLockPortOperation) == 0 && code == EWOULDBLOCK;
  return locked || code == EBUSY || code == ENODEV || code == ENXIO || code == EIO;
}

bool IsPortAccessDenied(const SysResult& result) {
  return result.Operation && std::strcmp(result.Operation, kOpenPortOperation) == 0 &&
         (result.Errno == EACCES || result.Errno == EPERM);
}

}  // namespace wavetrace::platform
