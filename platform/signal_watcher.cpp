#include "platform/signal_watcher.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {
namespace {
sigset_t Watched() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}
}  // namespace

void SignalWatcher::Block() {
  // A closed pipe on standard output is a failed write, not a reason to die.
  signal(SIGPIPE, SIG_IGN);
  sigset_t set = Watched();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

SignalWatcher::SignalWatcher(std::function<void(int)> onSignal) {
  sigset_t set = Watched();
  fd_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  if (fd_ < 0) return;
  thread_ = std::thread([this, onSignal = std::move(onSignal)] {
    for (;;) {
      pollfd fds[2] = {{fd_, POLLIN, 0}, {stop_.Fd(), POLLIN, 0}};
      if (poll(fds, 2, -1) < 0 && errno != EINTR) return;
      if (fds[1].revents) return;
      signalfd_siginfo info{};
      while (read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        onSignal(static_cast<int>(info.ssi_signo));
      }
    }
  });
}

SignalWatcher::~SignalWatcher() {
  stop_.Signal();
  if (thread_.joinable()) thread_.join();
  if (fd_ >= 0) close(fd_);
}

}  // namespace wavetrace::platform
