#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/x11_keyboard.h"
#include "platform/x11_support.h"

namespace wavetrace::platform {
namespace {

using Clock = std::chrono::steady_clock;

// Keys waiting beyond this are refused: the focused program stopped reading.
constexpr size_t kMaxQueued = size_t{1} << 20;
// Spare key codes held at once; then the one used longest ago is remapped.
constexpr size_t kMaxSpares = 8;
// A remapped spare code is not remapped again sooner than this after a use.
constexpr auto kSpareRest = std::chrono::milliseconds(100);
// After this long without keys, the spare codes are given back.
constexpr auto kIdleRestore = std::chrono::seconds(1);

struct KeyOp {
  KeySym Sym = NoSymbol;
  bool Tap = false;  // press and release (a character); otherwise Up says which
  bool Up = false;
};

KeySym CharacterSym(char16_t ch) {
  switch (ch) {
    case 8:
      return XK_BackSpace;
    case 9:
      return XK_Tab;
    case 10:
      return XK_Linefeed;
    case 13:
      return XK_Return;
    case 27:
      return XK_Escape;
    case 127:
      return XK_Delete;
    default:
      break;
  }
  // Latin-1 keysyms are the characters themselves; the rest by code point.
  if ((ch >= 0x20 && ch <= 0x7e) || (ch >= 0xa0 && ch <= 0xff)) return ch;
  return 0x01000000 | ch;
}

KeySym VirtualKeySym(uint8_t key) {
  switch (key) {
    case vk::kControl:
      return XK_Control_L;
    case vk::kEnd:
      return XK_End;
    case vk::kHome:
      return XK_Home;
    case vk::kLeft:
      return XK_Left;
    case vk::kUp:
      return XK_Up;
    case vk::kRight:
      return XK_Right;
    case vk::kDown:
      return XK_Down;
    case vk::kDelete:
      return XK_Delete;
    case vk::kAt:
      return XK_at;
    default:
      break;
  }
  if (key >= 'A' && key <= 'Z') return XK_a + (key - 'A');
  return NoSymbol;
}

}  // namespace

struct X11Keyboard::Typist {
  struct Spare {
    KeyCode Code = 0;
    KeySym Sym = NoSymbol;
    Clock::time_point Used;
  };

  Display* display = nullptr;
  std::mutex mutex;
  std::condition_variable changed;
  std::condition_variable drained;
  std::deque<KeyOp> queue;
  bool stop = false;
  std::atomic<bool> stopping{false};  // stop, seen without the lock in the middle of a batch
  bool busy = false;
  // The keymap as last read (per key code, perCode keysyms).
  int minCode = 8;
  int maxCode = 255;
  int perCode = 0;
  std::vector<KeySym> map;
  bool mapStale = true;
  std::vector<Spare> spares;
  KeyCode shift = 0;
  std::thread thread;

  explicit Typist(Display* d) : display(d) {
    XDisplayKeycodes(display, &minCode, &maxCode);
    shift = XKeysymToKeycode(display, XK_Shift_L);
    thread = std::thread([this] { Run(); });
  }

  ~Typist() {
    {
      std::lock_guard lock(mutex);
      stop = true;
    }
    stopping = true;
    changed.notify_all();
    thread.join();
    XCloseDisplay(display);
  }

  bool Queue(KeyOp op) {
    {
      std::lock_guard lock(mutex);
      if (queue.size() >= kMaxQueued) return false;
      queue.push_back(op);
    }
    changed.notify_one();
    return true;
  }

  void Run() {
    std::unique_lock lock(mutex);
    while (!stop) {
      if (queue.empty()) {
        auto ready = [this] { return stop || !queue.empty(); };
        if (spares.empty()) {
          changed.wait(lock, ready);
        } else if (!changed.wait_for(lock, kIdleRestore, ready)) {
          lock.unlock();
          RestoreSpares();
          lock.lock();
        }
        continue;
      }
      std::deque<KeyOp> batch;
      batch.swap(queue);
      busy = true;
      lock.unlock();
      TakeMappingChanges();
      // RELAY going off drops what is still to type.
      for (const KeyOp& op : batch) {
        if (stopping) break;
        Perform(op);
      }
      XSync(display, False);
      x11::TakeError();
      lock.lock();
      busy = false;
      drained.notify_all();
    }
    lock.unlock();
    RestoreSpares();
  }

  void TakeMappingChanges() {
    while (XPending(display)) {
      XEvent event;
      XNextEvent(display, &event);
      if (event.type == MappingNotify) {
        XRefreshKeyboardMapping(&event.xmapping);
        mapStale = true;
      }
    }
  }

