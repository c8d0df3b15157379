#include "automation/port_scan.h"

#include <cstdio>
#include <cstring>
#include <system_error>

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "rx/dispatcher.h"

namespace wavetrace::automation {
namespace {

using namespace core::cmd;
using core::strip::kPsmStrip;

constexpr int kOpenSettleMs = 450;
constexpr int kPeriodMs = 95;

// What the thread works from: the table and the options taken at its start
// on the main thread, and the line setting to put back at the end.
struct ScanPlan {
  std::u16string Port;
  std::vector<ScanEntry> Table;
  int32_t Interval = 1;
  bool SendOnOpen = false;
  ScanEntry Saved;
};

class PortScan {
 public:
  PortScan(core::AppState& state, platform::SuspendableThread& self) : state_(state), self_(self) {}

  void Run() {
    ScanPlan plan = TakePlan();
    state_.PortScanMode = true;
    char head[96];
    std::snprintf(head, sizeof head, "\r\n\r\nPSM started.\r\n(Total combinations = %d)\r\n",
                  static_cast<int>(plan.Table.size()));
    Announce(head);
    std::snprintf(head, sizeof head, "Scan interval = %d sec.\r\n", static_cast<int>(plan.Interval));
    Announce(head);
    int32_t outcome = plan.Port.empty() ? kScanNoPort : Scan(plan);
    if (outcome == kEnding) return;
    if (outcome == kScanNoPort) {
      state_.Queue.RunOnMainThreadAndWait([this] {
        for (const char16_t* line : {u"\r\n", u"\r\nERROR!", u"\r\nNo COM port selected.",
                                     u"\r\nPlease select a COM port to use, and try again.", u"\r\n"}) {
          state_.Screen.RxInsertAtCaret(line);
        }
      });
    }
    state_.PsmOutcome = outcome;
    SetLine(plan.Saved);
    state_.Queue.SendCommand(kStop);
    state_.PortScanMode = false;
    state_.Queue.Send(core::MakeMessage(core::kWmStripCommand, kPsmStrip + core::strip::kPsmStop));
  }

 private:
  static constexpr int32_t kEnding = -1;  // the program is ending: leave at once
  enum class Wait { kDone, kStopRequested, kPortClosed, kEnding };

  int32_t Scan(const ScanPlan& plan) {
    int periods = 10 * plan.Interval - 5;
    for (const ScanEntry& entry : plan.Table) {
      if (state_.PsmStopRequested) return kScanStopped;
      SetLine(entry);
      Announce(ScanHeading(plan.Port, entry));
      state_.PlayFlag = true;
      state_.Queue.SendCommand(kPlay);
      if (!Sleep(kOpenSettleMs)) return kEnding;
      if (plan.SendOnOpen) state_.Queue.SendCommand(kSend);
      Wait wait = WaitPeriods(periods, true);
      if (wait == Wait::kEnding) return kEnding;
      if (wait == Wait::kPortClosed) return kScanPortClosed;
      state_.Queue.SendCommand(kStop);
      if (state_.PsmStopRequested) return kScanStopped;
      wait = WaitPeriods(periods, false);
      if (wait == Wait::kEnding) return kEnding;
      if (wait == Wait::kStopRequested) return kScanStopped;
    }
    return kScanCompleted;
  }

  // Up to count periods of 95 ms: a stop request is seen before each one;
  // while the port should be open, a port closed meanwhile ends the scan.
  Wait WaitPeriods(int count, bool portOpen) {
    for (int i = 0; i < count; ++i) {
      if (state_.PsmStopRequested) return Wait::kStopRequested;
      if (!Sleep(kPeriodMs)) return Wait::kEnding;
      if (portOpen && !state_.PlayFlag) return Wait::kPortClosed;
    }
    return Wait::kDone;
  }

  bool Sleep(int ms) { return self_.SleepFor(ms) && !state_.ShuttingDown; }

  ScanPlan TakePlan() {
    ScanPlan plan;
    state_.Queue.RunOnMainThreadAndWait([&] {
      const core::PortSettings& port = state_.Port;
      const core::PortScanSettings& psm = state_.Psm;
      plan.Port = port.SelectedPort;
      plan.Table = BuildScanTable(port, {psm.PsmRotateBaud == 1, psm.PsmRotateDataBits == 1,
                                         psm.PsmRotateParity == 1, psm.PsmRotateStopBits == 1});
      plan.Interval = psm.PsmScanInterval;
      plan.SendOnOpen = psm.PsmSendOnOpen == 1;
      plan.Saved = {port.SelectedBaud, port.SelectedDataBits, port.Parity, port.StopBits};
    });
    return plan;
  }

