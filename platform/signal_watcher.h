#pragma once

#include <functional>
#include <thread>

#include "platform/wake_event.h"

namespace wavetrace::platform {

// Turns SIGINT and SIGTERM into a callback on a thread of its own, so the
// program can end through its normal shutdown. Block() must run before any
// other thread is created, so that no thread takes the signals itself.
class SignalWatcher {
 public:
  static void Block();
  explicit SignalWatcher(std::function<void(int signal)> onSignal);
  ~SignalWatcher();
  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;

 private:
  int fd_ = -1;
  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace wavetrace::platform
