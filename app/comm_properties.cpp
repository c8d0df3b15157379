#include "app/comm_properties.h"

#include <algorithm>

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

int ApplyPortPages(core::AppState& state, const core::PortSettings& edited) {
  bool portChanged = edited.SelectedPort != state.Port.SelectedPort;
  state.Port = edited;
  const core::PortSettings& loaded = state.Snapshot.Port;
  if (portChanged && edited.SelectedPort == loaded.SelectedPort) {
    state.Port.SelectedBaud = loaded.SelectedBaud;
    state.Port.SelectedDataBits = loaded.SelectedDataBits;
    state.Port.Parity = loaded.Parity;
    state.Port.StopBits = loaded.StopBits;
    state.Port.XON = loaded.XON;
    state.Port.RTS = loaded.RTS;
    state.Port.CtsFlow = loaded.CtsFlow;
    state.Port.DTR = loaded.DTR;
    state.Port.DsrFlow = loaded.DsrFlow;
  }
  return 1;
}

}  // namespace wavetrace::app
