#pragma once
// The X11 tests' own desktop: an Xvfb server, a tiny EWMH window manager and
// windows that record the keys they get.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

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
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      std::string fd = std::to_string(dup(fds[1]));
      int null = open("/dev/null", O_WRONLY);
      dup2(null, 2);
      execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1024x768x24", "-nolisten", "tcp",
             static_cast<char*>(nullptr));
      _exit(127);
    }
    close(fds[1]);
    std::string number;
    char c = 0;
    pollfd ready{fds[0], POLLIN, 0};
    while (poll(&ready, 1, 10000) > 0 && read(fds[0], &c, 1) == 1 && c != '\n') number += c;
    close(fds[0]);
    if (number.empty()) return;
    setenv("DISPLAY", (":" + number).c_str(), 1);
    running_ = true;
  }
  ~XServer() {
    unsetenv("DISPLAY");
    if (pid_ > 0 && kill(pid_, SIGTERM) == 0) waitpid(pid_, nullptr, 0);
  }
  [[nodiscard]] bool Running() const { return running_; }

 private:
  pid_t pid_ = -1;
  bool running_ = false;
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
      while (XPending(display_)) Take();
      return typed_.size() >= length;
    });
    return typed_;
  }

 private:
  void Take() {
    XEvent event;
    XNextEvent(display_, &event);
    if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
    if (event.type != KeyPress) return;
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
    std::vector<unsigned long> ids(clients.begin(), clients.end());
    set(root, "_NET_CLIENT_LIST", XA_WINDOW, ids.data(), ids.size());
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
