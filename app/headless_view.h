#pragma once

#include <mutex>

#include "core/app_state.h"
#include "core/front_end.h"

namespace wavetrace::app {

// The front end without a window: what is inserted into the receive window
// goes to standard output as the exact bytes, the status line and boxes go to
// standard error, one line each.
class HeadlessView : public core::FrontEnd {
 public:
  HeadlessView(core::AppState& state, int outFd, int errFd, bool quiet);

  void ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon icon) override;
  [[nodiscard]] bool BoxesNeedMainThread() const override { return false; }
  [[nodiscard]] bool WindowExists() const override;
  bool SetClipboardText(std::u16string_view) override { return false; }
  void SetWaitCursor(bool) override {}
  [[nodiscard]] int ScreenHeight() const override { return 0; }
  void RenderScreenChanges() override;
  void ShowAbout(std::u16string_view releaseLine, bool automationMode) override;
  void ShowProgramOptions() override {}

 private:
  void WriteErrLine(std::u16string_view text);

  core::AppState& state_;
  int outFd_;
  int errFd_;
  bool quiet_;
  std::mutex writeMutex_;
};

// One line for a terminal: line ends inside the text become blanks.
std::u16string OneLine(std::u16string_view text);

}  // namespace wavetrace::app
