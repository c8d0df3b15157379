#include "platform/display_control.h"

#include <X11/Xlib.h>
#include <X11/extensions/dpms.h>

#include <cstdlib>

namespace wavetrace::platform {

struct DisplayControl::Connection {
  Display* display = nullptr;
};

DisplayControl::DisplayControl() : connection_(std::make_unique<Connection>()) {
  const char* name = std::getenv("DISPLAY");
  if (!name || !*name) return;
  connection_->display = XOpenDisplay(name);
  if (!connection_->display) return;
  int eventBase = 0;
  int errorBase = 0;
  canSwitchOff_ =
      DPMSQueryExtension(connection_->display, &eventBase, &errorBase) && DPMSCapable(connection_->display);
}

DisplayControl::~DisplayControl() {
  if (connection_->display) XCloseDisplay(connection_->display);
}

bool DisplayControl::SwitchOff() {
  std::lock_guard lock(mutex_);
  if (!canSwitchOff_) return false;
  DPMSEnable(connection_->display);
  bool done = DPMSForceLevel(connection_->display, DPMSModeOff);
  XFlush(connection_->display);
  return done;
}

bool DisplayControl::SwitchOn() {
  std::lock_guard lock(mutex_);
  if (!canSwitchOff_) return false;
  bool done = DPMSForceLevel(connection_->display, DPMSModeOn);
  XFlush(connection_->display);
  return done;
}

void DisplayControl::ResetIdleTimer() {
  std::lock_guard lock(mutex_);
  if (!connection_->display) return;
  XResetScreenSaver(connection_->display);
  XFlush(connection_->display);
}

}  // namespace wavetrace::platform
