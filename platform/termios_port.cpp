#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>

#include "platform/custom_rate.h"
#include "platform/serial_port.h"
#include "platform/system_error.h"
#include "platform/termios_mapping.h"
#include "platform/wake_event.h"

namespace wavetrace::platform {
namespace {

// A terminal's close waits for the output still queued to leave, up to the
// driver's closing wait (30 s by default), and flow control can hold the line
// that long. The caller has thrown the output away just before, which ends
// that wait on most drivers; what a driver may still hold (a USB adapter's
// own buffer, a UART whose CTS stays low) is waited for on a thread of its
// own: the caller goes on after a short grace and the close finishes by
// itself. Within the grace (every close of a pseudo-terminal, for one) the
// device is released when this returns.
void CloseWithoutWaiting(int fd) {
  try {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> closed = done->get_future();
    std::thread([fd, done] {
      close(fd);
      done->set_value();
    }).detach();
    closed.wait_for(std::chrono::milliseconds(200));
  } catch (const std::system_error&) {
    close(fd);  // no thread to be had: close here
  }
}

class TermiosPort : public SerialPort {
 public:
  explicit TermiosPort(int fd) : fd_(fd) {}
  ~TermiosPort() override { Close(); }
  TermiosPort(const TermiosPort&) = delete;
  TermiosPort& operator=(const TermiosPort&) = delete;

  SysResult Configure(const LineSettings& settings, std::string& refusal) override {
    std::shared_lock lock(closing_);
    refusal.clear();
    if (fd_ < 0) return {0, "closed port"};
    termios current{};
    if (tcgetattr(fd_, &current) != 0) return FailedCall("tcgetattr");
    TermiosRecord record;
    refusal = MakeTermios(settings, current, record);
    if (!refusal.empty()) return {0, "line setting"};
    if (tcsetattr(fd_, TCSANOW, &record.Tio) != 0) {
      SysResult failed = FailedCall("tcsetattr");
      refusal = "the driver refused the line setting";
      return failed;
    }
    if (record.Custom) {
      if (SysResult failed = SetCustomRate(fd_, record.Rate); !failed) {
        refusal = "the driver refused " + std::to_string(record.Rate) + " baud";
        return failed;
      }
    }
    // A driver may round or ignore a rate without saying so: look.
    uint32_t held = CurrentRate(fd_);
    if (held != 0 && !WithinTwoPercent(held, record.Rate)) {
      refusal = "the driver cannot run at " + std::to_string(record.Rate) + " baud (it offers " +
                std::to_string(held) + ")";
      return {0, "baud rate"};
    }
    ApplyModemLines(settings.Rts, settings.Dtr);
    return {};
  }

  uint32_t WaitEvent() override {
    std::shared_lock lock(closing_);
    for (;;) {
      if (fd_ < 0) return 0;
      uint32_t mask = mask_.load();
      if (mask == 0 || hungUp_) return 0;
      pollfd fds[2] = {{fd_, POLLIN, 0}, {wake_.Fd(), POLLIN, 0}};
      int rc = poll(fds, 2, -1);
      if (rc < 0 && errno == EINTR) continue;
      if (rc < 0) return 0;
      if (fds[1].revents) {
        wake_.Clear();
        continue;  // the mask changed: look again
      }
      if (fds[0].revents & (POLLHUP | POLLERR | POLLNVAL)) {
        hungUp_ = true;
        return 0;
      }
      if (fds[0].revents & POLLIN) {
        int queued = 0;
        // Readable with nothing queued: the device is gone (end of file).
        if (ioctl(fd_, FIONREAD, &queued) == 0 && queued == 0) {
          hungUp_ = true;
          return 0;
        }
        return mask & event::kRxChar ? event::kRxChar : mask;
      }
    }
  }

  void SetEventMask(uint32_t mask) override {
    mask_ = mask;
    wake_.Signal();
  }

  int Read(uint8_t* buffer, int count, SysResult& failure) override {
    std::shared_lock lock(closing_);
    if (fd_ < 0) {
      failure = {0, "closed port"};
      return -1;
    }
    for (;;) {
      ssize_t n = read(fd_, buffer, static_cast<size_t>(count));
      if (n >= 0) return static_cast<int>(n);
      if (errno == EINTR) continue;
      if (errno == EAGAIN) return 0;
      failure = FailedCall("read");
      if (failure.Errno == EIO) hungUp_ = true;
      return -1;
    }
  }

  int Write(const uint8_t* data, int count, int timeoutMs, SysResult& failure) override {
    std::shared_lock lock(closing_);
    if (fd_ < 0) {
      failure = {0, "closed port"};
      return -1;
    }
    using Clock = std::chrono::steady_clock;
    auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    int done = 0;
    while (done < count) {
      ssize_t n = write(fd_, data + done, static_cast<size_t>(count - done));
      if (n > 0) {
        done += static_cast<int>(n);
        continue;
      }
      if (n < 0 && errno == EINTR) continue;
      if (n < 0 && errno != EAGAIN) {
        failure = FailedCall("write");
        return done > 0 ? done : -1;
      }
      auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
      if (left <= 0 || closeRequested_) break;
      pollfd fds[2] = {{fd_, POLLOUT, 0}, {closeWake_.Fd(), POLLIN, 0}};
      poll(fds, 2, static_cast<int>(left));
    }
    return done;
  }

