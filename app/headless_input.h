#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace wavetrace::app {

// The keyboard of a run without a window: standard input, a line at a time.
// Each line goes into the transmit field and is sent with SEND, in order and
// once, as soon as the previous send has ended. A line of "~" and a word runs
// that command through the main window's command table, as its button would
// ("~~" at the start sends the line with one "~"). Everything runs on the
// main thread.
class HeadlessInput {
 public:
  // utf8: lines arrive as UTF-8 and are converted to the code page; else
  // each byte is one character of the code page. report writes one line to
  // standard error.
  HeadlessInput(core::AppState& state, bool utf8, bool exitOnEnd,
                std::function<void(std::u16string_view)> report);

  void OnLine(const std::string& line);
  // Standard input has ended.
  void OnEnd();
  // Sends or runs what is due; called again whenever a send run ends.
  void Pump();

 private:
  struct Item {
    int Command = 0;  // non-zero: a command; else Text is a line to send
    std::u16string Text;
  };

  // PLAY has begun and the port is not yet receiving; the opened (or the
  // closed) state pumps again.
  [[nodiscard]] bool PortOpening() const;

  core::AppState& state_;
  bool utf8_;
  bool exitOnEnd_;
  std::function<void(std::u16string_view)> report_;
  std::deque<Item> items_;
  bool ended_ = false;
  bool exitPosted_ = false;
};

}  // namespace wavetrace::app
