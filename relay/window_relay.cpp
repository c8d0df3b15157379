#include "relay/window_relay.h"

#include <algorithm>
#include <array>

#include "core/code_page.h"
#include "platform/os_info.h"
#include "platform/uinput_keyboard.h"
#include "platform/x11_keyboard.h"

namespace wavetrace::relay {
namespace {

constexpr int32_t kMinimumSide = 64;
constexpr std::array<std::u16string_view, 7> kExcludedTitles = {
    u"Desktop", u"Programs", u"Settings", u"ActiveSync", u"CursorWindow", u"Connection Manager", u"Contacts"};
// Compared with the class name, as they always were.
constexpr std::array<std::u16string_view, 4> kExcludedClasses = {u"DocWndHost", u"Pocket Word", u"Notes",
                                                                 u"PegHelp"};
constexpr std::u16string_view kVirtualKeyboardLine = u"[Virtual keyboard]\r\n{Focused window}";

bool Listed(const platform::DesktopWindow& window, const core::WindowListEntry& entry,
            std::u16string_view ownTitle, int64_t ownPid) {
  if (entry.Title.empty() || !window.Mapped || window.SkipTaskbar) return false;
  if (window.Width < kMinimumSide && window.Height < kMinimumSide) return false;
  if (entry.Title == ownTitle || entry.Title.find(u"Wavetrace") != std::u16string::npos) return false;
  if (std::find(kExcludedTitles.begin(), kExcludedTitles.end(), entry.Title) != kExcludedTitles.end())
    return false;
  if (ownPid != 0 && window.Pid == ownPid) return false;
  return std::find(kExcludedClasses.begin(), kExcludedClasses.end(), entry.ClassName) ==
         kExcludedClasses.end();
}

std::u16string WindowLines(const core::WindowListEntry& target) {
  return u"[" + target.Title + u"]\r\n{Class: " + target.ClassName + u"}";
}

}  // namespace

WindowList FilterWindowList(const std::vector<platform::DesktopWindow>& windows, std::u16string_view ownTitle,
                            int64_t ownPid, bool showClassNames) {
  WindowList list;
  for (const platform::DesktopWindow& window : windows) {
    if (list.Entries.size() == kWindowListCapacity) break;
    core::WindowListEntry entry;
    entry.Title = core::Utf8ToWide(window.Title).substr(0, core::WindowListEntry::kTextChars);
    entry.ClassName = core::Utf8ToWide(window.ClassName).substr(0, core::WindowListEntry::kTextChars);
    if (!Listed(window, entry, ownTitle, ownPid)) continue;
    entry.Handle = window.Id;
    entry.Left = window.X;
    entry.Top = window.Y;
    entry.Right = window.X + window.Width;
    entry.Bottom = window.Y + window.Height;
    std::u16string text = entry.Title;
    if (showClassNames) text += u" : " + entry.ClassName;
    list.Longest = std::max(list.Longest, text.size());
    list.Texts.push_back(std::move(text));
    list.Entries.push_back(std::move(entry));
  }
  return list;
}

WindowList FillWindowList(const core::AppState& state) {
  platform::Desktop desktop;
  WindowList list = FilterWindowList(desktop.TopLevelWindows(), state.WindowTitle, platform::ProcessId(),
                                     state.Data.ShowClassNames == 1);
  list.Unavailable = desktop.Unavailable();
  return list;
}

int SelectedWindow(const WindowList& list, const core::WindowListEntry& target) {
  int selected = -1;
  for (size_t i = 0; i < list.Entries.size(); ++i) {
    if (list.Entries[i] == target) selected = static_cast<int>(i);
  }
  return selected;
}

void ChooseWindow(core::AppState& state, const WindowList& list, int index) {
  if (index < 0 || static_cast<size_t>(index) > list.Entries.size()) return;
  state.RelayTargetWindow = static_cast<size_t>(index) < list.Entries.size()
                                ? list.Entries[static_cast<size_t>(index)]
                                : core::WindowListEntry{};
}

bool ChooseWindowByTitle(core::AppState& state, const WindowList& list, std::u16string_view text) {
  for (const core::WindowListEntry& entry : list.Entries) {
    if (entry.Title.find(text) == std::u16string::npos) continue;
    state.RelayTargetWindow = entry;
    return true;
  }
  return false;
}

bool VirtualKeyboardOffered() {
  return platform::UinputKeyboard::Available();
}

void SendKeyToFocus(platform::KeySink& keys, char16_t character, uint32_t flags) {
  // "#" to "(" share their numbers with the keys End, Home and the arrows.
  int low = character & 0xff;
  int count = low >= 35 && low <= 40 ? 0 : 1;
  if (keys.PostKey(character, flags, count)) keys.KeyEvent(platform::vk::kNone, false);
}

void RelayKeystrokes(platform::KeySink& keys, std::u16string_view text, bool translate) {
  auto press = [&keys](uint8_t key) {
    keys.KeyEvent(key, false);
    keys.KeyEvent(key, true);
  };
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t ch = text[i];
    if (ch == 9 || ch == 13) {
      SendKeyToFocus(keys, ch, platform::kKeyDown);
    } else if (ch == 27) {
      uint8_t arrow = 0;
      if (translate && i + 2 < text.size() && text[i + 1] == u'[') {
        switch (text[i + 2]) {
          case u'D':
            arrow = platform::vk::kLeft;
            break;
          case u'C':
            arrow = platform::vk::kRight;
            break;
          case u'A':
            arrow = platform::vk::kUp;
            break;
          case u'B':
            arrow = platform::vk::kDown;
            break;
          default:
            break;
        }
      }
      if (arrow != 0) {
        press(arrow);
        i += 2;
      } else {
        SendKeyToFocus(keys, 27, platform::kKeyDown);
      }
    } else if (ch == 127) {
      press(platform::vk::kDelete);
    } else if (ch < 27 && translate) {
      auto letter = static_cast<uint8_t>(ch + platform::vk::kAt);
      keys.KeyEvent(platform::vk::kControl, false);
      press(letter);
      keys.KeyEvent(platform::vk::kControl, true);
    } else {
      SendKeyToFocus(keys, ch, platform::kKeyCharacter);
    }
  }
}

