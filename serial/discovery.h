#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/app_state.h"

namespace wavetrace::serial {

// Where discovery looks; tests hand it a fake tree.
struct DiscoverySources {
  std::string SysClassTty = "/sys/class/tty";
  std::string SerialById = "/dev/serial/by-id";
  std::string DevFolder = "/dev";
};

// One terminal device that stands for a serial port.
struct TtyDevice {
  std::string Name;        // "ttyUSB0"
  std::string DevicePath;  // "/dev/ttyUSB0"
  std::string StableName;  // its /dev/serial/by-id name, else Name
  std::string Product;     // USB product text, if any
  bool Bluetooth = false;  // an rfcomm device
  bool Gps = false;        // identifies as a GPS receiver
};

// The serial devices of the machine: ttys backed by a device (phantom 8250
// ports, whose type is unknown, dropped) and rfcomm devices, in a stable order.
std::vector<TtyDevice> ScanTtyDevices(const DiscoverySources& sources);

// The display name rule: a name with any character below "0" or above "z"
// other than a blank is not shown (empty).
std::u16string VetDisplayName(const std::u16string& name);

// The COM number (1..9) each device was given, by its stable name.
using PortNumbers = std::map<std::string, uint32_t>;

// Fills the port table: COM1..COM9 from the devices (a device keeps the
// number it had before, found in numbers by its stable name; a newcomer's
// number is added there), VSP slots from the virtual ports of the program
// options. COM0 is never present. Always 1.
int DiscoverPorts(core::AppState& state, PortNumbers& numbers, const DiscoverySources& sources = {});

}  // namespace wavetrace::serial
