#pragma once

#include "core/app_state.h"
#include "serial/discovery.h"

namespace wavetrace::app {

// Port discovery with the numbers remembered in the registry's Ports key:
// reads them, fills the port table, and records the numbers given to
// newcomers so they keep them on later runs. Always 1.
int DiscoverPorts(core::AppState& state, const serial::DiscoverySources& sources = {});

}  // namespace wavetrace::app
