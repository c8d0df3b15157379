#include "platform/pty.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "platform/fd_io.h"

namespace wavetrace::platform {

PtyPair::PtyPair() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (master_ < 0) return;
  char name[128] = {};
  if (grantpt(master_) != 0 || unlockpt(master_) != 0 || ptsname_r(master_, name, sizeof name) != 0) {
    close(master_);
    master_ = -1;
    return;
  }
  slavePath_ = name;
  // The master side is raw too, so bytes pass unchanged both ways.
  termios tio{};
  if (tcgetattr(master_, &tio) == 0) {
    cfmakeraw(&tio);
    tcsetattr(master_, TCSANOW, &tio);
  }
  fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
}

PtyPair::~PtyPair() {
  CloseMaster();
}

bool PtyPair::Write(const std::string& bytes) {
  return master_ >= 0 && WriteAll(master_, bytes);
}

std::string PtyPair::Read(size_t want, int timeoutMs) {
  std::string out;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  while (master_ >= 0 && out.size() < want) {
    auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())
            .count();
    if (left <= 0) break;
    pollfd pfd{master_, POLLIN, 0};
    if (poll(&pfd, 1, static_cast<int>(left)) <= 0) continue;
    char buffer[4096];
    ssize_t n = read(master_, buffer, sizeof buffer);
    if (n > 0) out.append(buffer, static_cast<size_t>(n));
    if (n < 0 && errno != EAGAIN && errno != EINTR) break;
  }
  return out;
}

void PtyPair::CloseMaster() {
  if (master_ >= 0) close(master_);
  master_ = -1;
}

}  // namespace wavetrace::platform
