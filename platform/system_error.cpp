#include "platform/system_error.h"

#include <cerrno>
#include <cstring>

namespace wavetrace::platform {

int LastError() {
  return errno;
}

void SetLastError(int code) {
  errno = code;
}

std::string ErrorText(int code) {
  char buffer[256] = {};
  // The GNU strerror_r may return a static text instead of filling buffer.
  const char* text = strerror_r(code, buffer, sizeof buffer);
  return text ? text : buffer;
}

bool IsDeviceBusyOrGone(int code) {
  return code == EBUSY || code == ENODEV || code == ENXIO || code == EIO;
}

}  // namespace wavetrace::platform
