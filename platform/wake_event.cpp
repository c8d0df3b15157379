#include "platform/wake_event.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace wavetrace::platform {

WakeEvent::WakeEvent() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  // Without it no thread could ever be woken: nothing sensible can go on.
  if (fd_ < 0) std::abort();
}

WakeEvent::~WakeEvent() {
  close(fd_);
}

void WakeEvent::Signal() {
  uint64_t one = 1;
  while (write(fd_, &one, sizeof one) < 0 && errno == EINTR) {
  }
}

void WakeEvent::Clear() {
  uint64_t value = 0;
  while (read(fd_, &value, sizeof value) < 0 && errno == EINTR) {
  }
}

bool WakeEvent::Wait(int timeoutMs) {
  pollfd pfd{fd_, POLLIN, 0};
  int rc;
  do {
    rc = poll(&pfd, 1, timeoutMs);
  } while (rc < 0 && errno == EINTR);
  return rc > 0;
}

}  // namespace wavetrace::platform
