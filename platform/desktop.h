#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace wavetrace::platform {

// One top-level window as the X server describes it.
struct DesktopWindow {
  uint64_t Id = 0;
  std::string Title;      // UTF-8: _NET_WM_NAME, else WM_NAME
  std::string ClassName;  // the class part of WM_CLASS
  int32_t X = 0;          // on the screen
  int32_t Y = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  bool Mapped = false;       // viewable now
  bool SkipTaskbar = false;  // _NET_WM_STATE_SKIP_TASKBAR, or a dock or desktop window
  int64_t Pid = 0;           // _NET_WM_PID; 0 when the window does not say
};

// The desktop of the X server named by DISPLAY: its top-level windows and
// their activation. With an EWMH window manager the list is its
// _NET_CLIENT_LIST and activation asks it through _NET_ACTIVE_WINDOW;
// without one (a bare server) the list is the root window's children and
// activation maps, raises and focuses the window itself. Main thread.
class Desktop {
 public:
  Desktop();
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // Empty when connected; otherwise why there are no windows (one line).
  [[nodiscard]] const std::string& Unavailable() const { return unavailable_; }
  [[nodiscard]] bool HasWindowManager() const;
  [[nodiscard]] std::vector<DesktopWindow> TopLevelWindows();
  [[nodiscard]] bool IsWindow(uint64_t id);
  // Shows the window, brings it to the front and gives it the keyboard
  // focus; false when it is no window (any more).
  bool Activate(uint64_t id);

 private:
  struct Connection;
  std::unique_ptr<Connection> connection_;
  std::string unavailable_;
};

}  // namespace wavetrace::platform
