#pragma once
// The X11 tests' own desktop: an Xvfb server, a tiny EWMH window manager and
// windows that record the keys they get.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace wavetrace::testing {

inline bool WaitFor(const std::function<bool()>& condition, int ms = 5000) {
  for (auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms); !condition();) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

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
 public:
  TestWindow(const std::string& title, const char* className, int width, int height)
      : display_(XOpenDisplay(nullptr)) {
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
  // What was typed, once it is length characters long (or the time is up).
  std::u16string Typed(size_t length) {
    WaitFor([&] {
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
      return typed_.size() >= length;
    });
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
    while (XPending(display_)) {
      XEvent event;
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

}  // namespace wavetrace::testing
