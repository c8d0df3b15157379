#include "app/comm_properties.h"

#include <algorithm>

#include "core/code_page.h"

namespace wavetrace::app {

bool IsStandardBaud(uint32_t baud) {
  return std::find(std::begin(kStandardBauds), std::end(kStandardBauds), baud) != std::end(kStandardBauds);
}

void SetBaud(core::PortSettings& port, uint32_t baud) {
  port.SelectedBaud = baud;
  if (IsStandardBaud(baud)) return;
  port.CustomBaud_01 = baud;
  port.CustomBauds_count = 1;
}

std::u16string PortListLine(int slot, const std::u16string& friendlyName, const std::string& devicePath) {
  std::u16string line = core::PortSlotName(slot);
  if (!friendlyName.empty()) line += u"  " + friendlyName;
  if (devicePath.empty()) return line;
  std::u16string path = core::Utf8ToWide(devicePath);
  bool bracketed = path.front() == u'(' && path.back() == u')';
  return line + u"  " + (bracketed ? path : u"(" + path + u")");
}

std::vector<int> ListedSlots(const core::PortSettings& port,
                             const std::array<std::string, core::kPortSlots>& devicePaths) {
  std::vector<int> slots;
  for (int slot = 0; slot < core::kPortSlots; ++slot) {
    auto i = static_cast<size_t>(slot);
    if (port.PortPresent[i] != 0 || !devicePaths[i].empty()) slots.push_back(slot);
  }
  return slots;
}

int PreselectedSlot(const core::PortSettings& port,
                    const std::array<std::string, core::kPortSlots>& devicePaths) {
  std::vector<int> slots = ListedSlots(port, devicePaths);
  for (int slot : slots) {
    if (core::PortSlotName(slot) == port.SelectedPort) return slot;
  }
  return port.SelectedPort.empty() && slots.size() == 1 ? slots.front() : -1;
}

int ApplyPortPages(core::AppState& state, const core::PortSettings& edited) {
  const core::PortSettings shown = state.Port;  // what the pages opened with
  state.Port = edited;
  const core::PortSettings& loaded = state.Snapshot.Port;
  if (edited.SelectedPort != shown.SelectedPort && edited.SelectedPort == loaded.SelectedPort) {
    // The port chosen again brings its loaded line setting back, except what
    // the user changed on the other pages in the same visit.
    auto restore = [&](auto member) {
      if (edited.*member == shown.*member) state.Port.*member = loaded.*member;
    };
    using P = core::PortSettings;
    restore(&P::SelectedBaud);
    restore(&P::SelectedDataBits);
    restore(&P::Parity);
    restore(&P::StopBits);
    for (auto flag : {&P::XON, &P::RTS, &P::CtsFlow, &P::DTR, &P::DsrFlow}) restore(flag);
  }
  core::PublishSettings(state);
  return 1;
}

}  // namespace wavetrace::app
