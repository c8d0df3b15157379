#include "app/port_scan_page.h"

#include <algorithm>

#include "automation/port_scan.h"

namespace wavetrace::app {

int32_t ClampScanInterval(int32_t seconds) {
  return std::clamp(seconds, kMinScanInterval, kMaxScanInterval);
}

PortScanPage OpenPortScanPage(const core::AppState& state) {
  PortScanPage page{state.Psm, state.Port.CustomBauds_count, state.Port.CustomBaud_01};
  page.Values.PsmScanInterval = ClampScanInterval(page.Values.PsmScanInterval);
  return page;
}

bool PortScanOptionsEnabled(const core::PortScanSettings& values) {
  return values.PsmEnabled == 1;
}

void ApplyPortScanPage(core::AppState& state, const PortScanPage& page) {
  core::PortScanSettings& psm = state.Psm;
  const core::PortScanSettings& edited = page.Values;
  psm.PsmEnabled = edited.PsmEnabled;
  psm.PsmRotateBaud = edited.PsmRotateBaud;
  psm.PsmRotateDataBits = edited.PsmRotateDataBits;
  psm.PsmRotateParity = edited.PsmRotateParity;
  psm.PsmRotateStopBits = edited.PsmRotateStopBits;
  psm.PsmScanInterval = ClampScanInterval(edited.PsmScanInterval);
  automation::ShowPsmStrip(state);
  core::PublishSettings(state);
}

void CancelPortScanPage(core::AppState& state, const PortScanPage& page) {
  state.Port.CustomBauds_count = page.CustomBauds_count;
  state.Port.CustomBaud_01 = page.CustomBaud_01;
  core::PublishSettings(state);
}

}  // namespace wavetrace::app