  void LoadMap() {
    if (!mapStale) return;
    int count = maxCode - minCode + 1;
    KeySym* syms = XGetKeyboardMapping(display, static_cast<KeyCode>(minCode), count, &perCode);
    map.assign(syms, syms + static_cast<size_t>(count) * static_cast<size_t>(perCode));
    XFree(syms);
    mapStale = false;
  }

  KeySym& At(int code, int level) { return map[static_cast<size_t>((code - minCode) * perCode + level)]; }

  // The key code giving sym at level 0 or 1 (shifted); code 0 when none.
  std::pair<KeyCode, int> Find(KeySym sym) {
    LoadMap();
    for (int level = 0; level < std::min(perCode, 2); ++level) {
      for (int code = minCode; code <= maxCode; ++code) {
        if (At(code, level) == sym) return {static_cast<KeyCode>(code), level};
      }
    }
    return {0, 0};
  }

  void MapCode(KeyCode code, KeySym sym) {
    KeySym syms[2] = {sym, sym};
    XChangeKeyboardMapping(display, code, 2, syms, 1);
    XSync(display, False);
    x11::TakeError();
    for (int level = 0; level < perCode; ++level) At(code, level) = level < 2 ? sym : NoSymbol;
  }

  // A spare key code mapped to sym, as typing tools do it: a code without
  // any keysym, or the one used longest ago.
  KeyCode SpareFor(KeySym sym) {
    LoadMap();
    if (spares.size() < kMaxSpares) {
      for (int code = maxCode; code >= minCode; --code) {
        bool empty = true;
        for (int level = 0; level < perCode; ++level) empty = empty && At(code, level) == NoSymbol;
        bool taken =
            std::any_of(spares.begin(), spares.end(), [&](const Spare& s) { return s.Code == code; });
        if (!empty || taken) continue;
        MapCode(static_cast<KeyCode>(code), sym);
        spares.push_back({static_cast<KeyCode>(code), sym, Clock::now()});
        return static_cast<KeyCode>(code);
      }
    }
    if (spares.empty()) return 0;
    auto oldest = std::min_element(spares.begin(), spares.end(),
                                   [](const Spare& a, const Spare& b) { return a.Used < b.Used; });
    std::this_thread::sleep_until(oldest->Used + kSpareRest);
    MapCode(oldest->Code, sym);
    oldest->Sym = sym;
    return oldest->Code;
  }

  void RestoreSpares() {
    if (spares.empty()) return;
    for (const Spare& spare : spares) MapCode(spare.Code, NoSymbol);
    spares.clear();
  }

  void Key(KeyCode code, bool down) { XTestFakeKeyEvent(display, code, down ? True : False, CurrentTime); }

  void Perform(const KeyOp& op) {
    if (op.Sym == NoSymbol) return;
    auto [code, level] = Find(op.Sym);
    if (code == 0) {
      code = SpareFor(op.Sym);
      level = 0;
      if (code == 0) return;
    }
    for (Spare& spare : spares) {
      if (spare.Code == code) spare.Used = Clock::now();
    }
    bool shifted = level == 1 && shift != 0;
    if (op.Tap || !op.Up) {
      if (shifted) Key(shift, true);
      Key(code, true);
    }
    if (op.Tap || op.Up) {
      Key(code, false);
      if (shifted) Key(shift, false);
    }
  }
};

X11Keyboard::X11Keyboard() {
  Display* display = x11::Open(unavailable_);
  if (!display) return;
  int event = 0;
  int error = 0;
  int major = 0;
  int minor = 0;
  if (!XTestQueryExtension(display, &event, &error, &major, &minor)) {
    unavailable_ = "the X server has no XTest extension to type with";
    XCloseDisplay(display);
    return;
  }
  typist_ = std::make_unique<Typist>(display);
}

X11Keyboard::~X11Keyboard() = default;

bool X11Keyboard::PostKey(char16_t character, uint32_t, int) {
  if (!typist_) return false;
  if (character == 0) return true;  // no key gives it
  return typist_->Queue({CharacterSym(character), true, false});
}

void X11Keyboard::KeyEvent(uint8_t virtualKey, bool up) {
  if (typist_) typist_->Queue({VirtualKeySym(virtualKey), false, up});
}

bool X11Keyboard::Drain(int timeoutMs) {
  if (!typist_) return true;
  std::unique_lock lock(typist_->mutex);
  return typist_->drained.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                   [this] { return typist_->queue.empty() && !typist_->busy; });
}

}  // namespace wavetrace::platform
