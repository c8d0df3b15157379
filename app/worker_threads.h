#pragma once

#include "core/app_state.h"

namespace wavetrace::app {

// Creates RxThread and TxThread suspended, RxWndUpdate and LogIntervalThread
// running, in that order. 0 on success; -1 after reporting which one failed.
int CreateWorkerThreads(core::AppState& state);

// Shutdown: wakes the parked threads so they see the shutting-down flag, asks
// the others to stop, and joins all four.
void EndWorkerThreads(core::AppState& state);

}  // namespace wavetrace::app
