#include "core/reporting.h"

#include <cstdio>
#include <random>

#include "core/code_page.h"
#include "platform/clock.h"
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

int CopyTextToClipboard(AppState& state, std::u16string_view text) {
  FrontEnd* view = state.View;
  if (!view || !view->WindowExists()) return 0;
  if (!view->BoxesNeedMainThread() || state.Queue.OnMainThread()) return view->SetClipboardText(text) ? 1 : 0;
  return static_cast<int>(state.Queue.RunOnMainThread([&] { return int64_t{view->SetClipboardText(text)}; }));
}

void FillClassId(ClassId& id, uint64_t fileTime, const std::array<uint8_t, 8>& randomBytes) {
  auto high = static_cast<uint32_t>(fileTime >> 32);
  id.Data1 = static_cast<uint32_t>(fileTime);
  id.Data2 = static_cast<uint16_t>(high & 0xFFFF);
  id.Data3 = static_cast<uint16_t>(((high >> 16) & 0xFFF0) | 2);
  uint16_t sequence = static_cast<uint16_t>(((randomBytes[0] << 8) | randomBytes[1]) + 1);
  id.Data4[0] = static_cast<uint8_t>(sequence >> 8);
  id.Data4[1] = static_cast<uint8_t>(sequence);
  for (size_t i = 2; i < 8; ++i) id.Data4[i] = randomBytes[i];
}

int MakeClassId(ClassId& id) {
  uint64_t fileTime = 0;
  if (!platform::FileTimeNow(fileTime)) return 1;
  std::random_device device;
  std::mt19937 node(platform::TickCount());
  std::array<uint8_t, 8> random{};
  random[0] = static_cast<uint8_t>(device());
  random[1] = static_cast<uint8_t>(device());
  for (size_t i = 2; i < 8; ++i) random[i] = static_cast<uint8_t>(node());
  FillClassId(id, fileTime, random);
  return 0;
}

}  // namespace wavetrace::core