std::shared_ptr<platform::KeySink> WindowRelay::Load() const {
  std::lock_guard lock(mutex_);
  return keys_;
}

void WindowRelay::Store(std::shared_ptr<platform::KeySink> keys) {
  std::unique_lock lock(mutex_);
  keys_.swap(keys);
  lock.unlock();
  // The old way closes here, outside the lock (unless a block still holds it).
}

void WindowRelay::TakeBlock(const uint8_t* block, uint32_t n) {
  if (!state_.RelayActive || n == 0) return;
  auto settings = state_.PublishedWindowRelay.Load();
  if (!settings || settings->WindowRelayEnabled != 1) return;
  auto keys = Load();
  if (!keys) return;
  std::u16string text(n, u'\0');
  for (uint32_t i = 0; i < n; ++i) text[i] = core::ByteToWide(block[i]);
  RelayKeystrokes(*keys, text, settings->TRANSLATE_KEYBOARD_CODES == 1);
}

void InstallWindowRelay(core::AppState& state) {
  state.WindowRelay = std::make_unique<WindowRelay>(state);
}

WindowRelay* WindowRelayOf(core::AppState& state) {
  // Only InstallWindowRelay fills the field.
  return static_cast<WindowRelay*>(state.WindowRelay.get());
}

WindowRelayStart ActivateWindowRelay(core::AppState& state, bool networkConnected) {
  WindowRelay* relay = WindowRelayOf(state);
  if (!relay) return {};
  std::shared_ptr<platform::KeySink> keys;
  std::string unavailable;
  if (state.WindowRelayVirtualKeyboard == 1) {
    auto keyboard = std::make_shared<platform::UinputKeyboard>();
    unavailable = keyboard->Unavailable();
    keys = keyboard;
  } else {
    auto keyboard = std::make_shared<platform::X11Keyboard>();
    unavailable = keyboard->Unavailable();
    keys = keyboard;
  }
  if (!unavailable.empty()) return {false, u"Relay to WINDOW cannot work: " + core::Utf8ToWide(unavailable)};
  relay->Store(keys);
  WindowRelayStart start{true, {}};
  if (state.WindowRelayVirtualKeyboard == 1) {
    start.Lines = kVirtualKeyboardLine;
    return start;
  }
  const core::WindowListEntry& target = state.RelayTargetWindow;
  platform::Desktop desktop;
  if (!desktop.IsWindow(target.Handle)) return start;
  desktop.Activate(target.Handle);
  if (networkConnected) start.Lines = u"Relay to WINDOW:\r\n";
  start.Lines += WindowLines(target);
  return start;
}

std::u16string DeactivateWindowRelay(core::AppState& state, bool networkEnabled, bool& targetGone) {
  targetGone = false;
  if (WindowRelay* relay = WindowRelayOf(state)) relay->Store(nullptr);
  if (state.WindowRelayEnabled != 1) return {};
  if (state.WindowRelayVirtualKeyboard == 1) return std::u16string(kVirtualKeyboardLine) + u"\r\n";
  platform::Desktop desktop;
  targetGone = !desktop.IsWindow(state.RelayTargetWindow.Handle);
  if (!targetGone) return WindowLines(state.RelayTargetWindow) + u"\r\n";
  std::u16string lines = u"No Window to Relay data to.\r\n";
  if (!networkEnabled) lines += u"Goto -> Edit : Receive Options : Relay tab";
  return lines;
}

}  // namespace wavetrace::relay
