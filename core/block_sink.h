#pragma once

#include <cstdint>

namespace wavetrace::core {

// Where the receive dispatcher hands each processed block besides the
// receive window (the relays, the log). Layers above rx implement it; app
// installs it in AppState before the receive thread starts and removes it
// after the thread has ended. Called on the receive thread only.
class BlockSink {
 public:
  virtual ~BlockSink() = default;
  virtual void TakeBlock(const uint8_t* block, uint32_t n) = 0;
};

}  // namespace wavetrace::core
