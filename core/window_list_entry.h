#pragma once

#include <cstdint>
#include <string>

namespace wavetrace::core {

// One window of the window relay's list, and the kind of the chosen target
// (all empty until one is chosen). Entries are compared whole.
struct WindowListEntry {
  static constexpr size_t kTextChars = 63;  // title and class name are read up to this

  std::u16string Title;
  std::u16string ClassName;
  uint64_t Handle = 0;  // the X window
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Right = 0;
  int32_t Bottom = 0;

  bool operator==(const WindowListEntry&) const = default;
};

}  // namespace wavetrace::core
