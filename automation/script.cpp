#include "automation/script.h"

#include <system_error>

#include "automation/script_runner.h"
#include "config/config_file.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/files.h"

namespace wavetrace::automation {
namespace {

using namespace core::cmd;

// The script's way into the program: everything it does to the windows, the
// settings and the port runs on the main thread through the message queue.
class ProgramScriptHost final : public ScriptHost {
 public:
  ProgramScriptHost(core::AppState& state, platform::SuspendableThread& thread)
      : state_(state), thread_(thread) {}

  bool Sleep(int ms) override { return thread_.SleepFor(ms) && !state_.ShuttingDown; }
  [[nodiscard]] bool Ending() const override { return state_.ShuttingDown || thread_.StopRequested(); }

  void WriteToReceiveWindow(std::u16string_view text) override {
    state_.Queue.RunOnMainThreadAndWait([&] { state_.Screen.RxReplaceSelection(text); });
  }

  void LoadConfiguration(const std::u16string& path) override {
    state_.Queue.RunOnMainThreadAndWait([&] {
      platform::SysResult failure;
      // A file that cannot be opened says nothing by itself; named by a
      // script, it must not pass in silence.
      if (config::ConfigLoad(state_, path, failure) != 0 && !failure) {
        core::ShowStatusError(state_, u"Config file not found [" + path + u"]", failure);
      }
    });
    // The screen follows the loaded settings.
    state_.Queue.Send(core::MakeMessage(core::kWmCommand, kConfigLoad, core::kFromMainWindow));
  }

  void SendText(const std::u16string& text) override {
    // As a user would: wait while the port is still opening or a send is
    // going out (the field is locked meanwhile). A REPEAT run keeps it
    // locked until STOP; the line is then typed into a locked field.
    while (state_.PortOpen && !Ending() &&
           (!state_.Screen.IsButtonEnabled(kStop) || (state_.TxActive && !state_.TxRepeat))) {
      if (!Sleep(kScriptPollMs)) return;
    }
    state_.Queue.RunOnMainThreadAndWait([&] {
      state_.Screen.SetTxText(text);
      // Enter in the transmit field is a tap on SEND.
      if (state_.Screen.TxEnabled() && state_.Screen.IsButtonEnabled(kSend)) {
        state_.Queue.SendCommand(kSend);
      } else if (!state_.PortOpen) {
        core::ShowStatus(state_, u"Port closed!  Line not sent: " + text);
      }
    });
  }

  void Play() override {
    if (!state_.PlayFlag.exchange(true)) state_.Queue.SendCommand(kPlay);
  }
  void Stop() override {
    if (state_.PlayFlag.exchange(false)) state_.Queue.SendCommand(kStop);
  }
  void ExitProgram() override { state_.Queue.PostCommand(kExit); }
  void ScriptEnded() override {}

 private:
  core::AppState& state_;
  platform::SuspendableThread& thread_;
};

void AutomationThread(core::AppState& state, platform::SuspendableThread& self, const std::u16string& text) {
  ProgramScriptHost host(state, self);
  ScriptEnd end = RunScript(text, state.ScriptState, state.Switches.Debug != 0, host);
  if (end == ScriptEnd::kProgramEnding) return;
  state.Queue.RunOnMainThreadAndWait([&state] {
    state.ScriptRunning = false;
    // Another script may be run now (while the port is closed).
    if (!state.PortOpen) state.Screen.GreyMenuItem(kRunScript, false);
  });
  if (end == ScriptEnd::kEndOfText && state.Switches.ExitAfterScript) state.Queue.PostCommand(kExit);
}

}  // namespace

int LoadScript(const std::u16string& path, std::u16string& text, platform::SysResult& failure) {
  std::string bytes;
  failure = platform::ReadWholeFile(core::WideToUtf8(path), bytes);
  if (!failure || bytes.empty()) return -1;
  text = core::BytesToWide(bytes);
  return 0;
}

int StartScriptThread(core::AppState& state, std::u16string text) {
  if (state.ScriptRunning) return -1;
  // A script that ended by itself left its finished thread behind.
  if (state.AutomationThread) {
    state.AutomationThread->Join();
    state.AutomationThread.reset();
  }
  state.ScriptState = kScriptRunning;
  state.ScriptRunning = true;
  try {
    state.AutomationThread = std::make_unique<platform::SuspendableThread>(
        "AutomationThread",
        [&state, text = std::move(text)](platform::SuspendableThread& self) {
          AutomationThread(state, self, text);
        },
        false);
  } catch (const std::system_error&) {
    state.ScriptRunning = false;
    state.ScriptState = kScriptEnded;
    if (state.View) state.View->SetWaitCursor(false);
    core::ShowErrorBox(state, u"Error creating AutomationThread.  Automation Aborted!", {});
    return -1;
  }
  state.Screen.GreyMenuItem(kRunScript, true);
  return 0;
}

int StartScript(core::AppState& state, const std::u16string& path) {
  std::u16string text;
  platform::SysResult failure;
  if (LoadScript(path, text, failure) != 0) return -1;
  return StartScriptThread(state, std::move(text));
}

void EndScript(core::AppState& state) {
  if (!state.AutomationThread) return;
  state.ScriptState = kScriptEnded;
  state.Queue.StopAndJoin(*state.AutomationThread);
  state.AutomationThread.reset();
  state.ScriptRunning = false;
}

}  // namespace wavetrace::automation
