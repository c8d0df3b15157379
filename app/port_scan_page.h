#pragma once

#include <cstdint>

#include "core/app_state.h"

namespace wavetrace::app {

// The "Scan interval:" field: two characters, 1 to 60 seconds.
inline constexpr int kScanIntervalChars = 2;
inline constexpr int32_t kMinScanInterval = 1;
inline constexpr int32_t kMaxScanInterval = 60;

// The Port Scan page of the communication properties. It edits a copy of the
// page's six fields (the enable box, the four rotate boxes, the interval);
// the custom-rate table as it was when the properties opened is kept for
// Cancel.
struct PortScanPage {
  core::PortScanSettings Values;
  int32_t CustomBauds_count = 0;
  uint32_t CustomBaud_01 = 0;
};

// The copy, with the interval held to 1..60.
PortScanPage OpenPortScanPage(const core::AppState& state);
// The rotate boxes, the interval with its up-down and their group take
// clicks exactly while "Enable Port Scan Mode (PSM)" is ticked.
bool PortScanOptionsEnabled(const core::PortScanSettings& values);
int32_t ClampScanInterval(int32_t seconds);
// OK: the six page fields into state.Psm (the strip's Tx stays as it is),
// then the strip shown or hidden by the enable box.
void ApplyPortScanPage(core::AppState& state, const PortScanPage& page);
// Cancel: the copy is dropped and the custom-rate table put back.
void CancelPortScanPage(core::AppState& state, const PortScanPage& page);

}  // namespace wavetrace::app
