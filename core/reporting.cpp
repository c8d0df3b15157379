#include "core/reporting.h"

#include <cstdio>

#include "core/code_page.h"
#include "platform/system_error.h"

namespace wavetrace::core {
namespace {

constexpr size_t kStatusErrorChars = 512;
constexpr size_t kErrorBoxChars = 256;

// The composed text of a zero-filled buffer of `chars` wide characters.
std::u16string Bounded(std::u16string text, size_t chars) {
  if (text.size() > chars - 1) text.resize(chars - 1);
  return text;
}

}  // namespace

std::u16string FormatErrorCode(const platform::SysResult& failure) {
  int code = failure.Errno;
  char head[64];
  std::snprintf(head, sizeof head, ": Error code=%d (0x%0x)", code, static_cast<unsigned>(code));
  std::u16string text = Utf8ToWide(head);
  if (platform::IsDeviceBusyOrGone(failure)) {
    text += u"  Desc: The specified network resource or device is either busy or no longer available.";
  }
  if (code != 0) text += u" (" + Utf8ToWide(platform::ErrorText(code)) + u")";
  if (platform::IsPortAccessDenied(failure)) {
    text +=
        u"  Hint: ports belong to the dialout group; join it with \"sudo usermod -aG dialout $USER\", "
        u"then log in again.";
  }
  return text;
}

void ShowStatus(AppState& state, std::u16string_view text) {
  state.Screen.SetStatus(text);
}

void ShowStatusError(AppState& state, std::u16string_view text, const platform::SysResult& failure) {
  std::u16string message = Bounded(std::u16string(text) + FormatErrorCode(failure), kStatusErrorChars);
  if (state.PortScanMode) {
    // The first append is overwritten by the replacement: the window ends up
    // holding only the message and a line end, as port scan mode wants.
    state.Screen.RxInsertAtCaret(u"\r\n\r\n");
    state.Screen.RxSelectAll();
    state.Screen.RxReplaceSelection(message);
    state.Screen.RxInsertAtCaret(u"\r\n");
    return;
  }
  state.Screen.SetStatus(message);
}

void ShowMessageBox(AppState& state, std::u16string_view title, std::u16string_view text, BoxIcon icon) {
  FrontEnd* view = state.View;
  if (!view) return;
  if (!view->BoxesNeedMainThread() || state.Queue.OnMainThread()) {
    view->ShowMessageBox(title, text, icon);
    return;
  }
  state.Queue.RunOnMainThread([&] {
    view->ShowMessageBox(title, text, icon);
    return int64_t{0};
  });
}

void ShowErrorBox(AppState& state, std::u16string_view text, const platform::SysResult& failure) {
  std::lock_guard lock(state.MemLock);
  std::u16string message = Bounded(std::u16string(text), kErrorBoxChars);
  message = Bounded(message + FormatErrorCode(failure), kErrorBoxChars);
  ShowMessageBox(state, u"Error...", message, BoxIcon::kStop);
}

void WriteErrorBlock(AppState& state, std::u16string_view text, const platform::SysResult& failure) {
  if (!state.MainWindowExists) return;
  std::u16string block = u"\r\n***\r\n" + std::u16string(text) + FormatErrorCode(failure) + u"\r\n***\r\n";
  state.Screen.RxInsertAtCaret(Bounded(std::move(block), kStatusErrorChars));
}

}  // namespace wavetrace::core
