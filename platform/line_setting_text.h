#pragma once

#include <string>

#include "platform/serial_port.h"

namespace wavetrace::platform {

// "9600,7,E,1": speed, data bits, parity (N, O, E, M, S), stop bits (1, 1.5, 2).
// A text that does not name a setting the port layer can apply leaves line
// unchanged and returns false.
bool ParseLineSetting(const std::string& text, LineSettings& line);
std::string FormatLineSetting(const LineSettings& line);

}  // namespace wavetrace::platform
