#include "platform/display_control.h"

// The build without X11 headers: there is never a display to switch.
namespace wavetrace::platform {

struct DisplayControl::Connection {};

DisplayControl::DisplayControl() : connection_(std::make_unique<Connection>()) {}

DisplayControl::~DisplayControl() = default;

bool DisplayControl::SwitchOff() {
  return false;
}

bool DisplayControl::SwitchOn() {
  return false;
}

void DisplayControl::ResetIdleTimer() {}

}  // namespace wavetrace::platform
