#include "platform/suspendable_thread.h"

#include <chrono>

namespace wavetrace::platform {

SuspendableThread::SuspendableThread(std::string name, Body body, bool startSuspended)
    : name_(std::move(name)) {
  thread_ = std::thread([this, startSuspended, body = std::move(body)] {
    if (!startSuspended || Park()) body(*this);
    ended_ = true;
  });
}

SuspendableThread::~SuspendableThread() {
  RequestStop();
  Join();
}

bool SuspendableThread::Resume() {
  if (ended_) return false;
  {
    std::lock_guard lock(mutex_);
    token_ = true;
  }
  cv_.notify_all();
  return true;
}

bool SuspendableThread::Park() {
  std::unique_lock lock(mutex_);
  parked_ = true;
  cv_.wait(lock, [this] { return token_ || stop_; });
  parked_ = false;
  token_ = false;
  return !stop_;
}

bool SuspendableThread::SleepFor(int ms) {
  std::unique_lock lock(mutex_);
  return !cv_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return stop_.load(); });
}

void SuspendableThread::RequestStop() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  cv_.notify_all();
}

void SuspendableThread::Join() {
  if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
}

}  // namespace wavetrace::platform
