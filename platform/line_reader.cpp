#include "platform/line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {

LineReader::LineReader(int fd, std::function<void(const std::string&)> onLine, std::function<void()> onEnd)
    : fd_(fd) {
  thread_ = std::thread([this, onLine = std::move(onLine), onEnd = std::move(onEnd)] {
    std::string pending;
    for (;;) {
      pollfd fds[2] = {{fd_, POLLIN, 0}, {stop_.Fd(), POLLIN, 0}};
      if (poll(fds, 2, -1) < 0) {
        if (errno == EINTR) continue;
        return;
      }
      if (fds[1].revents) return;
      char buffer[4096];
      ssize_t n = read(fd_, buffer, sizeof buffer);
      if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
      if (n <= 0) {
        if (!pending.empty()) onLine(pending);
        if (onEnd) onEnd();
        return;
      }
      pending.append(buffer, static_cast<size_t>(n));
      for (size_t end; (end = pending.find('\n')) != std::string::npos;) {
        std::string line = pending.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        pending.erase(0, end + 1);
        onLine(line);
      }
    }
  });
}

LineReader::~LineReader() {
  stop_.Signal();
  if (thread_.joinable()) thread_.join();
}

}  // namespace wavetrace::platform
