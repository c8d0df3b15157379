#include "platform/fd_io.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

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

bool IsTerminal(int fd) {
  return isatty(fd) == 1;
}

bool LocaleIsUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || !*value) continue;
    std::string upper;
    for (const char* c = value; *c; ++c) {
      if (*c != '-') upper += static_cast<char>(*c >= 'a' && *c <= 'z' ? *c - 'a' + 'A' : *c);
    }
    return upper.find("UTF8") != std::string::npos;
  }
  return false;
}

}  // namespace wavetrace::platform
