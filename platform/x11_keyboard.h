#pragma once

#include <memory>
#include <string>

#include "platform/key_sink.h"

namespace wavetrace::platform {

// Keystrokes into the focused window of the X server named by DISPLAY,
// through the XTest extension. The calls only queue the keys; a thread of
// the keyboard's own, with its own connection, sends them, so the receive
// thread never waits on the X server. A character that no key of the current
// keymap gives is typed on a spare key code, mapped to it for the moment
// (held until the keyboard has been idle for a second, or reused after the
// longest time, so the focused program reads the key with its mapping still
// in place) and given back afterwards.
class X11Keyboard final : public KeySink {
 public:
  X11Keyboard();
  ~X11Keyboard() override;
  X11Keyboard(const X11Keyboard&) = delete;
  X11Keyboard& operator=(const X11Keyboard&) = delete;

  // Empty when the keys can be sent; otherwise why not (one line).
  [[nodiscard]] const std::string& Unavailable() const { return unavailable_; }
  bool PostKey(char16_t character, uint32_t flags, int count) override;
  void KeyEvent(uint8_t virtualKey, bool up) override;
  // Waits up to timeoutMs until every queued key has reached the server.
  bool Drain(int timeoutMs);

 private:
  struct Typist;
  std::unique_ptr<Typist> typist_;
  std::string unavailable_;
};

}  // namespace wavetrace::platform
