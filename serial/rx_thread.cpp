#include "serial/rx_thread.h"

#include "core/allocation.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/clock.h"
#include "rx/dispatcher.h"
#include "rx/receive_pipeline.h"
#include "serial/port.h"

namespace wavetrace::serial {

uint32_t ReadInData(core::AppState& state, core::DataBlock& block) {
  core::FreeBuffer(state, block.Buffer);
  block.Length = 0;
  if (!state.PlayFlag) return 0;
  if (core::AllocCharBuffer(state, block.Buffer, kReceiveBlockBytes) != 0) {
    core::WriteErrorBlock(state, u"ReadInData:Failed to Allocate data buffer!", platform::OutOfMemory());
    core::FreeBuffer(state, block.Buffer);
    return 0;
  }
  auto port = CurrentPort(state);
  platform::SysResult failure{0, "closed port"};
  int n = port ? port->Read(block.Buffer.Data(), kReceiveBlockBytes, failure) : -1;
  if (n < 0) {
    core::WriteErrorBlock(state, u"Error reading data from comm port.", failure);
    core::FreeBuffer(state, block.Buffer);
    return 0;
  }
  if (n == 0) core::FreeBuffer(state, block.Buffer);
  block.Length = static_cast<uint32_t>(n);
  return block.Length;
}

void RxThread(core::AppState& state, platform::SuspendableThread& self) {
  bool rxResumed = true;
  // Parks until the main window resumes the thread; false when it must end.
  auto suspend = [&](const char16_t* failure) {
    state.Queue.Post(core::MakeMessage(core::kWmRxSuspended));
    if (!self.Park() && !state.ShuttingDown) core::ShowStatusError(state, failure, {});
    rxResumed = true;
    if (state.PortOpen) PurgePort(state);
    return !self.StopRequested();
  };
  while (!state.ShuttingDown) {
    while (auto port = CurrentPort(state)) {
      if (state.ShuttingDown) break;
      if (rxResumed) {
        state.Queue.Post(core::MakeMessage(core::kWmRxActive));
        rxResumed = false;
      }
      uint32_t mask = port->WaitEvent();
      port.reset();
      if (mask == 0) {
        if (!suspend(u"Error suspending RxThread. (b)")) break;
        continue;
      }
      // One settings record for the whole block: a change made meanwhile
      // applies from the next block on.
      const auto settings = state.PublishedRx.Load();
      if (uint32_t delay = settings->RxDelayReadThread; delay != 0) {
        platform::SleepMs(static_cast<int>(delay));
      }
      core::DataBlock block;
      if (ReadInData(state, block) == 0 && !state.PlayFlag) {
        // Nothing is read while the PLAY flag is clear; the port stays
        // readable, so do not spin on it.
        self.SleepFor(kIdleWaitMs);
      }
      rx::ProcessReceivedData(state, *settings, block);
      rx::DispatchReceivedData(state, *settings, block.Buffer.Data(), block.Length);
      core::FreeBuffer(state, block.Buffer);
    }
    if (state.ShuttingDown || self.StopRequested()) break;
    if (!suspend(u"Error suspending RxThread. (c)")) break;
  }
  state.Queue.Post(core::MakeMessage(core::kWmRxEnded));
}

}  // namespace wavetrace::serial
