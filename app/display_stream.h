#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <thread>

#include "core/block_sink.h"

namespace wavetrace::app {

// How the stream writes: the code page's bytes as they are, or UTF-8 for a
// terminal that shows UTF-8.
enum class StreamEncoding { kBytes, kUtf8 };

// Pending output kept for a slow reader before the oldest is dropped.
inline constexpr size_t kDisplayStreamLimit = size_t{64} << 20;
// How long the end of a run waits for standard output to take what is left.
inline constexpr int kDisplayStreamDrainMs = 5000;

// Standard output as the display of a run without a window: every block the
// dispatcher shows and every text put into the receive window, in the order it
// happened and complete. A writer thread of its own drains a queue to the
// descriptor, so the receive thread never waits for a slow reader. Past
// `limit` pending bytes the oldest are dropped, and the writer reports the
// count (through notice, which may be called from the writer thread until
// the process ends) where the gap is.
class DisplayStream : public core::BlockSink {
 public:
  DisplayStream(int fd, StreamEncoding encoding, std::function<void(std::u16string_view)> notice,
                size_t limit = kDisplayStreamLimit);
  ~DisplayStream() override;
  DisplayStream(const DisplayStream&) = delete;
  DisplayStream& operator=(const DisplayStream&) = delete;

  void TakeBlock(const uint8_t* block, uint32_t n) override;
  // Text of the receive window, written through the code page.
  void TakeText(std::u16string_view text);
  // Writes what is pending, waiting at most waitMs for the reader; what is
  // still left then is dropped and reported. Later output is ignored.
  void Close(int waitMs);

 private:
  struct Shared;
  void Push(std::string bytes);

  std::shared_ptr<Shared> shared_;
  std::thread writer_;
};

}  // namespace wavetrace::app
