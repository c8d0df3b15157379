#include "serial/port.h"

#include "core/code_page.h"
#include "core/reporting.h"
#include "serial/simulated_device.h"

namespace wavetrace::serial {
namespace {

void SetPort(core::AppState& state, std::shared_ptr<platform::SerialPort> port) {
  std::lock_guard lock(state.PortHandleMutex);
  state.PortHandle = std::move(port);
  state.PortOpen = state.PortHandle != nullptr;
}

}  // namespace

WriteTimeouts ComputeWriteTimeouts(uint32_t baud) {
  if (baud == 0) return {};
  return {static_cast<uint32_t>(115200.0 / baud * 0.25) + 1, 115200 / baud * 5 + 929};
}

platform::LineSettings LineSettingsOf(const core::PortSettings& port) {
  platform::LineSettings line;
  line.Baud = port.SelectedBaud;
  line.DataBits = port.SelectedDataBits;
  const std::u16string& parity = port.Parity;
  line.ParityMode = parity == u"Odd"     ? platform::Parity::kOdd
                    : parity == u"Even"  ? platform::Parity::kEven
                    : parity == u"Mark"  ? platform::Parity::kMark
                    : parity == u"Space" ? platform::Parity::kSpace
                                         : platform::Parity::kNone;
  line.Stop = port.StopBits == u"1.5" ? platform::StopBits::kOneAndHalf
              : port.StopBits == u"2" ? platform::StopBits::kTwo
                                      : platform::StopBits::kOne;
  line.XonXoff = port.XON == 1;
  line.Rts = port.RTS == 1;
  line.CtsFlow = port.CtsFlow == 1;
  line.Dtr = port.DTR == 1;
  line.DsrFlow = port.DsrFlow == 1;
  return line;
}

std::string ResolvePortPath(const core::AppState& state) {
  const std::u16string& selected = state.Port.SelectedPort;
  std::u16string name = selected == u"RawIr" ? state.Port.RawIrPort : selected;
  if (!name.empty() && name[0] == u'/') return core::WideToUtf8(name);
  int slot = core::PortSlotOfName(name);
  if (slot < 0) return {};
  return state.PortDevicePath[static_cast<size_t>(slot)];
}

std::shared_ptr<platform::SerialPort> CurrentPort(core::AppState& state) {
  std::lock_guard lock(state.PortHandleMutex);
  return state.PortHandle;
}

int OpenPort(core::AppState& state, platform::SysResult& failure) {
  ClosePort(state);
  std::string path = ResolvePortPath(state);
  if (path.empty()) {
    failure = {0, "resolve port"};
    return 0;
  }
  std::shared_ptr<platform::SerialPort> port;
  if (path == kSimulatedDevicePath) {
    port = OpenSimulatedDevice(state.Simulated);
    failure = {};
  } else {
    port = platform::OpenTermiosPort(path, failure);
  }
  if (!port) return 0;
  SetPort(state, port);
  PurgePort(state);
  return 1;
}

int ConfigurePort(core::AppState& state, platform::SysResult& failure) {
  if (state.View) state.View->SetWaitCursor(true);
  auto done = [&state](int result) {
    if (state.View) state.View->SetWaitCursor(false);
    return result;
  };
  if (OpenPort(state, failure) == 0) {
    ClosePort(state);
    return done(0);
  }
  std::string refusal;
  failure = CurrentPort(state)->Configure(LineSettingsOf(state.Port), refusal);
  if (!failure) {
    ClosePort(state);
    // Reading the current setting fails for a device that is no serial port.
    std::u16string text =
        refusal.empty() ? u"ConfigurePort::GetCommState" : u"ConfigurePort: " + core::Utf8ToWide(refusal);
    core::ShowErrorBox(state, text, failure);
    return done(0);
  }
  WriteTimeouts timeouts = ComputeWriteTimeouts(state.Port.SelectedBaud);
  state.WriteTotalTimeoutMultiplier = timeouts.Multiplier;
  state.WriteTotalTimeoutConstant = timeouts.Constant;
  CurrentPort(state)->SetEventMask(platform::event::kDefaultMask);
  PurgePort(state);
  return done(1);
}

int ConfigurePort(core::AppState& state) {
  platform::SysResult failure;
  return ConfigurePort(state, failure);
}

void ClosePort(core::AppState& state) {
  std::shared_ptr<platform::SerialPort> port = CurrentPort(state);
  if (!port) return;
  port->SetEventMask(0);
  // What a send left queued is thrown away: STOP stops the line too.
  port->DiscardOutput();
  if (state.Port.XON == 1) port->SendXoff();
  port->ClearModemLines(state.Port.RTS == 1, state.Port.DTR == 1);
  port->Close();
  SetPort(state, nullptr);
  core::ShowStatus(state, u"Port closed.");
}

void PurgePort(core::AppState& state) {
  if (auto port = CurrentPort(state)) port->Purge();
}

}  // namespace wavetrace::serial