  bool DrainOutput(int timeoutMs) override {
    std::shared_lock lock(closing_);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    // TIOCOUTQ rather than tcdrain: the wait has to end when the port closes.
    for (;;) {
      int queued = 0;
      if (fd_ < 0 || closeRequested_ || ioctl(fd_, TIOCOUTQ, &queued) != 0) return false;
      if (queued == 0) return true;
      auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())
              .count();
      if (left <= 0) return false;
      // A byte takes about 1 ms at 9600 baud: look again every few.
      closeWake_.Wait(static_cast<int>(std::min<long long>(left, kDrainPollMs)));
    }
  }

  void DiscardOutput() override {
    std::shared_lock lock(closing_);
    if (fd_ >= 0) tcflush(fd_, TCOFLUSH);
  }

  void Purge() override {
    std::shared_lock lock(closing_);
    if (fd_ >= 0) tcflush(fd_, TCIOFLUSH);
  }

  void ClearModemLines(bool rts, bool dtr) override {
    std::shared_lock lock(closing_);
    int lines = (rts ? TIOCM_RTS : 0) | (dtr ? TIOCM_DTR : 0);
    // Best effort, as when they were set: a port without them has none.
    if (fd_ >= 0 && lines) ioctl(fd_, TIOCMBIC, &lines);
  }

  void ApplyModemLines(bool rts, bool dtr) {
    int set = (rts ? TIOCM_RTS : 0) | (dtr ? TIOCM_DTR : 0);
    int clear = (rts ? 0 : TIOCM_RTS) | (dtr ? 0 : TIOCM_DTR);
    // Modem lines are best effort: a port without them simply has none.
    if (set) ioctl(fd_, TIOCMBIS, &set);
    if (clear) ioctl(fd_, TIOCMBIC, &clear);
  }

  void SendXoff() override {
    std::shared_lock lock(closing_);
    if (fd_ >= 0) tcflow(fd_, TCIOFF);
  }

  void SetModemLine(bool rts, bool on) override {
    std::shared_lock lock(closing_);
    int line = rts ? TIOCM_RTS : TIOCM_DTR;
    if (fd_ >= 0) ioctl(fd_, on ? TIOCMBIS : TIOCMBIC, &line);
  }

  SysResult SetBreak(bool on) override {
    std::shared_lock lock(closing_);
    if (fd_ < 0) return {0, "closed port"};
    if (ioctl(fd_, on ? TIOCSBRK : TIOCCBRK) != 0) return FailedCall(on ? "TIOCSBRK" : "TIOCCBRK");
    return {};
  }

  [[nodiscard]] LineStatus ReadLineStatus() const override {
    std::shared_lock lock(closing_);
    LineStatus status;
    if (fd_ < 0) return status;
    // Drivers without the calls answer ENOTTY or EINVAL: not known.
    int lines = 0;
    if (ioctl(fd_, TIOCMGET, &lines) == 0) {
      status.LinesKnown = true;
      status.Cts = lines & TIOCM_CTS;
      status.Dsr = lines & TIOCM_DSR;
      status.Dcd = lines & TIOCM_CAR;
      status.Ri = lines & TIOCM_RNG;
    }
    serial_icounter_struct counters{};
    if (ioctl(fd_, TIOCGICOUNT, &counters) == 0) {
      status.CountersKnown = true;
      status.Frame = static_cast<uint32_t>(counters.frame);
      status.Parity = static_cast<uint32_t>(counters.parity);
      status.Overrun = static_cast<uint32_t>(counters.overrun);
      status.BufferOverrun = static_cast<uint32_t>(counters.buf_overrun);
      status.Breaks = static_cast<uint32_t>(counters.brk);
    }
    return status;
  }

  void Close() override {
    // Writes and drains in progress leave first, or the lock below would
    // wait for their time-outs.
    closeRequested_ = true;
    closeWake_.Signal();
    SetEventMask(0);
    std::unique_lock lock(closing_);
    if (fd_ < 0) return;
    tcflush(fd_, TCOFLUSH);
    CloseWithoutWaiting(fd_);
    fd_ = -1;
  }

  [[nodiscard]] bool HungUp() const override { return hungUp_; }

  [[nodiscard]] int QueuedInput() const override {
    std::shared_lock lock(closing_);
    int queued = 0;
    if (fd_ < 0 || hungUp_ || ioctl(fd_, FIONREAD, &queued) != 0) return 0;
    return queued;
  }

 private:
  static bool WithinTwoPercent(uint32_t held, uint32_t wanted) {
    uint64_t diff = held > wanted ? held - wanted : wanted - held;
    return diff * 50 <= wanted;
  }

  // Shared by every call, taken whole by Close: the descriptor is never
  // closed under a thread that is still using it.
  mutable std::shared_mutex closing_;
  int fd_;
  std::atomic<uint32_t> mask_{event::kDefaultMask};
  std::atomic<bool> hungUp_{false};
  WakeEvent wake_;
  std::atomic<bool> closeRequested_{false};
  WakeEvent closeWake_;  // signalled once, by Close
  static constexpr long long kDrainPollMs = 5;
};

}  // namespace

std::unique_ptr<SerialPort> OpenTermiosPort(const std::string& path, SysResult& failure) {
  int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    failure = FailedCall(kOpenPortOperation);
    return nullptr;
  }
  // Another program holding the port keeps its lock: refuse instead of
  // sharing the line. TIOCEXCL does not stop root, the lock does.
  if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
    failure = FailedCall(kLockPortOperation);
    close(fd);
    return nullptr;
  }
  ioctl(fd, TIOCEXCL);
  failure = {};
  return std::make_unique<TermiosPort>(fd);
}

}  // namespace wavetrace::platform
