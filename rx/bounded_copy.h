#pragma once

#include <cstdint>
#include <cstring>

namespace wavetrace::rx {

// Appends at most `count` bytes of `source` at `cursor`, stopping before the
// first zero byte, and returns the new cursor. This is how the receive stages
// that compose a block from pieces treat their data: a zero byte in a piece
// ends that piece, and what follows it is lost (the block's zero fill then
// stands in for it).
inline uint8_t* AppendUntilZero(uint8_t* cursor, const uint8_t* source, size_t count) {
  const void* zero = std::memchr(source, 0, count);
  const size_t kept = zero ? static_cast<size_t>(static_cast<const uint8_t*>(zero) - source) : count;
  std::memcpy(cursor, source, kept);
  return cursor + kept;
}

}  // namespace wavetrace::rx
