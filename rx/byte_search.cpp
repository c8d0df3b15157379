#include "rx/byte_search.h"

#include <cstring>

namespace wavetrace::rx {

int64_t FindBytes(const uint8_t* data, int64_t length, const uint8_t* pattern, int64_t patternLength,
                  int64_t start, bool forward) {
  if (start < 0 || start > length || patternLength > length - start) return -1;
  if (patternLength <= 0) return -1;
  const uint8_t first = pattern[0];
  // Patterns are short (rules hold at most 42 bytes), so a plain loop beats
  // a library call per candidate.
  const auto matchesAt = [&](int64_t i) {
    if (patternLength > length - i) return false;
    for (int64_t k = 1; k < patternLength; ++k) {
      if (data[i + k] != pattern[k]) return false;
    }
    return true;
  };
  if (forward) {
    // The last position a match can start at; the first byte is found with
    // memchr so long runs without it cost almost nothing.
    const int64_t lastStart = length - patternLength;
    int64_t i = start;
    while (i <= lastStart) {
      const void* hit = std::memchr(data + i, first, static_cast<size_t>(lastStart - i + 1));
      if (!hit) return -1;
      i = static_cast<const uint8_t*>(hit) - data;
      if (matchesAt(i)) return i;
      ++i;
    }
    return -1;
  }
  for (int64_t i = length - 1 - start; i >= 0; --i) {
    if (data[i] == first && matchesAt(i)) return i;
  }
  return -1;
}

}  // namespace wavetrace::rx
