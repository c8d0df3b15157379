#pragma once

#include <functional>
#include <mutex>
#include <thread>

namespace wavetrace::core {

// The lock around every allocation and release of shared buffers, and around
// an error box while it is up. It is recursive, so a thread that shows a box
// may still allocate.
//
// The main thread must never block on it while a worker holds it and waits for
// the main thread (an error box raised by a worker is shown by the main
// thread). So on the main thread Lock() tries the lock and, between tries,
// runs the wait hook, which serves the requests that such a worker waits for.
class MemoryLock {
 public:
  void SetMainThread(std::thread::id id) { mainThread_ = id; }
  // Called on the main thread while it waits for the lock.
  void SetMainThreadWaitHook(std::function<void()> hook) { waitHook_ = std::move(hook); }

  void lock();
  bool try_lock() { return mutex_.try_lock(); }
  void unlock() { mutex_.unlock(); }

 private:
  std::recursive_mutex mutex_;
  std::thread::id mainThread_;
  std::function<void()> waitHook_;
};

}  // namespace wavetrace::core
