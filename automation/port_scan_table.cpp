#include "automation/port_scan_table.h"

#include <algorithm>

namespace wavetrace::automation {
namespace {

template <typename List, typename Value>
size_t StartIndex(const List& list, const Value& value) {
  auto found = std::find(list.begin(), list.end(), value);
  return found == list.end() ? 0 : static_cast<size_t>(found - list.begin());
}

// A rotated index advances by one and wraps back to where it started.
void Advance(size_t& index, size_t start, size_t length, bool rotated) {
  if (rotated && ++index >= length) index = start;
}

}  // namespace

std::vector<ScanEntry> BuildScanTable(const core::PortSettings& port, const ScanRotation& rotate) {
  std::vector<uint32_t> bauds(kScanBauds.begin(), kScanBauds.end());
  if (port.CustomBauds_count == 1) bauds.push_back(port.CustomBaud_01);
  std::vector<std::u16string> parities(kScanParities.begin(), kScanParities.end());
  std::vector<std::u16string> stopBits(kScanStopBits.begin(), kScanStopBits.end());

  size_t baudStart = StartIndex(bauds, port.SelectedBaud);
  size_t dataStart = StartIndex(kScanDataBits, port.SelectedDataBits);
  size_t parityStart = StartIndex(parities, port.Parity);
  size_t stopStart = StartIndex(stopBits, port.StopBits);

  size_t baudSteps = bauds.size() - baudStart;
  size_t total = 1;
  if (rotate.Baud) total *= baudSteps;
  if (rotate.DataBits) total *= kScanDataBits.size() - dataStart;
  if (rotate.Parity) total *= parities.size() - parityStart;
  if (rotate.StopBits) total *= stopBits.size() - stopStart;
  total = std::min(total, kMaxScanEntries);

  std::vector<ScanEntry> table(total);
  size_t perRate = total / baudSteps;
  size_t data = dataStart, parity = parityStart, stop = stopStart;
  size_t entry = 0;
  for (size_t step = 0; step < baudSteps; ++step) {
    uint32_t baud = bauds[rotate.Baud ? baudStart + step : baudStart];
    for (; entry < (step + 1) * perRate; ++entry) {
      table[entry] = {baud, kScanDataBits[data], parities[parity], stopBits[stop]};
      Advance(data, dataStart, kScanDataBits.size(), rotate.DataBits);
      Advance(parity, parityStart, parities.size(), rotate.Parity);
      Advance(stop, stopStart, stopBits.size(), rotate.StopBits);
    }
  }
  return table;
}

}  // namespace wavetrace::automation
