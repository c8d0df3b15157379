#pragma once

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
