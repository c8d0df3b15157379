#include "app/display_power.h"

#include "core/messages.h"
#include "core/shared_field.h"
#include "platform/display_control.h"

namespace wavetrace::app {
namespace {

void SetDisplayPower(core::AppState& state, int32_t powerState) {
  state.DisplayPower.Length = 12;
  state.DisplayPower.Version = 1;
  core::StoreShared(state.DisplayPower.PowerState, powerState);
}

}  // namespace

void DisplayOff(core::AppState& state) {
  if (!state.Display || !state.Display->CanSwitchOff()) return;
  SetDisplayPower(state, core::kDisplayPowerOff);
  state.Display->SwitchOff();
}

void DisplayOn(core::AppState& state) {
  if (state.DisplayPower.PowerState != core::kDisplayPowerOff) return;
  SetDisplayPower(state, core::kDisplayPowerOn);
  if (state.Display) state.Display->SwitchOn();
}

void KeepAlive(core::AppState& state) {
  if (!state.PortOpen) return;
  if (state.Display) state.Display->ResetIdleTimer();
  if (state.DisplayPower.PowerState == core::kDisplayPowerOff && state.View && !state.View->WindowActive()) {
    state.Queue.Send(core::MakeMessage(core::kWmChar, 13));
  }
}

}  // namespace wavetrace::app
