#include <X11/keysym.h>
#include <poll.h>

#include <cerrno>

#include <thread>

#include "platform/hot_keys.h"
#include "platform/wake_event.h"
#include "platform/x11_support.h"

namespace wavetrace::platform {
namespace {

// The modifier bit a key of sym is on (Super_L: Mod4 on common keymaps).
unsigned int ModifierOf(Display* display, KeySym sym, unsigned int fallback) {
  KeyCode code = XKeysymToKeycode(display, sym);
  XModifierKeymap* modifiers = XGetModifierMapping(display);
  unsigned int mask = 0;
  for (int modifier = 0; modifier < 8 && code != 0; ++modifier) {
    for (int i = 0; i < modifiers->max_keypermod; ++i) {
      if (modifiers->modifiermap[modifier * modifiers->max_keypermod + i] == code) mask = 1u << modifier;
    }
  }
  XFreeModifiermap(modifiers);
  return mask ? mask : fallback;
}

}  // namespace

struct HotKeys::Watcher {
  struct Grabbed {
    int Id = 0;
    KeyCode Code = 0;
  };

  Display* display = nullptr;
  Window root = None;
  unsigned int super = Mod4Mask;
  std::vector<unsigned int> masks;  // Super with every state of the locks
  std::vector<Grabbed> grabbed;
  std::function<void(int)> pressed;
  WakeEvent stop;
  std::thread thread;

  ~Watcher() {
    if (thread.joinable()) {
      stop.Signal();
      thread.join();
    }
    for (const Grabbed& key : grabbed) {
      for (unsigned int mask : masks) XUngrabKey(display, key.Code, mask, root);
    }
    XSync(display, False);
    x11::TakeError();
    XCloseDisplay(display);
  }

  void Run() {
    pollfd fds[2] = {{ConnectionNumber(display), POLLIN, 0}, {stop.Fd(), POLLIN, 0}};
    while (true) {
      while (XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type != KeyPress || !(event.xkey.state & super)) continue;
        for (const Grabbed& key : grabbed) {
          if (key.Code == event.xkey.keycode) pressed(key.Id);
        }
      }
      if (poll(fds, 2, -1) < 0 && errno != EINTR) return;
      if (fds[1].revents) return;
      if (fds[0].revents & (POLLHUP | POLLERR)) return;  // the server went away
    }
  }
};

HotKeys::HotKeys(std::span<const HotKey> keys, std::function<void(int)> pressed) {
  Display* display = x11::Open(unavailable_);
  if (!display) return;
  watcher_ = std::make_unique<Watcher>();
  Watcher& w = *watcher_;
  w.display = display;
  w.root = DefaultRootWindow(display);
  w.pressed = std::move(pressed);
  w.super = ModifierOf(display, XK_Super_L, Mod4Mask);
  unsigned int numLock = ModifierOf(display, XK_Num_Lock, 0);
  for (unsigned int lock : {0u, static_cast<unsigned int>(LockMask)}) {
    w.masks.push_back(w.super | lock);
    if (numLock) w.masks.push_back(w.super | lock | numLock);
  }
  x11::TakeError();
  for (const HotKey& key : keys) {
    KeySym sym = XStringToKeysym(key.KeyName);
    KeyCode code = sym == NoSymbol ? 0 : XKeysymToKeycode(display, sym);
    if (code == 0) continue;  // this keyboard has no such key
    for (unsigned int mask : w.masks)
      XGrabKey(display, code, mask, w.root, False, GrabModeAsync, GrabModeAsync);
    XSync(display, False);
    if (x11::TakeError() != 0) {
      for (unsigned int mask : w.masks) XUngrabKey(display, code, mask, w.root);
      refused_.push_back(std::string("Super+") + key.KeyName);
      continue;
    }
    w.grabbed.push_back({key.Id, code});
  }
  XSync(display, False);
  x11::TakeError();
  w.thread = std::thread([&w] { w.Run(); });
}

HotKeys::~HotKeys() = default;

}  // namespace wavetrace::platform
