#include "core/message_queue.h"

#include <algorithm>

#include "core/messages.h"
#include "platform/clock.h"

namespace wavetrace::core {

using Clock = std::chrono::steady_clock;

MessageQueue::MessageQueue() : mainThread_(std::this_thread::get_id()) {}

MessageQueue::~MessageQueue() {
  BeginShutdown();
}

void MessageQueue::SetHandler(Handler handler) {
  std::lock_guard lock(mutex_);
  handler_ = std::move(handler);
}

void MessageQueue::BindMainThread() {
  mainThread_ = std::this_thread::get_id();
}

bool MessageQueue::Post(Message message) {
  {
    std::lock_guard lock(mutex_);
    if (quit_) return false;
    posted_.push_back(std::move(message));
  }
  wake_.Signal();
  return true;
}

int64_t MessageQueue::Send(Message message) {
  if (OnMainThread()) return Dispatch(message);
  auto pending = std::make_shared<Pending>();
  pending->message = std::move(message);
  std::unique_lock lock(mutex_);
  if (shuttingDown_) return 0;
  sent_.push_back(pending);
  wake_.Signal();
  sendDone_.wait(lock, [&] { return pending->done || shuttingDown_; });
  return pending->done ? pending->result : 0;
}

int64_t MessageQueue::RunOnMainThread(std::function<int64_t()> call) {
  Message message = MakeMessage(kWmCall);
  message.Call = std::move(call);
  return Send(std::move(message));
}

void MessageQueue::PostQuit(int exitCode) {
  {
    std::lock_guard lock(mutex_);
    if (quit_) return;
    quit_ = true;
    quitCode_ = exitCode;
  }
  wake_.Signal();
}

bool MessageQueue::QuitPosted() const {
  std::lock_guard lock(mutex_);
  return quit_;
}

int MessageQueue::QuitCode() const {
  std::lock_guard lock(mutex_);
  return quitCode_;
}

void MessageQueue::SetTimer(uint32_t id, int intervalMs) {
  {
    std::lock_guard lock(mutex_);
    timers_[id] = Timer{intervalMs, Clock::now() + std::chrono::milliseconds(intervalMs)};
  }
  wake_.Signal();
}

void MessageQueue::KillTimer(uint32_t id) {
  std::lock_guard lock(mutex_);
  timers_.erase(id);
}

int MessageQueue::NextTimerDelayMs() const {
  std::lock_guard lock(mutex_);
  if (timers_.empty()) return -1;
  auto next = Clock::time_point::max();
  for (const auto& [id, timer] : timers_) next = std::min(next, timer.due);
  auto delay = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
  return static_cast<int>(std::clamp<int64_t>(delay, 0, 1'000'000));
}

int64_t MessageQueue::Dispatch(const Message& message) {
  if (message.Code == kWmCall) return message.Call ? message.Call() : 0;
  Handler handler;
  {
    std::lock_guard lock(mutex_);
    handler = handler_;
  }
  return handler ? handler(message) : 0;
}

bool MessageQueue::DispatchOneSend() {
  std::shared_ptr<Pending> pending;
  {
    std::lock_guard lock(mutex_);
    if (sent_.empty()) return false;
    pending = sent_.front();
    sent_.pop_front();
  }
  int64_t result = Dispatch(pending->message);
  {
    std::lock_guard lock(mutex_);
    pending->result = result;
    pending->done = true;
  }
  sendDone_.notify_all();
  return true;
}

void MessageQueue::DispatchPendingSends() {
  while (DispatchOneSend()) {
  }
}

void MessageQueue::DispatchDueTimers() {
  std::vector<uint32_t> due;
  {
    std::lock_guard lock(mutex_);
    auto now = Clock::now();
    for (auto& [id, timer] : timers_) {
      if (timer.due > now) continue;
      due.push_back(id);
      timer.due = now + std::chrono::milliseconds(timer.intervalMs);
    }
  }
  for (uint32_t id : due) Dispatch(MakeMessage(kWmTimer, id));
}

bool MessageQueue::DispatchPending() {
  wake_.Clear();
  // Messages are taken one at a time, so a handler that pumps the queue
  // itself (a modal box) goes on where this call stands.
  for (;;) {
    if (DispatchOneSend()) continue;
    Message message;
    {
      std::lock_guard lock(mutex_);
      if (quit_ || posted_.empty()) break;
      message = std::move(posted_.front());
      posted_.pop_front();
    }
    Dispatch(message);
  }
  if (!QuitPosted()) DispatchDueTimers();
  return !QuitPosted();
}

int MessageQueue::RunLoop() {
  while (DispatchPending()) wake_.Wait(NextTimerDelayMs());
  return QuitCode();
}

void MessageQueue::StopAndJoin(platform::SuspendableThread& worker) {
  worker.RequestStop();
  while (!worker.HasEnded()) {
    DispatchPendingSends();
    platform::SleepMs(2);
  }
  worker.Join();
}

void MessageQueue::BeginShutdown() {
  {
    std::lock_guard lock(mutex_);
    shuttingDown_ = true;
    // A released sender has gone on; its request must never run afterwards.
    sent_.clear();
  }
  sendDone_.notify_all();
}

bool MessageQueue::ShuttingDown() const {
  std::lock_guard lock(mutex_);
  return shuttingDown_;
}

}  // namespace wavetrace::core
