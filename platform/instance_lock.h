#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "platform/wake_event.h"

namespace wavetrace::platform {

// Running instances find each other by window title. Each title held by a
// running instance is an exclusively locked file in the lock folder; the
// holder also listens on a socket named after the folder and the title, so a
// later start can ask it to come to the front.
class InstanceLock {
 public:
  explicit InstanceLock(std::string lockFolder) : folder_(std::move(lockFolder)) {}
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  // True when a running instance holds the title.
  [[nodiscard]] bool IsTitleInUse(const std::string& title) const;
  // Takes the title for this process; false when it is in use or the lock
  // folder cannot be used.
  bool Acquire(const std::string& title);
  // Asks the holder of title to come to the front; false when nobody answers.
  bool RequestActivation(const std::string& title) const;
  // Starts listening for activation requests; onActivate runs on a listener
  // thread.
  void Listen(std::function<void()> onActivate);
  void Release();

 private:
  [[nodiscard]] std::string LockFile(const std::string& title) const;
  [[nodiscard]] std::string SocketName(const std::string& title) const;

  std::string folder_;
  std::string title_;
  int lockFd_ = -1;
  int socketFd_ = -1;
  WakeEvent stop_;
  std::thread listener_;
};

}  // namespace wavetrace::platform
