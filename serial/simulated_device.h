#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/serial_port.h"

namespace wavetrace::serial {

// The device path that stands for the simulated device in the port table.
inline constexpr char kSimulatedDevicePath[] = "(simulated device)";

struct SimulatedProfile {
  platform::LineSettings Line{4800, 8, platform::Parity::kNone, platform::StopBits::kOne};
  int SentenceIntervalMs = 1000;
  bool Echo = true;
};

// "9600,7,E,1": speed, data bits, parity (N, O, E, M, S), stop bits (1, 1.5, 2).
bool ParseLineSetting(const std::string& text, platform::LineSettings& line);
std::string FormatLineSetting(const platform::LineSettings& line);

// What the device sends in second n after the port opened: a GGA and an RMC
// sentence with their checksums.
std::string SimulatedSentences(uint32_t second);

// A GPS-like device inside the program, behind the port interface. It sends
// its sentences at its own line rate and setting; the port reads them through
// a UART model, so a port set differently reads what a real mismatched UART
// would. It answers lines beginning with "AT" with "OK" and echoes other lines.
std::unique_ptr<platform::SerialPort> OpenSimulatedDevice(const SimulatedProfile& profile);

}  // namespace wavetrace::serial
