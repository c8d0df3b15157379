#include "rx/receive_window.h"

#include <cstring>

#include "core/shared_field.h"
#include "platform/display_control.h"
#include "rx/log_cache.h"

namespace wavetrace::rx {
namespace {

size_t WideLength(const char16_t* text, size_t limit) {
  size_t n = 0;
  while (n < limit && text[n] != 0) ++n;
  return n;
}

}  // namespace

void AppendToRxWindowBuf(core::AppState& state, const core::RxSettings& settings, const char16_t* text) {
  if (settings.PauseRxDisplay) return;
  std::lock_guard lock(state.RxDataLock);
  if (state.g_RxWindowBuf.Empty() || !text) return;
  char16_t* buffer = state.g_RxWindowBuf.Data();
  size_t n = WideLength(text, SIZE_MAX);
  size_t m = WideLength(buffer, kRxWindowChars);
  constexpr size_t kBytes = kRxWindowChars * sizeof(char16_t);
  if (n > kRxWindowChars) {
    // Too much for the window at all: a fixed middle slice is kept (4096
    // characters from the 8192nd on), not the tail.
    std::memset(buffer, 0, kBytes);
    std::memcpy(buffer, text + 8192, 8192);
    return;
  }
  if (m + n > kRxWindowChars) {
    if (n >= m) {
      std::memset(buffer, 0, kBytes);
    } else {
      // The oldest n characters go. The move covers m - n bytes, not
      // characters, so only the front half of the kept text is moved down
      // and the rest keeps stale characters: kept exactly as it always was.
      size_t keep = m - n;
      std::memmove(buffer, buffer + n, keep);
      std::memset(buffer + keep, 0, kBytes - keep * sizeof(char16_t));
    }
    m = WideLength(buffer, kRxWindowChars);
  }
  std::memcpy(buffer + m, text, std::min(n, static_cast<size_t>(kRxWindowChars) - m) * sizeof(char16_t));
}

std::u16string WaitingText(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  if (state.g_RxWindowBuf.Empty()) return {};
  const char16_t* buffer = state.g_RxWindowBuf.Data();
  return std::u16string(buffer, WideLength(buffer, kRxWindowChars));
}

void RefreshReceiveWindow(core::AppState& state, const core::RxSettings& settings) {
  std::lock_guard lock(state.RxDataLock);
  if (state.g_RxWindowBuf.Empty()) return;
  char16_t* buffer = state.g_RxWindowBuf.Data();
  auto n = static_cast<int32_t>(WideLength(buffer, kRxWindowChars));
  if (n == 0) return;
  // Data arriving keeps the display awake, unless the program switched it off.
  if (settings.RxBacklightEvent &&
      core::LoadShared(state.DisplayPower.PowerState) != core::kDisplayPowerOff && state.Display) {
    state.Display->ResetIdleTimer();
  }
  auto& screen = state.Screen;
  std::u16string_view waiting(buffer, static_cast<size_t>(n));
  screen.RxSetRedraw(false);
  int32_t shown = screen.ShownCount();
  if (n < kRxWindowChars) {
    if (n + shown > kRxWindowChars) {
      // Room is made in one step: the oldest 8192 characters, or n.
      int32_t drop = n <= 8192 ? 8192 : n;
      screen.RxSetSelection(0, drop);
      screen.RxReplaceSelection(u"");
      shown -= drop;
    }
    screen.RxSetCaretToEnd();
    screen.RxReplaceSelection(waiting);
    screen.SetShownCount(shown + n);
  } else {
    screen.RxSelectAll();
    screen.RxReplaceSelection(waiting);
    screen.SetShownCount(kRxWindowChars);
  }
  std::memset(buffer, 0, kRxWindowChars * sizeof(char16_t));
  screen.RxSetRedraw(true);
}

void FlushLogCache(core::AppState& state) {
  if (state.LogRecords) {
    state.LogRecords->Flush();
    return;
  }
  // Without a log behind it the cache has nowhere to go.
  ClearLogCache(state);
}

void RxWndUpdateCycle(core::AppState& state, int& countdown) {
  if (!state.PortOpen) return;
  if (countdown != 0) {
    --countdown;
    const auto settings = state.PublishedRx.Load();
    if (!settings->PauseRxDisplay) RefreshReceiveWindow(state, *settings);
    // "Never drop log data" is for fast lines: their records wait one cycle
    // (200 ms) for the file, not seven.
    if (state.PublishedLog.Load()->NeverDropLogData) FlushLogCache(state);
    return;
  }
  FlushLogCache(state);
  countdown = kRefreshCountdown;
}

}  // namespace wavetrace::rx
