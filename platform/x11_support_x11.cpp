#include "platform/x11_support.h"

#include <cstdlib>
#include <mutex>

namespace wavetrace::platform::x11 {
namespace {

thread_local int g_lastError = 0;

int RecordError(Display*, XErrorEvent* event) {
  if (g_lastError == 0) g_lastError = event->error_code;
  return 0;
}

}  // namespace

Display* Open(std::string& reason) {
  static std::once_flag handlerSet;
  std::call_once(handlerSet, [] { XSetErrorHandler(RecordError); });
  const char* name = std::getenv("DISPLAY");
  if (!name || !*name) {
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    reason =
        wayland && *wayland
            ? "a Wayland session without X11 (DISPLAY is not set): other programs' windows are out of reach"
            : "no X display (DISPLAY is not set)";
    return nullptr;
  }
  Display* display = XOpenDisplay(name);
  if (!display) reason = std::string("the X display ") + name + " cannot be opened";
  return display;
}

int TakeError() {
  int code = g_lastError;
  g_lastError = 0;
  return code;
}

}  // namespace wavetrace::platform::x11
