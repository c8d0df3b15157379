#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/app_state.h"
#include "platform/serial_port.h"

namespace wavetrace::serial {

struct WriteTimeouts {
  uint32_t Multiplier = 0;  // milliseconds per byte
  uint32_t Constant = 0;    // milliseconds per write
};
// 9600 baud gives 4 and 989, 115200 gives 1 and 934, faster rates 1 and 929.
WriteTimeouts ComputeWriteTimeouts(uint32_t baud);

// The line setting of the port settings block.
platform::LineSettings LineSettingsOf(const core::PortSettings& port);

// The device SelectedPort stands for: a slot name ("COM3:", "VSP0:"), "RawIr",
// or a device path. Empty when it names nothing that is there.
std::string ResolvePortPath(const core::AppState& state);

// The open port, or null.
std::shared_ptr<platform::SerialPort> CurrentPort(core::AppState& state);

// Opens SelectedPort exclusively: 1 when a port was obtained, 0 otherwise
// with failure telling why (no message here; a SelectedPort that names no
// device fails with code 0).
int OpenPort(core::AppState& state, platform::SysResult& failure);
// Opens and configures the port: 1 when it is ready, 0 otherwise (the port is
// closed again). A port that could not be opened is left to the caller to
// report, with failure; one that could not be configured is reported here
// ("ConfigurePort::GetCommState" when its line setting cannot be read, a
// refused setting in words).
int ConfigurePort(core::AppState& state, platform::SysResult& failure);
int ConfigurePort(core::AppState& state);
// Closes the port if it is open: wakes the receive thread's wait, sends XOFF
// and drops RTS/DTR where they were set, shows "Port closed.".
void ClosePort(core::AppState& state);
// Throws away both queues of the open port.
void PurgePort(core::AppState& state);

}  // namespace wavetrace::serial
