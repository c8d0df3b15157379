#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_state.h"
#include "platform/desktop.h"
#include "platform/key_sink.h"

namespace wavetrace::relay {

// The window relay: every received character typed into the window that has
// the keyboard focus, which RELAY's activation gives to the window chosen on
// the selector page.

inline constexpr size_t kWindowListCapacity = 32;

// The selector page's list: the windows kept, with the text each shows.
struct WindowList {
  std::vector<core::WindowListEntry> Entries;  // at most kWindowListCapacity
  std::vector<std::u16string> Texts;
  size_t Longest = 0;       // characters of the longest text
  std::string Unavailable;  // why there is nothing to list (no X display, ...)
};

// The windows the selector page lists, in the desktop's order: mapped, not
// kept off the taskbar, titled, not below 64 by 64 in both directions, not
// the program's own (ownTitle, ownPid, any title holding "Wavetrace"), and
// not one of the excluded titles and class names; at most 32. A text is the
// title, with " : " and the class name when showClassNames.
WindowList FilterWindowList(const std::vector<platform::DesktopWindow>& windows, std::u16string_view ownTitle,
                            int64_t ownPid, bool showClassNames);
// The desktop's windows through the filter, for state's title and
// ShowClassNames. Main thread.
WindowList FillWindowList(const core::AppState& state);
// The index of the last entry equal to target, or -1.
int SelectedWindow(const WindowList& list, const core::WindowListEntry& target);
// The selector page's list box notification: the entry at index becomes the
// target when index is 0 to the count (the count itself gives an empty one).
void ChooseWindow(core::AppState& state, const WindowList& list, int index);
// --relay-window: the first entry whose title contains text becomes the
// target. False when none does.
bool ChooseWindowByTitle(core::AppState& state, const WindowList& list, std::u16string_view text);

// Whether the selector page offers typing through a virtual keyboard
// (/dev/uinput is there and writable).
bool VirtualKeyboardOffered();

// One character to the focus window: flags 128 (the key itself) or 1, and a
// character count of 0 for the characters whose low 8 bits are 35 to 40;
// when the post is taken, an empty key event follows.
void SendKeyToFocus(platform::KeySink& keys, char16_t character, uint32_t flags);
// A received block (one character per byte) as keystrokes: tab and return
// as keys, escape "[" D/C/A/B as the arrows and delete as the delete key,
// control characters as Control and a letter when translate is set
// (TRANSLATE_KEYBOARD_CODES), everything else as characters.
void RelayKeystrokes(platform::KeySink& keys, std::u16string_view text, bool translate);

// The window relay as the dispatcher sees it: while RELAY is on and the
// window relay is enabled, each block goes to the keys' way that RELAY's
// activation opened (the X server's keyboard, or a virtual keyboard).
class WindowRelay final : public core::BlockSink {
 public:
  explicit WindowRelay(core::AppState& state) : state_(state) {}
  void TakeBlock(const uint8_t* block, uint32_t n) override;

  [[nodiscard]] std::shared_ptr<platform::KeySink> Load() const;
  void Store(std::shared_ptr<platform::KeySink> keys);

 private:
  core::AppState& state_;
  mutable std::mutex mutex_;
  std::shared_ptr<platform::KeySink> keys_;
};

void InstallWindowRelay(core::AppState& state);
WindowRelay* WindowRelayOf(core::AppState& state);

// The window half of RELAY going on (main thread): opens the keys' way and
// activates the target. Lines are the status text's window lines; Working
// is false when the keys have nowhere to go, and Lines say why.
struct WindowRelayStart {
  bool Working = false;
  std::u16string Lines;
};
WindowRelayStart ActivateWindowRelay(core::AppState& state, bool networkConnected);
// The window half of RELAY going off: closes the keys' way; the lines for
// the status text, and whether the target is gone.
std::u16string DeactivateWindowRelay(core::AppState& state, bool networkEnabled, bool& targetGone);

}  // namespace wavetrace::relay