  // The line setting is the main thread's to change.
  void SetLine(const ScanEntry& line) {
    state_.Queue.RunOnMainThreadAndWait([&] {
      state_.Port.SelectedBaud = line.Baud;
      state_.Port.SelectedDataBits = line.DataBits;
      state_.Port.Parity = line.Parity;
      state_.Port.StopBits = line.StopBits;
      core::PublishSettings(state_);
    });
  }

  // Announcements go through the receive path, so they are shown, logged
  // and relayed like received data.
  void Announce(const std::string& text) {
    auto settings = state_.PublishedRx.Load();
    rx::DispatchReceivedData(state_, *settings, reinterpret_cast<const uint8_t*>(text.data()),
                             static_cast<uint32_t>(text.size()));
  }

  core::AppState& state_;
  platform::SuspendableThread& self_;
};

void EnablePsmButton(core::AppState& state, int control, bool enabled) {
  state.Screen.EnableButton(kPsmStrip + control, enabled);
}

}  // namespace

std::string ScanHeading(const std::u16string& port, const ScanEntry& entry) {
  std::string parity = core::WideToBytes(entry.Parity);
  char heading[160];
  std::snprintf(heading, sizeof heading, "\r\n[%s,%d,%d,%c,%s]\r\n", core::WideToBytes(port).c_str(),
                static_cast<int>(entry.Baud), entry.DataBits, parity.empty() ? '\0' : parity[0],
                core::WideToBytes(entry.StopBits).c_str());
  return std::string(heading, strnlen(heading, sizeof heading));
}

void PsmStart(core::AppState& state) {
  if (!state.PsmStopRequested) return;
  EnablePsmButton(state, core::strip::kPsmStart, false);
  EnablePsmButton(state, core::strip::kPsmTx, false);
  state.PsmStopRequested = false;
  state.PsmOutcome = kScanNotRun;
  // A scan that finished by itself left its thread behind.
  if (state.PsmThread) {
    state.PsmThread->Join();
    state.PsmThread.reset();
  }
  try {
    state.PsmThread = std::make_unique<platform::SuspendableThread>(
        "PortScanThread", [&state](platform::SuspendableThread& self) { PortScan(state, self).Run(); },
        false);
  } catch (const std::system_error&) {
    EnablePsmButton(state, core::strip::kPsmStart, true);
    EnablePsmButton(state, core::strip::kPsmTx, true);
    state.PsmStopRequested = true;
    core::ShowErrorBox(state, u"Error creating Port Scan Mode thread.", {});
    return;
  }
  state.Psm.PsmSendOnOpen = state.Screen.IsButtonPressed(kPsmStrip + core::strip::kPsmTx) ? 1 : 0;
  state.Queue.SetTimer(core::kPsmStartTimerId, core::kPsmButtonDelayMs);
}

void PsmStop(core::AppState& state) {
  state.PsmStopRequested = true;
  EnablePsmButton(state, core::strip::kPsmStop, false);
  state.Queue.KillTimer(core::kPsmStartTimerId);
  state.Queue.SetTimer(core::kPsmStopTimerId, core::kPsmButtonDelayMs);
}

void PsmToggleTx(core::AppState& state) {
  int tx = kPsmStrip + core::strip::kPsmTx;
  state.Screen.SetButtonPressed(tx, !state.Screen.IsButtonPressed(tx));
}

void OnPsmTimer(core::AppState& state, uint32_t timerId) {
  state.Queue.KillTimer(timerId);
  if (timerId == core::kPsmStartTimerId) {
    EnablePsmButton(state, core::strip::kPsmStop, true);
  } else {
    EnablePsmButton(state, core::strip::kPsmStart, true);
    EnablePsmButton(state, core::strip::kPsmTx, true);
  }
}

void ShowPsmStrip(core::AppState& state) {
  bool idle = state.PsmStopRequested;
  EnablePsmButton(state, core::strip::kPsmStart, idle);
  EnablePsmButton(state, core::strip::kPsmTx, idle);
  EnablePsmButton(state, core::strip::kPsmStop, !idle);
  state.Screen.ShowStrip(kPsmStrip, state.Psm.PsmEnabled == 1);
}

void EndPortScan(core::AppState& state) {
  if (!state.PsmThread) return;
  state.PsmStopRequested = true;
  state.Queue.StopAndJoin(*state.PsmThread);
  state.PsmThread.reset();
  state.PortScanMode = false;
}

}  // namespace wavetrace::automation
