#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/simulated_profile.h"
#include "platform/serial_port.h"

namespace wavetrace::serial {

// The device path that stands for the simulated device in the port table.
inline constexpr char kSimulatedDevicePath[] = "(simulated device)";

// What the device sends in second n after the port opened: a GGA and an RMC
// sentence with their checksums.
std::string SimulatedSentences(uint32_t second);

// A GPS-like device inside the program, behind the port interface. It sends
// its sentences at its own line rate and setting; the port reads them through
// a UART model, so a port set differently reads what a real mismatched UART
// would. It answers lines beginning with "AT" with "OK" and echoes other lines.
std::unique_ptr<platform::SerialPort> OpenSimulatedDevice(const core::SimulatedProfile& profile);

}  // namespace wavetrace::serial
