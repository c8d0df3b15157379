#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace wavetrace::platform {

// A hot key: its identifier and the X keysym name of its key ("F1"),
// pressed together with the Super (Windows) key.
struct HotKey {
  int Id = 0;
  const char* KeyName = "";
};

// Hot keys of the whole desktop: Super plus each key of a table, grabbed on
// the root window of the X server named by DISPLAY (with Caps Lock and Num
// Lock either way), and watched on a thread of their own with their own
// connection. Destroying the object releases them.
class HotKeys {
 public:
  // pressed(id) runs on the watching thread.
  HotKeys(std::span<const HotKey> keys, std::function<void(int id)> pressed);
  ~HotKeys();
  HotKeys(const HotKeys&) = delete;
  HotKeys& operator=(const HotKeys&) = delete;

  // Empty when the keys could be grabbed; otherwise why none was (one line).
  [[nodiscard]] const std::string& Unavailable() const { return unavailable_; }
  // Keys another program holds already ("Super+F3"), which this one lacks.
  [[nodiscard]] const std::vector<std::string>& Refused() const { return refused_; }

 private:
  struct Watcher;
  std::unique_ptr<Watcher> watcher_;
  std::string unavailable_;
  std::vector<std::string> refused_;
};

}  // namespace wavetrace::platform
