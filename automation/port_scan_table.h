#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/settings.h"

namespace wavetrace::automation {

// One line setting the scan opens the port with. An empty entry (baud 0,
// data bits 0, empty texts) is stepped through like any other.
struct ScanEntry {
  uint32_t Baud = 0;
  uint8_t DataBits = 0;
  std::u16string Parity;
  std::u16string StopBits;

  bool operator==(const ScanEntry&) const = default;
};

// Which dimensions the scan varies (the "Rotate through:" boxes).
struct ScanRotation {
  bool Baud = false;
  bool DataBits = false;
  bool Parity = false;
  bool StopBits = false;
};

inline constexpr std::array<uint32_t, 16> kScanBauds = {75,   110,  150,  300,   600,   1200,  1800,  2400,
                                                        4800, 7200, 9600, 14400, 19200, 38400, 57600, 115200};
inline constexpr std::array<uint8_t, 4> kScanDataBits = {8, 7, 6, 5};
inline constexpr std::array<const char16_t*, 5> kScanParities = {u"None", u"Odd", u"Even", u"Mark", u"Space"};
inline constexpr std::array<const char16_t*, 3> kScanStopBits = {u"1", u"1.5", u"2"};
inline constexpr size_t kMaxScanEntries = 1260;

// The combinations from the port's current line setting on: each dimension
// starts at the current value (the first entry when the value is not in its
// list) and never goes back before it. A rotated baud rate steps once per
// block of entries; the rotated data bits, parity and stop bits advance
// together, one step per entry, each wrapping to its start. Entries the
// blocks do not reach stay empty. The table holds exactly the total count.
std::vector<ScanEntry> BuildScanTable(const core::PortSettings& port, const ScanRotation& rotate);

}  // namespace wavetrace::automation
