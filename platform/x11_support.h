#pragma once

// Shared by the X11 pieces of platform/ (the desktop, the keyboard, the hot
// keys); nothing outside platform/ includes it.
#include <X11/Xlib.h>

#include <string>

namespace wavetrace::platform::x11 {

// Opens the display named by DISPLAY with the program's error handler in
// place: an X error is recorded for TakeError on the thread that reads it,
// never fatal. Null, with a one-line reason, when there is no X server to
// reach (no DISPLAY, a Wayland session without X11, a server that refuses).
Display* Open(std::string& reason);

// The code of the first X error seen on this thread since the last call
// (0: none). Call XSync first to have the requests' errors in.
int TakeError();

}  // namespace wavetrace::platform::x11
