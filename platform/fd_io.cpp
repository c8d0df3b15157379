#include "platform/fd_io.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {

static_assert(kStandardInput == STDIN_FILENO && kStandardOutput == STDOUT_FILENO &&
              kStandardError == STDERR_FILENO);

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t n = write(fd, data.data(), data.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno == EAGAIN) {
      pollfd pfd{fd, POLLOUT, 0};
      poll(&pfd, 1, 1000);
      continue;
    }
    if (n <= 0) return false;
    data.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

}  // namespace wavetrace::platform
