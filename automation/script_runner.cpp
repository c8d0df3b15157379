#include "automation/script_runner.h"

#include "automation/script_scanner.h"
#include "serial/tx_thread.h"

namespace wavetrace::automation {
namespace {

// DELAY n: above 100 ms, whole 100 ms steps (the rest dropped), each only
// while the script still runs; otherwise one wait. The repeat pause of the
// transmit path follows the same rule.
bool Delay(std::u16string_view argument, std::atomic<int32_t>& state, ScriptHost& host) {
  if (argument.empty()) return true;
  serial::RepeatPause pause = serial::RepeatPauseOf(static_cast<uint32_t>(ScriptNumber(argument)));
  if (pause.Steps == 0) return pause.SingleSleepMs == 0 || host.Sleep(pause.SingleSleepMs);
  for (int step = 0; step < pause.Steps; ++step) {
    if (host.Ending() || state != kScriptRunning) return true;
    if (!host.Sleep(kScriptPollMs)) return false;
  }
  return true;
}

// Carries out one command; false when the thread is to leave at once.
bool CarryOut(const ScriptCommand& command, std::atomic<int32_t>& state, ScriptHost& host) {
  switch (KeywordOf(command.Keyword)) {
    case Keyword::kComment:
      host.WriteToReceiveWindow(command.Argument.empty() ? u"\r\n" : u"\r\n" + command.Argument + u"\r\n");
      return true;
    case Keyword::kDelay:
      return Delay(command.Argument, state, host);
    case Keyword::kConfig:
      if (!command.Argument.empty()) host.LoadConfiguration(command.Argument);
      return true;
    case Keyword::kSend:
      if (!command.Argument.empty()) host.SendText(command.Argument);
      return true;
    case Keyword::kPlay:
      host.Play();
      return true;
    case Keyword::kStop:
      host.Stop();
      return true;
    case Keyword::kExitProgram:
      host.ExitProgram();
      state = kScriptEnded;
      return false;
    case Keyword::kUnknown:
      return true;
  }
  return true;
}

}  // namespace

ScriptEnd RunScript(std::u16string_view text, std::atomic<int32_t>& state, bool debug, ScriptHost& host) {
  size_t cursor = 0;
  int retries = kScriptRetries;
  ScriptCommand command;
  bool ended = false;
  for (;;) {
    if (host.Ending()) return ScriptEnd::kProgramEnding;
    if (state == kScriptRunning) {
      if (FindNextCommand(text, cursor, command)) {
        retries = kScriptRetries;
        if (debug) {
          host.WriteToReceiveWindow(u"\r\nFound pair:\r\n <" + command.Keyword + u"><" + command.ClosingTag +
                                    u">");
        }
      } else if (--retries > 0) {
        if (!host.Sleep(kScriptPollMs)) return ScriptEnd::kProgramEnding;
        continue;
      } else {
        host.WriteToReceiveWindow(u"\r\n");
        host.WriteToReceiveWindow(u" ============================\r\n");
        host.WriteToReceiveWindow(u" Script Automation mode:[END]\r\n\r\n");
        state = kScriptEnded;
        ended = true;
        host.ScriptEnded();
        // The last command is carried out once more, as it always was.
      }
      if (!CarryOut(command, state, host)) return ScriptEnd::kExitProgram;
    }
    if (host.Ending()) return ScriptEnd::kProgramEnding;
    if (state == kScriptEnded) return ended ? ScriptEnd::kEndOfText : ScriptEnd::kStopped;
    if (!host.Sleep(kScriptPollMs)) return ScriptEnd::kProgramEnding;
  }
}

}  // namespace wavetrace::automation
