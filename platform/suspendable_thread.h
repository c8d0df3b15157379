#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace wavetrace::platform {

// A worker thread that can park itself until resumed.
//
// Resume() leaves a token; Park() consumes it. A resume that arrives before
// the thread parks is therefore not lost, and PLAY or shutdown can never race
// a thread into a permanent park. Several resumes before one park count once.
class SuspendableThread {
 public:
  using Body = std::function<void(SuspendableThread&)>;

  // startSuspended: the body only begins after the first Resume().
  SuspendableThread(std::string name, Body body, bool startSuspended);
  ~SuspendableThread();  // stops and joins
  SuspendableThread(const SuspendableThread&) = delete;
  SuspendableThread& operator=(const SuspendableThread&) = delete;

  // Returns false when the thread has already ended.
  bool Resume();
  // Called by the thread itself: waits for a resume token and consumes it.
  // Returns early (false) once a stop was requested.
  bool Park();
  // Sleeps up to ms milliseconds; returns false early once a stop was requested.
  bool SleepFor(int ms);

  // Asks the body to end (Park and SleepFor return at once from now on).
  void RequestStop();
  [[nodiscard]] bool StopRequested() const { return stop_.load(); }
  [[nodiscard]] bool IsParked() const { return parked_.load(); }
  [[nodiscard]] bool HasEnded() const { return ended_.load(); }
  [[nodiscard]] const std::string& Name() const { return name_; }
  void Join();

 private:
  std::string name_;
  std::mutex mutex_;
  std::condition_variable cv_;
  bool token_ = false;
  std::atomic<bool> stop_{false};
  std::atomic<bool> parked_{false};
  std::atomic<bool> ended_{false};
  std::thread thread_;
};

}  // namespace wavetrace::platform
