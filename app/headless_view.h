#pragma once

#include <mutex>

#include "core/app_state.h"
#include "core/front_end.h"

namespace wavetrace::app {

class HeadlessInput;

// The front end without a window: the status line and boxes go to standard
// error, one line each and in the order they were raised. What is put into
// the receive window reaches standard output through the display stream,
// which follows the window's text on its own (see RunHeadless).
class HeadlessView : public core::FrontEnd {
 public:
  HeadlessView(core::AppState& state, int errFd, bool quiet);

  void ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon icon) override;
  [[nodiscard]] bool BoxesNeedMainThread() const override { return false; }
  [[nodiscard]] bool WindowExists() const override;
  bool SetClipboardText(std::u16string_view) override { return false; }
  void SetWaitCursor(bool) override {}
  [[nodiscard]] int ScreenHeight() const override { return 0; }
  void RenderScreenChanges() override;
  void ShowAbout(std::u16string_view releaseLine, bool automationMode) override;
  void ShowProgramOptions() override {}
  void AnotherInstanceRuns() override;
  void TransmitPathChanged() override;

  // One line on standard error, after the status lines raised before it.
  void Report(std::u16string_view text);
  // Where typed lines wait for the transmit path (null: nowhere).
  void SetInput(HeadlessInput* input) { input_ = input; }

 private:
  // With errMutex_ held: writes the status lines not written yet.
  void WritePendingStatusLocked();

  core::AppState& state_;
  int errFd_;
  bool quiet_;
  HeadlessInput* input_ = nullptr;
  std::mutex errMutex_;
};

// One line for a terminal: line ends inside the text become blanks.
std::u16string OneLine(std::u16string_view text);

}  // namespace wavetrace::app
