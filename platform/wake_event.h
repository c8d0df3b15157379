#pragma once

namespace wavetrace::platform {

// A level-triggered wake-up that a poll loop (or a Qt socket notifier) can
// watch: Signal() makes the descriptor readable until Clear().
class WakeEvent {
 public:
  WakeEvent();
  ~WakeEvent();
  WakeEvent(const WakeEvent&) = delete;
  WakeEvent& operator=(const WakeEvent&) = delete;

  [[nodiscard]] int Fd() const { return fd_; }
  void Signal();
  void Clear();
  // Waits until signalled or until timeoutMs passed (-1: no limit).
  // Returns true when signalled.
  bool Wait(int timeoutMs);

 private:
  int fd_ = -1;
};

}  // namespace wavetrace::platform
