// The window relay and the hardware buttons on an X server of the test's own
// (Xvfb; skipped when it is not installed), with and without a window manager.
#include <gtest/gtest.h>

#include <memory>

#include "automation/function_buttons.h"
#include "cli_child.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "relay/window_relay.h"

// Xlib's macros (None, Bool) come after every other header.
#include "x11_fixture.h"

#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include "platform/x11_support.h"

namespace wavetrace::relay {
namespace {

using testing::TestWindow;
using testing::XServer;

// The list in the program, then --relay-window from a device to the window
// it names, as a user runs it.
TEST(X11Relay, WindowsAreListedActivatedAndTypedIntoWithAndWithoutAWindowManager) {
  testing::TempFolder home;
  testing::WriteRegistry(home.Path());
  std::string config = home.Path() + "/keys.cfg.txt";
  ASSERT_FALSE(!platform::WriteFileAtomically(
      config,
      "[Wavetrace Pro]\r\nConfigFile=1\r\n[WINDOW_relay]\r\nTRANSLATE_KEYBOARD_CODES=1\r\n; 64 bytes\r\n"));
  for (bool manager : {false, true}) {
    SCOPED_TRACE(manager ? "window manager" : "bare server");
    XServer server;
    if (!server.Running()) GTEST_SKIP() << "Xvfb is not installed";
    TestWindow scale("Scale log", "ScaleLog", 300, 200);
    TestWindow tiny("tiny", "Tiny", 50, 50);
    TestWindow other("Other", "Other", 200, 40);
    std::unique_ptr<testing::FakeWindowManager> windowManager;
    if (manager)
      windowManager =
          std::make_unique<testing::FakeWindowManager>(std::vector{other.Id(), tiny.Id(), scale.Id()});
    EXPECT_EQ(platform::Desktop().HasWindowManager(), manager);

    core::AppState state;
    state.Data.ShowClassNames = 1;
    std::vector<std::u16string> shown = {u"Scale log : ScaleLog", u"Other : Other"};
    if (manager) std::swap(shown[0], shown[1]);  // the window manager's order
    EXPECT_EQ(FillWindowList(state).Texts, shown);

    platform::PtyPair device;
    testing::Child child({"--port", device.SlavePath(), "--config", config, "--relay-window", "Scale"},
                         home.Path());
    ASSERT_TRUE(child.WaitForError("[Scale log]")) << child.Err();
    EXPECT_TRUE(testing::WaitFor([&] {
      if (windowManager) windowManager->Serve();
      return scale.Focused();
    }));
    device.Write("Kg 12.5\t\x1b[A\x1b[D\x1b[B\x03#(\x80\xe9\xbf\r");
    const std::u16string typed = u"Kg 12.5\t<U><L><D>\x03#(\u20ac\u00e9\u00bf\r";
    EXPECT_EQ(scale.Typed(typed.size()), typed);
    EXPECT_EQ(child.Terminate(), 0);
    EXPECT_NE(child.Err().find("Relay to WINDOW deactivated."), std::string::npos) << child.Err();
  }
}

TEST(X11Relay, SuperF1AndF2AreHardwareButtonsOneAndTwo) {
  XServer server;
  if (!server.Running()) GTEST_SKIP() << "Xvfb is not installed";
  testing::TempFolder folder;
  testing::WriteRegistry(folder.Path(), "AcquireHWbuttons=dword:00000001\n");
  testing::StartedProgram program(folder.Path());
  ASSERT_EQ(program.Start(), 0);
  core::AppState& state = program.state;
  ASSERT_NE(state.HardwareButtonKeys, nullptr);
  state.Port.SelectedPort = u"VSP0:";
  state.Data.HardwareButtonData[0] = u"{PLAY}";
  state.Data.HardwareButtonData[1] = u"{STOP}";
  Display* display = XOpenDisplay(nullptr);
  auto press = [&](KeySym key) {
    // Super down, the key down and up, Super up.
    for (auto [sym, down] :
         {std::pair<KeySym, Bool>{XK_Super_L, True}, {key, True}, {key, False}, {XK_Super_L, False}})
      XTestFakeKeyEvent(display, XKeysymToKeycode(display, sym), down, CurrentTime);
    XSync(display, False);
  };
  press(XK_F1);
  EXPECT_TRUE(program.PumpUntil([&] { return state.PortOpen.load(); }));
  press(XK_F1);
  press(XK_F2);
  EXPECT_TRUE(program.PumpUntil([&] { return !state.PortOpen && !state.PlayFlag; }));
  // Given back, the keys can be taken by another program.
  automation::RegisterHardwareButtons(state, false);
  XGrabKey(display, XKeysymToKeycode(display, XK_F1), Mod4Mask, DefaultRootWindow(display), False,
           GrabModeAsync, GrabModeAsync);
  XSync(display, False);
  XCloseDisplay(display);
}

}  // namespace
}  // namespace wavetrace::relay
