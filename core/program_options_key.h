#pragma once

#include <cstdint>
#include <string>

namespace wavetrace::core {

// The program options kept in the registry, with the release that wrote them.
struct ProgramOptionsKey {
  std::string Root = "HKEY_LOCAL_MACHINE";
  std::u16string Path = u"SOFTWARE\\Tarnwell\\Wavetrace Pro";
  int32_t Disposition = 0;  // 1 when the last open created the key
  int32_t ValueSize = 4;
  int32_t LastResult = 0;

  uint32_t MajorVersion = 0;
  uint32_t MinorVersion = 0;

  uint32_t DEFAULTcfg = 0;
  uint32_t MULTIinst = 0;
  uint32_t AcquireHWbuttons = 0;
  uint32_t DisableIcon = 0;
};

}  // namespace wavetrace::core
