// The display stream on a reader that stops reading.
#include "app/display_stream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/code_page.h"

namespace wavetrace::app {
namespace {

TEST(DisplayStream, ASlowReaderLosesTheOldestOutputAndIsToldHowMuch) {
  int fds[2];
  ASSERT_EQ(pipe2(fds, O_CLOEXEC), 0);
  constexpr size_t kLimit = 256 << 10;
  std::mutex mutex;
  std::vector<std::string> notices;
  std::string pushed, out;
  auto notice = [&](std::u16string_view text) {
    std::lock_guard lock(mutex);
    notices.push_back(core::WideToUtf8(text));
  };
  DisplayStream stream(fds[1], StreamEncoding::kBytes, notice, kLimit);
  // Nobody reads yet: the pipe fills, the writer waits in it, the queue
  // overflows.
  for (int i = 0; i < 4000; ++i) {
    std::string piece = std::to_string(i) + std::string(1000, static_cast<char>(i));
    pushed += piece;
    stream.TakeBlock(reinterpret_cast<const uint8_t*>(piece.data()), static_cast<uint32_t>(piece.size()));
  }
  std::thread reader([&] {
    char buffer[1 << 16];
    for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;)
      out.append(buffer, static_cast<size_t>(n));
  });
  stream.Close(5000);
  close(fds[1]);
  reader.join();
  close(fds[0]);
  uint64_t dropped = 0;
  for (const auto& text : notices) {
    size_t at = text.find("bytes dropped here");
    ASSERT_NE(at, std::string::npos) << text;
    dropped += std::stoull(text.substr(text.rfind(' ', at - 2) + 1));
  }
  EXPECT_GT(dropped, 0u);
  EXPECT_EQ(out.size() + dropped, pushed.size());
  // What was pending at the end is all there, in order.
  ASSERT_GE(out.size(), kLimit);
  EXPECT_TRUE(out.compare(out.size() - kLimit, kLimit, pushed, pushed.size() - kLimit, kLimit) == 0);
}

}  // namespace
}  // namespace wavetrace::app
