#include "platform/os_info.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <cstdlib>

namespace wavetrace::platform {

OsInfo GetOsInfo() {
  OsInfo info;
  utsname names{};
  if (uname(&names) != 0) return info;
  info.Valid = true;
  info.SystemName = names.sysname;
  char* end = nullptr;
  info.Major = static_cast<int>(std::strtol(names.release, &end, 10));
  if (end && *end == '.') info.Minor = static_cast<int>(std::strtol(end + 1, nullptr, 10));
  return info;
}

}  // namespace wavetrace::platform

namespace wavetrace::platform {

int64_t ProcessId() {
  return getpid();
}

}  // namespace wavetrace::platform
