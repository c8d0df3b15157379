#pragma once

#include <termios.h>

#include <string>

#include "platform/serial_port.h"

namespace wavetrace::platform {

// The termios form of a line setting: raw (binary) mode, the character
// format, flow control, and the rate (standard through cfsetspeed, any other
// through termios2 BOTHER).
struct TermiosRecord {
  termios Tio{};
  speed_t StandardSpeed = 0;  // the B constant, 0 when the rate is custom
  uint32_t Rate = 0;
  bool Custom = false;
};

// Fills record from settings (starting from the driver's current record).
// Returns an empty text on success, else what cannot be done.
std::string MakeTermios(const LineSettings& settings, const termios& current, TermiosRecord& record);
// The B constant of a standard rate, or 0.
speed_t StandardSpeed(uint32_t rate);

}  // namespace wavetrace::platform
