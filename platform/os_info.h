#pragma once

#include <cstdint>
#include <string>

namespace wavetrace::platform {

struct OsInfo {
  bool Valid = false;
  std::string SystemName;  // "Linux"
  int Major = 0;
  int Minor = 0;
};

OsInfo GetOsInfo();

}  // namespace wavetrace::platform

namespace wavetrace::platform {

// This process's id (windows that carry it in _NET_WM_PID are the program's own).
int64_t ProcessId();

}  // namespace wavetrace::platform
