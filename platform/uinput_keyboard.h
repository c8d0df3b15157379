#pragma once

#include <string>

#include "platform/key_sink.h"

namespace wavetrace::platform {

// Keystrokes through a virtual keyboard made with /dev/uinput: the kernel
// hands them to whatever has the focus, in any session (Wayland, the text
// console) or none. Keys are laid out as on a US keyboard, so only the
// characters of US-ASCII can be typed; others are refused.
class UinputKeyboard final : public KeySink {
 public:
  static constexpr const char* kDevice = "/dev/uinput";
  // Whether this user may make a virtual keyboard.
  static bool Available();

  UinputKeyboard();
  ~UinputKeyboard() override;
  UinputKeyboard(const UinputKeyboard&) = delete;
  UinputKeyboard& operator=(const UinputKeyboard&) = delete;

  // Empty when the keyboard exists; otherwise why not (one line).
  [[nodiscard]] const std::string& Unavailable() const { return unavailable_; }
  bool PostKey(char16_t character, uint32_t flags, int count) override;
  void KeyEvent(uint8_t virtualKey, bool up) override;

 private:
  void Emit(int code, int value);
  int fd_ = -1;
  std::string unavailable_;
};

}  // namespace wavetrace::platform
