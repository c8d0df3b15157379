#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/suspendable_thread.h"
#include "platform/wake_event.h"

namespace wavetrace::core {

struct Message {
  uint32_t Code = 0;
  int64_t WParam = 0;
  int64_t LParam = 0;
  std::function<int64_t()> Call;  // kWmCall only
};

inline Message MakeMessage(uint32_t code, int64_t wParam = 0, int64_t lParam = 0) {
  Message message;
  message.Code = code;
  message.WParam = wParam;
  message.LParam = lParam;
  return message;
}

// The logical main window's message queue. Worker threads, scripts, port scan
// and buttons reach the main window only through it. The main thread serves
// it: the headless front end with RunLoop(), the Qt view by watching WakeFd()
// and calling DispatchPending().
class MessageQueue {
 public:
  using Handler = std::function<int64_t(const Message&)>;

  MessageQueue();
  ~MessageQueue();

  void SetHandler(Handler handler);
  // The calling thread becomes the main thread.
  void BindMainThread();
  [[nodiscard]] bool OnMainThread() const { return std::this_thread::get_id() == mainThread_; }

  // Queues a message; false once the loop has ended.
  bool Post(Message message);
  bool PostCommand(int command) { return Post(MakeMessage(0x0111, command)); }
  // Runs the message on the main thread and returns its result. On the main
  // thread it runs at once. Once shutdown has begun it returns 0 without
  // running, so a worker can never block a shutdown that waits for it.
  int64_t Send(Message message);
  int64_t SendCommand(int command) { return Send(MakeMessage(0x0111, command)); }
  int64_t RunOnMainThread(std::function<int64_t()> call);
  // The same for a call without a result.
  template <typename Call>
  void RunOnMainThreadAndWait(Call&& call) {
    RunOnMainThread([&call] {
      call();
      return int64_t{0};
    });
  }

  void PostQuit(int exitCode);
  [[nodiscard]] bool QuitPosted() const;
  [[nodiscard]] int QuitCode() const;

  // Periodic timers delivered as kWmTimer with WParam = id.
  void SetTimer(uint32_t id, int intervalMs);
  void KillTimer(uint32_t id);
  // Milliseconds until the next timer is due, -1 when none is set.
  [[nodiscard]] int NextTimerDelayMs() const;

  // Handles everything queued and due now. Returns false once quit was posted.
  bool DispatchPending();
  // Serves only the synchronous requests of waiting senders (used while the
  // main thread waits for a lock such a sender may hold).
  void DispatchPendingSends();
  // On the main thread: asks a worker that drives the main window to stop and
  // waits for it to end, serving the requests it sends meanwhile.
  void StopAndJoin(platform::SuspendableThread& worker);
  // The headless loop: serves the queue until quit; returns the quit code.
  int RunLoop();

  // From now on Send returns at once and waiting senders are released.
  void BeginShutdown();
  [[nodiscard]] bool ShuttingDown() const;

  [[nodiscard]] int WakeFd() const { return wake_.Fd(); }

 private:
  struct Pending {
    Message message;
    int64_t result = 0;
    bool done = false;
  };
  struct Timer {
    int intervalMs = 0;
    std::chrono::steady_clock::time_point due;
  };

  int64_t Dispatch(const Message& message);
  bool DispatchOneSend();
  void DispatchDueTimers();

  mutable std::mutex mutex_;
  std::condition_variable sendDone_;
  std::deque<Message> posted_;
  std::deque<std::shared_ptr<Pending>> sent_;
  std::map<uint32_t, Timer> timers_;
  Handler handler_;
  std::thread::id mainThread_;
  bool quit_ = false;
  int quitCode_ = 0;
  bool shuttingDown_ = false;
  platform::WakeEvent wake_;
};

}  // namespace wavetrace::core
