#pragma once

#include <cstdint>

namespace wavetrace::platform {

// The key numbers the window relay presses (the program's virtual keys).
namespace vk {
inline constexpr uint8_t kNone = 0;
inline constexpr uint8_t kControl = 17;
inline constexpr uint8_t kEnd = 35;
inline constexpr uint8_t kHome = 36;
inline constexpr uint8_t kLeft = 37;
inline constexpr uint8_t kUp = 38;
inline constexpr uint8_t kRight = 39;
inline constexpr uint8_t kDown = 40;
inline constexpr uint8_t kDelete = 46;
// 64 is "@"; 65 to 90 are the letter keys A to Z.
inline constexpr uint8_t kAt = 64;
}  // namespace vk

// Key-state flags of a posted character.
inline constexpr uint32_t kKeyDown = 128;     // the key itself: tab, return, escape
inline constexpr uint32_t kKeyCharacter = 1;  // a character

// Where the window relay's keystrokes go: the window with the keyboard
// focus. Called on the receive thread; an implementation never waits long.
class KeySink {
 public:
  virtual ~KeySink() = default;
  // One character (UTF-16) with its flags and its character count (0 or 1:
  // "#" to "(" are posted with 0 and still typed as those characters).
  // False when it cannot be taken.
  virtual bool PostKey(char16_t character, uint32_t flags, int count) = 0;
  // A press (up false) or release of a virtual key; kNone does nothing.
  virtual void KeyEvent(uint8_t virtualKey, bool up) = 0;
};

}  // namespace wavetrace::platform
