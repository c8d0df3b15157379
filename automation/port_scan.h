#pragma once

#include <string>

#include "automation/port_scan_table.h"
#include "core/app_state.h"

namespace wavetrace::automation {

// How the last scan ended (AppState::PsmOutcome).
enum ScanOutcome : int32_t {
  kScanNotRun = 0,
  kScanCompleted = 1,   // every combination was tried
  kScanStopped = 2,     // STOP
  kScanPortClosed = 3,  // the port failed to open or was closed meanwhile
  kScanNoPort = 4,      // no port selected
};

// "\r\n[%s,%d,%d,%c,%s]\r\n": port, baud, data bits, the parity's first
// letter, stop bits, as bytes. An empty entry's parity has no letter: the
// heading ends where the letter would be, as a C string ends at its zero.
std::string ScanHeading(const std::u16string& port, const ScanEntry& entry);

// The PSM Control strip, on the main thread. START starts the scan thread;
// STOP (also sent by the thread when it finishes) asks it to end; Tx is a
// check box. STOP, or START and Tx, come back 500 ms later (OnPsmTimer).
void PsmStart(core::AppState& state);
void PsmStop(core::AppState& state);
void PsmToggleTx(core::AppState& state);
void OnPsmTimer(core::AppState& state, uint32_t timerId);
// The strip in its idle state, shown when port scan mode is enabled.
void ShowPsmStrip(core::AppState& state);

// Asks a running scan to stop and waits for its thread, serving the steps it
// waits for meanwhile (on the main thread).
void EndPortScan(core::AppState& state);

}  // namespace wavetrace::automation
