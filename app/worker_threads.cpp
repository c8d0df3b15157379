#include "app/worker_threads.h"

#include <system_error>

#include "core/reporting.h"
#include "log/interval_recording.h"
#include "platform/clock.h"
#include "rx/receive_window.h"
#include "serial/rx_thread.h"
#include "serial/tx_thread.h"

namespace wavetrace::app {
namespace {

using platform::SuspendableThread;

constexpr int kUpdateCycleMs = 200;

// Every 200 ms for the life of the main window: refresh the receive window
// six times, flush the log cache once. What the cache holds at the end is
// written too.
void RxWndUpdateBody(core::AppState& state, SuspendableThread& self) {
  int countdown = rx::kRefreshCountdown;
  while (!state.ShuttingDown) {
    rx::RxWndUpdateCycle(state, countdown);
    if (!self.SleepFor(kUpdateCycleMs)) break;
  }
  rx::FlushLogCache(state);
}

// The interval recorder on the tick count, its pauses ended by a stop request.
class ThreadClock final : public log::IntervalClock {
 public:
  explicit ThreadClock(SuspendableThread& thread) : thread_(thread) {}
  uint32_t Ticks() override { return platform::TickCount(); }
  bool Sleep(int ms) override { return thread_.SleepFor(ms); }

 private:
  SuspendableThread& thread_;
};

std::unique_ptr<SuspendableThread> Create(const char* name, SuspendableThread::Body body, bool suspended) {
  try {
    return std::make_unique<SuspendableThread>(name, std::move(body), suspended);
  } catch (const std::system_error&) {
    return nullptr;
  }
}

}  // namespace

int CreateWorkerThreads(core::AppState& state) {
  struct ThreadPlan {
    std::unique_ptr<SuspendableThread>& slot;
    const char* name;
    SuspendableThread::Body body;
    bool suspended;
    const char16_t* failure;
  };
  ThreadPlan plans[] = {
      {state.RxThread, "RxThread", [&state](SuspendableThread& t) { serial::RxThread(state, t); }, true,
       u"Error creating RxThread."},
      {state.TxThread, "TxThread", [&state](SuspendableThread& t) { serial::TxThread(state, t); }, true,
       u"Error creating TxThread."},
      {state.RxWndUpdate, "RxWndUpdate", [&state](SuspendableThread& t) { RxWndUpdateBody(state, t); }, false,
       u"Error creating RxWndUpdate Thread."},
      {state.LogIntervalThread, "LogIntervalThread",
       [&state](SuspendableThread& t) {
         ThreadClock clock(t);
         log::LogIntervalThread(state, clock);
       },
       false, u"Error creating LogIntervalThread."},
  };
  for (auto& plan : plans) {
    plan.slot = Create(plan.name, std::move(plan.body), plan.suspended);
    if (!plan.slot) {
      core::ShowErrorBox(state, plan.failure, {});
      return -1;
    }
  }
  return 0;
}

void EndWorkerThreads(core::AppState& state) {
  for (auto* slot : {&state.RxThread, &state.TxThread}) {
    if (*slot) (*slot)->Resume();
  }
  for (auto* slot : {&state.RxThread, &state.TxThread, &state.RxWndUpdate, &state.LogIntervalThread}) {
    if (!*slot) continue;
    (*slot)->RequestStop();
    (*slot)->Join();
    slot->reset();
  }
}

}  // namespace wavetrace::app
