#include "app/display_stream.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include "core/code_page.h"
#include "platform/fd_io.h"

namespace wavetrace::app {
namespace {

// Small pieces are joined into chunks of about this size, so a fast line
// costs few writes.
constexpr size_t kChunkBytes = size_t{64} << 10;

std::u16string Count(const char16_t* before, uint64_t bytes, const char16_t* after) {
  return before + core::Utf8ToWide(std::to_string(bytes)) + after;
}

}  // namespace

// What the writer thread shares with the producers. The writer holds it too,
// so a writer left behind at the end (a reader that never reads) touches
// nothing that is gone.
struct DisplayStream::Shared {
  int fd;
  StreamEncoding encoding;
  std::function<void(std::u16string_view)> notice;
  size_t limit;

  std::mutex mutex;
  std::condition_variable wake;     // work for the writer
  std::condition_variable drained;  // the writer has nothing in hand
  std::deque<std::string> chunks;
  size_t pending = 0;    // bytes in chunks
  uint64_t dropped = 0;  // dropped since the writer last reported
  bool writing = false;  // the writer has a chunk in hand
  bool closing = false;  // no more output is taken
  bool stop = false;     // the writer ends once the queue is empty
  bool broken = false;   // the descriptor refused a write

  void Run() {
    std::unique_lock lock(mutex);
    for (;;) {
      wake.wait(lock, [&] { return stop || !chunks.empty(); });
      if (chunks.empty()) break;
      std::string chunk = std::move(chunks.front());
      chunks.pop_front();
      pending -= chunk.size();
      uint64_t gap = std::exchange(dropped, 0);
      writing = true;
      lock.unlock();
      if (gap) notice(Count(u"wavetrace-cli: standard output fell behind: ", gap, u" bytes dropped here"));
      if (encoding == StreamEncoding::kUtf8) chunk = core::WideToUtf8(core::BytesToWide(chunk));
      bool written = platform::WriteAll(fd, chunk);
      if (!written) notice(u"wavetrace-cli: standard output is closed; received data is no longer written");
      lock.lock();
      writing = false;
      if (!written) {
        broken = true;
        chunks.clear();
        pending = 0;
      }
      if (chunks.empty()) drained.notify_all();
    }
    drained.notify_all();
  }
};

DisplayStream::DisplayStream(int fd, StreamEncoding encoding, std::function<void(std::u16string_view)> notice,
                             size_t limit)
    : shared_(std::make_shared<Shared>()) {
  shared_->fd = fd;
  shared_->encoding = encoding;
  shared_->notice = std::move(notice);
  shared_->limit = limit;
  writer_ = std::thread([shared = shared_] { shared->Run(); });
}

DisplayStream::~DisplayStream() {
  Close(0);
}

void DisplayStream::TakeBlock(const uint8_t* block, uint32_t n) {
  Push(std::string(reinterpret_cast<const char*>(block), n));
}

void DisplayStream::TakeText(std::u16string_view text) {
  Push(core::WideToBytes(text));
}

void DisplayStream::Push(std::string bytes) {
  Shared& s = *shared_;
  {
    std::lock_guard lock(s.mutex);
    if (s.closing || s.broken || bytes.empty()) return;
    if (bytes.size() > s.limit) {
      // More than the whole bound at once: only its tail can be kept.
      s.dropped += bytes.size() - s.limit;
      bytes.erase(0, bytes.size() - s.limit);
    }
    // The oldest pending output goes first.
    while (s.pending + bytes.size() > s.limit) {
      std::string& oldest = s.chunks.front();
      size_t cut = std::min(oldest.size(), s.pending + bytes.size() - s.limit);
      s.dropped += cut;
      s.pending -= cut;
      if (cut == oldest.size()) {
        s.chunks.pop_front();
      } else {
        oldest.erase(0, cut);
      }
    }
    s.pending += bytes.size();
    if (!s.chunks.empty() && s.chunks.back().size() + bytes.size() <= kChunkBytes) {
      s.chunks.back() += bytes;
    } else {
      s.chunks.push_back(std::move(bytes));
    }
  }
  s.wake.notify_one();
}

void DisplayStream::Close(int waitMs) {
  if (!writer_.joinable()) return;
  Shared& s = *shared_;
  std::unique_lock lock(s.mutex);
  s.closing = true;
  bool done = s.drained.wait_for(lock, std::chrono::milliseconds(waitMs),
                                 [&] { return s.chunks.empty() && !s.writing; });
  uint64_t left = s.pending;
  s.chunks.clear();
  s.pending = 0;
  s.stop = true;
  lock.unlock();
  s.wake.notify_one();
  if (done) {
    writer_.join();
    return;
  }
  // The reader has stopped reading: the writer may sit in a write for good.
  writer_.detach();
  if (left)
    s.notice(Count(u"wavetrace-cli: standard output did not take the last ", left, u" bytes in time"));
}

}  // namespace wavetrace::app
