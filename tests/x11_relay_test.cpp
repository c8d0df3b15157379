// The window relay and the hardware buttons on an X server of the test's own
// (Xvfb; skipped when it is not installed), with and without a window manager:
// the server, a tiny EWMH window manager and windows that record the keys
// they get.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/function_buttons.h"
#include "cli_child.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "relay/window_relay.h"

// Xlib's macros (None, Bool) come after every other header.
#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace wavetrace::relay {
namespace {

// Xvfb on a display number it picks itself; DISPLAY names it while it runs
// (and is unset afterwards).
// Not Running() when Xvfb is not installed.
class XServer {
 public:
  XServer() {
    // The shell's process id (Xvfb's, after the exec), then the display number.
    server_ = popen("echo $$; exec Xvfb -displayfd 1 -screen 0 1024x768x24 -nolisten tcp 2>/dev/null", "re");
    char pid[16], number[16];
    if (!server_ || !fgets(pid, sizeof pid, server_) || !fgets(number, sizeof number, server_)) return;
    pid_ = atoi(pid);
    setenv("DISPLAY", (":" + std::to_string(atoi(number))).c_str(), 1);
  }
  ~XServer() {
    unsetenv("DISPLAY");
    if (Running()) kill(pid_, SIGTERM);
    if (server_) pclose(server_);
  }
  [[nodiscard]] bool Running() const { return pid_ > 0; }

 private:
  FILE* server_ = nullptr;
  pid_t pid_ = -1;
};

// A mapped top-level window with a title and a class that records what the
// keys typed into it give: characters (Control+letter as its control
// character), and the arrows as "<L>", "<R>", "<U>", "<D>".
class TestWindow {
  // The core keyboard map: Xlib's XKB cache can miss a remapped key code
  // when several change notices come in one read, and would then lose that
  // key; the core map is fetched again whole.
  static Display* OpenWithoutXkb() {
    XkbIgnoreExtension(True);
    return XOpenDisplay(nullptr);
  }

 public:
  TestWindow(const std::string& title, const char* className, int width, int height)
      : display_(OpenWithoutXkb()) {
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 10, 10, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height), 0, 0, 0);
    XStoreName(display_, window_, title.c_str());
    XClassHint hint{const_cast<char*>("test"), const_cast<char*>(className)};
    XSetClassHint(display_, window_, &hint);
    XSelectInput(display_, window_, KeyPressMask | StructureNotifyMask);
    XMapWindow(display_, window_);
    for (XEvent event; XNextEvent(display_, &event) == 0 && event.type != MapNotify;) {
    }
  }
  ~TestWindow() { XCloseDisplay(display_); }

  [[nodiscard]] Window Id() const { return window_; }
  bool Focused() {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display_, &focus, &revert);
    return focus == window_;
  }
  // What the keys typed so far give.
  std::u16string Typed() {
    for (XEvent event; XPending(display_);) {
      XNextEvent(display_, &event);
      if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
      if (event.type != KeyPress) continue;
      char text[8];
      KeySym sym = NoSymbol;
      int count = XLookupString(&event.xkey, text, sizeof text, &sym, nullptr);
      if (sym >= XK_Left && sym <= XK_Down)
        typed_ += std::u16string(u"<L><U><R><D>").substr((sym - XK_Left) * 3, 3);
      if (sym >= 0x1000000) {
        typed_ += static_cast<char16_t>(sym & 0xffff);
      } else {
        for (int i = 0; i < count; ++i) typed_ += static_cast<char16_t>(static_cast<uint8_t>(text[i]));
      }
    }
    return typed_;
  }

 private:
  Display* display_;
  Window window_ = None;
  std::u16string typed_;
};

// Just enough of an EWMH window manager: it names itself on the root, lists
// the clients it was given, and on Serve() activates the windows asked for
// through _NET_ACTIVE_WINDOW (raise and focus).
class FakeWindowManager {
 public:
  explicit FakeWindowManager(const std::vector<Window>& clients) : display_(XOpenDisplay(nullptr)) {
    Window root = DefaultRootWindow(display_);
    check_ = XCreateSimpleWindow(display_, root, 0, 0, 1, 1, 0, 0, 0);
    auto set = [&](Window on, const char* name, Atom type, const void* values, size_t count) {
      XChangeProperty(display_, on, XInternAtom(display_, name, False), type, 32, PropModeReplace,
                      static_cast<const unsigned char*>(values), static_cast<int>(count));
    };
    set(root, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW, &check_, 1);
    set(check_, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW, &check_, 1);
    set(root, "_NET_CLIENT_LIST", XA_WINDOW, clients.data(), clients.size());
    XSelectInput(display_, root, SubstructureNotifyMask);
    XSync(display_, False);
  }
  ~FakeWindowManager() { XCloseDisplay(display_); }

  void Serve() {
    for (XEvent event; XPending(display_);) {
      XNextEvent(display_, &event);
      if (event.type != ClientMessage) continue;
      XRaiseWindow(display_, event.xclient.window);
      XSetInputFocus(display_, event.xclient.window, RevertToPointerRoot, CurrentTime);
      XSync(display_, False);
    }
  }

 private:
  Display* display_;
  Window check_ = None;
};

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
    std::unique_ptr<FakeWindowManager> windowManager;
    if (manager)
      windowManager = std::make_unique<FakeWindowManager>(std::vector{other.Id(), tiny.Id(), scale.Id()});
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
    EXPECT_TRUE(child.Until([&] {
      if (windowManager) windowManager->Serve();
      return scale.Focused();
    }));
    device.Write("Kg 12.5\t\x1b[A\x1b[D\x1b[B\x03#(\x80\xe9\xbf\r");
    const std::u16string typed = u"Kg 12.5\t<U><L><D>\x03#(\u20ac\u00e9\u00bf\r";
    EXPECT_TRUE(child.Until([&] { return scale.Typed().size() >= typed.size(); }));
    EXPECT_EQ(scale.Typed(), typed);
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
