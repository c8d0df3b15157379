#include "app/headless_input.h"

#include <array>
#include <utility>

#include "app/main_window.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "serial/port.h"
#include "serial/tx_thread.h"

namespace wavetrace::app {
namespace {

using namespace core::cmd;

struct EscapeCommand {
  std::string_view Word;
  int Command;
  const char16_t* Name;  // as the button or menu item says it
};

constexpr std::array<EscapeCommand, 11> kEscapeCommands = {{
    {"play", kPlay, u"PLAY"},
    {"stop", kStop, u"STOP"},
    {"repeat", kRepeat, u"REPEAT"},
    {"record", kRecord, u"RECORD"},
    {"relay", kRelay, u"RELAY"},
    {"clear", kClearReceiveWindow, u"Clear"},
    {"pause", kPauseRxDisplay, u"Pause Received window"},
    {"break", kSendBreak, u"Send Break"},
    {"rts", kToggleRts, u"RTS"},
    {"dtr", kToggleDtr, u"DTR"},
    {"exit", kExit, u"Exit"},
}};

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

}  // namespace

HeadlessInput::HeadlessInput(core::AppState& state, bool utf8, bool exitOnEnd,
                             std::function<void(std::u16string_view)> report)
    : state_(state), utf8_(utf8), exitOnEnd_(exitOnEnd), report_(std::move(report)) {}

void HeadlessInput::OnLine(const std::string& line) {
  std::string_view text = line;
  if (text.starts_with("~") && !text.starts_with("~~")) {
    std::string word = Lower(Trimmed(text.substr(1)));
    for (const auto& escape : kEscapeCommands) {
      if (word != escape.Word) continue;
      if (!IsCommandAvailable(escape.Command)) {
        report_(u"~" + core::Utf8ToWide(word) + u": " + escape.Name +
                u" is not available in this program yet");
        return;
      }
      items_.push_back({escape.Command, {}});
      Pump();
      return;
    }
    std::u16string known;
    for (const auto& escape : kEscapeCommands) known += u" ~" + core::Utf8ToWide(escape.Word);
    report_(u"Unknown command " + core::Utf8ToWide(line) + u"; the commands are" + known +
            u", and ~~ sends a line beginning with ~");
    return;
  }
  if (text.starts_with("~~")) text.remove_prefix(1);
  items_.push_back({0, utf8_ ? core::Utf8ToWide(text) : core::BytesToWide(text)});
  Pump();
}

void HeadlessInput::OnEnd() {
  ended_ = true;
  Pump();
}

bool HeadlessInput::PortOpening() const {
  return (state_.PlayFlag || state_.PortOpen) && !state_.Screen.IsButtonEnabled(kStop);
}

void HeadlessInput::Pump() {
  while (!items_.empty() && !state_.ShuttingDown) {
    Item& next = items_.front();
    // A command waits for the lines before it to be sent, but not for a
    // REPEAT run, which only a command (STOP) ends.
    if (state_.TxActive && !(next.Command != 0 && state_.TxRepeat)) return;
    Item item = std::move(next);
    items_.pop_front();
    if (item.Command != 0) {
      MainWindowProc(state_, core::MakeMessage(core::kWmCommand, item.Command));
    } else if (PortOpening()) {
      // Opened but not yet receiving: the receive thread's purge would
      // throw the line away. The opened state pumps again.
      items_.push_front(std::move(item));
      return;
    } else if (!state_.PortOpen) {
      report_(u"Port closed!  Line not sent: " + item.Text);
    } else {
      state_.Screen.SetTxText(item.Text);
      MainWindowProc(state_, core::MakeMessage(core::kWmCommand, kSend));
    }
  }
  // An opening port still has the command line's start actions to run
  // (--send, --record, --relay, --send-break): the end waits for them.
  if (ended_ && exitOnEnd_ && items_.empty() && !state_.TxActive && !PortOpening() && !exitPosted_) {
    exitPosted_ = true;
    // Closing the port throws away what is still queued for the line: let
    // the last line leave first (within the write time-out of a short send).
    if (auto port = serial::CurrentPort(state_)) port->DrainOutput(serial::WriteTimeoutMs(state_, 256));
    state_.Queue.PostCommand(kExit);
  }
}

}  // namespace wavetrace::app
