#pragma once

#include <cstdint>

#include "platform/serial_port.h"

namespace wavetrace::core {

// The simulated device on VSP0: whether it is listed, its own line setting and
// behaviour. Fields are named by their program-options value; these are the
// defaults when the registry holds none.
struct SimulatedProfile {
  bool SimulatedDevice = true;
  platform::LineSettings SimulatedSetting{4800, 8, platform::Parity::kNone, platform::StopBits::kOne};
  int32_t SimulatedSentenceMs = 1000;
  bool SimulatedEcho = true;
};

}  // namespace wavetrace::core
