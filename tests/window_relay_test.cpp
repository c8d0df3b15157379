// The window relay without an X server: the keystroke generator against a
// recording key sink, the window list filter, and RELAY with no display.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <tuple>
#include <vector>

#include "cli_child.h"
#include "core/code_page.h"
#include "program_fixture.h"
#include "relay/network_relay.h"
#include "relay/window_relay.h"

namespace wavetrace::relay {
namespace {

// Posts as "code/flags/count", key events as "+vk" (press) and "-vk".
struct RecordingKeys : platform::KeySink {
  bool PostKey(char16_t ch, uint32_t flags, int count) override {
    Add(std::to_string(ch) + "/" + std::to_string(flags) + "/" + std::to_string(count));
    return !refuse;
  }
  void KeyEvent(uint8_t key, bool up) override { Add((up ? "-" : "+") + std::to_string(key)); }
  void Add(const std::string& event) { log += (log.empty() ? "" : " ") + event; }

  std::string log;
  bool refuse = false;
};

std::string Keystrokes(const std::string& bytes, bool translate, bool refuse = false) {
  RecordingKeys keys;
  keys.refuse = refuse;
  std::u16string text;
  for (char byte : bytes) text += core::ByteToWide(static_cast<uint8_t>(byte));
  RelayKeystrokes(keys, text, translate);
  return keys.log;
}

TEST(WindowRelay, KeystrokesForEachKindOfCharacter) {
  // Bytes, translated or not, and the keys they give.
  const std::tuple<std::string, bool, std::string> cases[] = {
      {"AB\r", false, "65/1/1 +0 66/1/1 +0 13/128/1 +0"},
      {"\t", true, "9/128/1 +0"},
      {"\x1b[A", true, "+38 -38"},
      {"\x1b[A", false, "27/128/1 +0 91/1/1 +0 65/1/1 +0"},
      {"\x1b[D\x1b[C\x1b[B", true, "+37 -37 +39 -39 +40 -40"},
      {"\x1b", true, "27/128/1 +0"},
      {"\x1b[", true, "27/128/1 +0 91/1/1 +0"},
      {"\x1b[Z", true, "27/128/1 +0 91/1/1 +0 90/1/1 +0"},
      {"\x03", true, "+17 +67 -67 -17"},
      {"\x03", false, "3/1/1 +0"},
      {"\x7f", false, "+46 -46"},
      // "#" to "(" (and characters whose low byte is theirs) with count 0.
      {"\"#()", false, "34/1/1 +0 35/1/0 +0 40/1/0 +0 41/1/1 +0"},
      {"\x80\x85", false, "8364/1/1 +0 8230/1/0 +0"},
  };
  for (const auto& [bytes, translate, keys] : cases) EXPECT_EQ(Keystrokes(bytes, translate), keys) << bytes;
  // A post that is not taken has no key event after it.
  EXPECT_EQ(Keystrokes("a\r", false, true), "97/1/1 13/128/1");
}

TEST(WindowRelay, ListKeepsOtherProgramsVisibleWindowsUpTo32) {
  struct Shown {
    const char* title;
    int width, height;
    bool mapped = true, skipTaskbar = false;
    const char* className = "Edit";
    int64_t pid = 0;
  };
  const Shown shown[] = {{"Scale log", 300, 200},
                         {"Small", 50, 50},
                         {"Tall", 50, 300},
                         {"Wide", 64, 10},
                         {"", 300, 200},
                         {"My Wavetrace notes", 300, 200},
                         {"Desktop", 300, 200},
                         {"Desktop 2", 300, 200},
                         {"Hidden", 300, 200, false},
                         {"Panel", 300, 200, true, true},
                         {"Memo", 300, 200, true, false, "Notes"},
                         {"Own", 300, 200, true, false, "Edit", 42}};
  std::vector<platform::DesktopWindow> windows;
  for (const Shown& w : shown)
    windows.push_back(
        {windows.size() + 1, w.title, w.className, 0, 0, w.width, w.height, w.mapped, w.skipTaskbar, w.pid});
  WindowList list = FilterWindowList(windows, u"Wavetrace Pro ", 42, true);
  std::vector<std::u16string> expected = {u"Scale log : Edit", u"Tall : Edit", u"Wide : Edit",
                                          u"Desktop 2 : Edit"};
  EXPECT_EQ(list.Texts, expected);
  EXPECT_EQ(list.Longest, 16u);
  EXPECT_EQ(FilterWindowList(windows, u"", 0, false).Texts.front(), u"Scale log");

  // The selection follows the target; the count itself chooses an empty one.
  core::AppState state;
  ASSERT_TRUE(ChooseWindowByTitle(state, list, u"ide"));
  EXPECT_EQ(SelectedWindow(list, state.RelayTargetWindow), 2);
  ChooseWindow(state, list, 4);
  EXPECT_EQ(SelectedWindow(list, state.RelayTargetWindow), -1);
  EXPECT_FALSE(ChooseWindowByTitle(state, list, u"Calculator"));
  windows.assign(40, windows[0]);
  EXPECT_EQ(FilterWindowList(windows, u"", 0, false).Entries.size(), kWindowListCapacity);
}

TEST(WindowRelay, WithoutADisplayRelayAndHardwareButtonsSayWhyAndStayOff) {
  unsetenv("DISPLAY");
  // "no X display (DISPLAY is not set)", or that the build has no X11.
  const std::string why = platform::Desktop().Unavailable();
  ASSERT_FALSE(why.empty());
  testing::TempFolder home;
  testing::WriteRegistry(home.Path(), "AcquireHWbuttons=dword:00000001\n");
  testing::Child list({"--list-windows"}, home.Path());
  EXPECT_EQ(list.WaitForExit(), 1);
  EXPECT_EQ(list.Err(), "No windows to list: " + why + "\n");
  // --relay-window: the program runs on with RELAY off.
  testing::Child relay({"--port", "VSP0:", "--relay-window", "Scale"}, home.Path());
  EXPECT_TRUE(relay.WaitForError("Relay to WINDOW. Relay to WINDOW cannot work: " + why)) << relay.Err();
  EXPECT_EQ(relay.Terminate(), 0);
  EXPECT_NE(relay.Err().find("Hardware buttons not acquired: " + why), std::string::npos) << relay.Err();
  EXPECT_EQ(relay.Err().find("Relay to WINDOW deactivated"), std::string::npos) << relay.Err();
  // RELAY off with no window chosen.
  core::AppState state;
  InstallWindowRelay(state);
  state.WindowRelayEnabled = 1;
  RelayDeactivate(state);
  EXPECT_EQ(testing::Narrow(state.Screen.Status()),
            "Relay to WINDOW deactivated.\r\nNo Window to Relay data to.\r\nGoto -> Edit : Receive Options : "
            "Relay tab");
}

}  // namespace
}  // namespace wavetrace::relay
