#include "platform/x11_keyboard.h"

// The build without X11 headers: no keys can be sent.
namespace wavetrace::platform {

struct X11Keyboard::Typist {};

X11Keyboard::X11Keyboard() : unavailable_("this build has no X11 support") {}

X11Keyboard::~X11Keyboard() = default;

bool X11Keyboard::PostKey(char16_t, uint32_t, int) {
  return false;
}

void X11Keyboard::KeyEvent(uint8_t, bool) {}

bool X11Keyboard::Drain(int) {
  return true;
}

}  // namespace wavetrace::platform
