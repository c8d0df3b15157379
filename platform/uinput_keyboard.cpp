#include "platform/uinput_keyboard.h"

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>
#include <string_view>

#include "platform/system_error.h"

namespace wavetrace::platform {
namespace {

struct Stroke {
  int Code = 0;
  bool Shift = false;
};

// The US layout: the key and shift state of each printable character.
Stroke CharacterStroke(char16_t ch) {
  static constexpr std::string_view kRow1 = "1234567890";
  static constexpr std::string_view kRow1Shifted = "!@#$%^&*()";
  static constexpr int kRow1Codes[] = {KEY_1, KEY_2, KEY_3, KEY_4, KEY_5, KEY_6, KEY_7, KEY_8, KEY_9, KEY_0};
  static constexpr std::string_view kLetters = "qwertyuiopasdfghjklzxcvbnm";
  static constexpr int kLetterCodes[] = {KEY_Q, KEY_W, KEY_E, KEY_R, KEY_T, KEY_Y, KEY_U, KEY_I, KEY_O,
                                         KEY_P, KEY_A, KEY_S, KEY_D, KEY_F, KEY_G, KEY_H, KEY_J, KEY_K,
                                         KEY_L, KEY_Z, KEY_X, KEY_C, KEY_V, KEY_B, KEY_N, KEY_M};
  static constexpr std::string_view kPunctuation = "-=[]\\;',./`";
  static constexpr std::string_view kPunctuationShifted = "_+{}|:\"<>?~";
  static constexpr int kPunctuationCodes[] = {KEY_MINUS,     KEY_EQUAL,     KEY_LEFTBRACE,  KEY_RIGHTBRACE,
                                              KEY_BACKSLASH, KEY_SEMICOLON, KEY_APOSTROPHE, KEY_COMMA,
                                              KEY_DOT,       KEY_SLASH,     KEY_GRAVE};
  switch (ch) {
    case ' ':
      return {KEY_SPACE};
    case 8:
      return {KEY_BACKSPACE};
    case 9:
      return {KEY_TAB};
    case 10:
    case 13:
      return {KEY_ENTER};
    case 27:
      return {KEY_ESC};
    case 127:
      return {KEY_DELETE};
    default:
      break;
  }
  if (ch >= 0x80) return {};
  auto c = static_cast<char>(ch);
  char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  if (size_t at = kLetters.find(lower); at != std::string_view::npos) return {kLetterCodes[at], lower != c};
  if (size_t at = kRow1.find(c); at != std::string_view::npos) return {kRow1Codes[at]};
  if (size_t at = kRow1Shifted.find(c); at != std::string_view::npos) return {kRow1Codes[at], true};
  if (size_t at = kPunctuation.find(c); at != std::string_view::npos) return {kPunctuationCodes[at]};
  if (size_t at = kPunctuationShifted.find(c); at != std::string_view::npos)
    return {kPunctuationCodes[at], true};
  return {};
}

Stroke VirtualKeyStroke(uint8_t key) {
  switch (key) {
    case vk::kControl:
      return {KEY_LEFTCTRL};
    case vk::kEnd:
      return {KEY_END};
    case vk::kHome:
      return {KEY_HOME};
    case vk::kLeft:
      return {KEY_LEFT};
    case vk::kUp:
      return {KEY_UP};
    case vk::kRight:
      return {KEY_RIGHT};
    case vk::kDown:
      return {KEY_DOWN};
    case vk::kDelete:
      return {KEY_DELETE};
    case vk::kAt:
      return {KEY_2, true};
    default:
      break;
  }
  if (key >= 'A' && key <= 'Z') return CharacterStroke(static_cast<char16_t>(key - 'A' + 'a'));
  return {};
}

}  // namespace

bool UinputKeyboard::Available() {
  return access(kDevice, W_OK) == 0;
}

UinputKeyboard::UinputKeyboard() {
  fd_ = open(kDevice, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) {
    unavailable_ = std::string(kDevice) + " cannot be opened: " + ErrorText(errno);
    return;
  }
  ioctl(fd_, UI_SET_EVBIT, EV_KEY);
  ioctl(fd_, UI_SET_EVBIT, EV_SYN);
  for (int code = KEY_ESC; code <= KEY_DELETE; ++code) ioctl(fd_, UI_SET_KEYBIT, code);
  uinput_setup setup{};
  setup.id.bustype = BUS_VIRTUAL;
  std::strncpy(setup.name, "Wavetrace Pro window relay", UINPUT_MAX_NAME_SIZE - 1);
  if (ioctl(fd_, UI_DEV_SETUP, &setup) < 0 || ioctl(fd_, UI_DEV_CREATE) < 0) {
    unavailable_ = std::string("no virtual keyboard: ") + ErrorText(errno);
    close(fd_);
    fd_ = -1;
  }
}

UinputKeyboard::~UinputKeyboard() {
  if (fd_ < 0) return;
  ioctl(fd_, UI_DEV_DESTROY);
  close(fd_);
}

void UinputKeyboard::Emit(int code, int value) {
  input_event events[2]{};
  events[0].type = EV_KEY;
  events[0].code = static_cast<uint16_t>(code);
  events[0].value = value;
  events[1].type = EV_SYN;
  events[1].code = SYN_REPORT;
  // A full kernel queue loses the key, as a jammed keyboard would.
  [[maybe_unused]] ssize_t written = write(fd_, events, sizeof events);
}

bool UinputKeyboard::PostKey(char16_t character, uint32_t, int) {
  Stroke stroke = CharacterStroke(character);
  if (fd_ < 0 || stroke.Code == 0) return false;
  if (stroke.Shift) Emit(KEY_LEFTSHIFT, 1);
  Emit(stroke.Code, 1);
  Emit(stroke.Code, 0);
  if (stroke.Shift) Emit(KEY_LEFTSHIFT, 0);
  return true;
}

void UinputKeyboard::KeyEvent(uint8_t virtualKey, bool up) {
  Stroke stroke = VirtualKeyStroke(virtualKey);
  if (fd_ < 0 || stroke.Code == 0) return;
  if (stroke.Shift && !up) Emit(KEY_LEFTSHIFT, 1);
  Emit(stroke.Code, up ? 0 : 1);
  if (stroke.Shift && up) Emit(KEY_LEFTSHIFT, 0);
}

}  // namespace wavetrace::platform
