#include "app/headless_view.h"

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

HeadlessView::HeadlessView(core::AppState& state, int outFd, int errFd, bool quiet)
    : state_(state), outFd_(outFd), errFd_(errFd), quiet_(quiet) {}

bool HeadlessView::WindowExists() const {
  return state_.MainWindowExists && !state_.ShuttingDown;
}

void HeadlessView::WriteErrLine(std::u16string_view text) {
  std::lock_guard lock(writeMutex_);
  platform::WriteAll(errFd_, core::WideToUtf8(OneLine(text)) + "\n");
}

void HeadlessView::ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon) {
  WriteErrLine(std::u16string(title) + u" " + std::u16string(text));
}

void HeadlessView::RenderScreenChanges() {
  for (const auto& event : state_.Screen.TakeEvents()) {
    switch (event.Type) {
      case core::ScreenEvent::Kind::kRxEdit:
        if (!event.Text.empty()) {
          std::lock_guard lock(writeMutex_);
          platform::WriteAll(outFd_, core::WideToBytes(event.Text));
        }
        break;
      case core::ScreenEvent::Kind::kStatus:
        if (!quiet_) WriteErrLine(event.Text);
        break;
      default:
        break;
    }
  }
}

void HeadlessView::ShowAbout(std::u16string_view releaseLine, bool automationMode) {
  std::u16string text = u"About... Wavetrace Pro " + std::u16string(releaseLine);
  if (automationMode) text += u" Warning: [ Automation Mode ]";
  WriteErrLine(text);
}

}  // namespace wavetrace::app
