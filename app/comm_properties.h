#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/app_state.h"

namespace wavetrace::app {

// Applies what the communication properties pages hold; state.Port is still
// what they opened with. When the port was changed back to the one the last
// configuration load named, its line setting (speed, format and the flow
// flags) returns with it, except the values changed in the same visit.
// Always 1.
int ApplyPortPages(core::AppState& state, const core::PortSettings& edited);

// One line of the port list: "COM3:  USB Serial  (/dev/ttyUSB0)". A port
// inside the program has a bracketed name for a path and keeps its one pair.
std::u16string PortListLine(int slot, const std::u16string& friendlyName, const std::string& devicePath);

// The slots the port list shows: those present or standing for a device.
std::vector<int> ListedSlots(const core::PortSettings& port,
                             const std::array<std::string, core::kPortSlots>& devicePaths);
// The slot the port list selects: the selected port's, else, while no port
// is selected and the list holds one port only (often the simulated
// device), that one; -1 for none.
int PreselectedSlot(const core::PortSettings& port,
                    const std::array<std::string, core::kPortSlots>& devicePaths);

// Sets the line speed; a rate the baud list does not offer becomes the one
// custom rate.
void SetBaud(core::PortSettings& port, uint32_t baud);
bool IsStandardBaud(uint32_t baud);

// The rates the baud list offers; any other is entered as the custom rate.
inline constexpr uint32_t kStandardBauds[] = {110,   300,   600,   1200,   2400,   4800,   9600,  14400,
                                              19200, 38400, 57600, 115200, 230400, 460800, 921600};

}  // namespace wavetrace::app
