#pragma once

#include <memory>
#include <mutex>

namespace wavetrace::platform {

// The display's power and the screen saver's idle timer, through the X
// server named by DISPLAY. Without one (headless over SSH) or without the
// power extension (or in a build without X11) the calls do nothing and
// CanSwitchOff() says no.
class DisplayControl {
 public:
  DisplayControl();
  ~DisplayControl();
  DisplayControl(const DisplayControl&) = delete;
  DisplayControl& operator=(const DisplayControl&) = delete;

  [[nodiscard]] bool CanSwitchOff() const { return canSwitchOff_; }
  bool SwitchOff();
  bool SwitchOn();
  // Counts as user activity: the screen saver and power saving start over.
  void ResetIdleTimer();

 private:
  struct Connection;
  std::mutex mutex_;
  std::unique_ptr<Connection> connection_;
  bool canSwitchOff_ = false;
};

}  // namespace wavetrace::platform
