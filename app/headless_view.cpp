#include "app/headless_view.h"

#include "app/headless_input.h"
#include "core/code_page.h"
#include "platform/fd_io.h"

namespace wavetrace::app {

std::u16string OneLine(std::u16string_view text) {
  std::u16string line;
  for (size_t i = 0; i < text.size(); ++i) {
    char16_t ch = text[i];
    if (ch == u'\r' || ch == u'\n') {
      if (ch == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
      if (!line.empty() && line.back() != u' ') line += u' ';
      continue;
    }
    line += ch;
  }
  while (!line.empty() && line.back() == u' ') line.pop_back();
  return line;
}

HeadlessView::HeadlessView(core::AppState& state, int errFd, bool quiet)
    : state_(state), errFd_(errFd), quiet_(quiet) {}

bool HeadlessView::WindowExists() const {
  return state_.MainWindowExists && !state_.ShuttingDown;
}

void HeadlessView::WritePendingStatusLocked() {
  // Any thread may get here: the events are taken and written under the one
  // lock, so lines leave in the order the model recorded them.
  for (const auto& event : state_.Screen.TakeEvents()) {
    if (event.Type == core::ScreenEvent::Kind::kStatus && !quiet_) {
      platform::WriteAll(errFd_, core::WideToUtf8(OneLine(event.Text)) + "\n");
    }
  }
}

void HeadlessView::Report(std::u16string_view text) {
  std::lock_guard lock(errMutex_);
  WritePendingStatusLocked();
  platform::WriteAll(errFd_, core::WideToUtf8(OneLine(text)) + "\n");
}

void HeadlessView::ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon) {
  Report(std::u16string(title) + u" " + std::u16string(text));
}

void HeadlessView::RenderScreenChanges() {
  std::lock_guard lock(errMutex_);
  WritePendingStatusLocked();
}

void HeadlessView::ShowAbout(std::u16string_view releaseLine, bool automationMode) {
  std::u16string text = u"About... Wavetrace Pro " + std::u16string(releaseLine);
  if (automationMode) text += u" Warning: [ Automation Mode ]";
  Report(text);
}

void HeadlessView::AnotherInstanceRuns() {
  std::u16string folder = state_.ConfigFolder;
  Report(u"wavetrace-cli: another instance is running with the settings in " + folder +
         u"; to run several, set MULTIinst=dword:00000001 in " + folder +
         u"/registry.txt (Program Options) or give each its own WAVETRACE_HOME");
}

void HeadlessView::TransmitPathChanged() {
  if (input_) input_->Pump();
}

}  // namespace wavetrace::app
