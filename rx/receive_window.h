#pragma once

#include <cstdint>
#include <string>

#include "core/app_state.h"
#include "core/published_settings.h"

namespace wavetrace::rx {

inline constexpr int32_t kRxWindowChars = 16384;
inline constexpr int kRefreshCountdown = 6;

// Appends one block's text (up to its first zero) to the text waiting for the
// receive window; nothing while the display is paused (PauseRxDisplay of the
// settings the block was processed under).
void AppendToRxWindowBuf(core::AppState& state, const core::RxSettings& settings, const char16_t* text);
// The text waiting for the window (up to the buffer's first zero).
std::u16string WaitingText(core::AppState& state);

// One 200 ms cycle of the update thread: up to six refreshes of the receive
// window, then one flush of the log cache, and so on. Nothing while no port
// is open. The published settings are loaded once per cycle.
void RxWndUpdateCycle(core::AppState& state, int& countdown);
// Moves the waiting text into the receive window (one refresh).
void RefreshReceiveWindow(core::AppState& state, const core::RxSettings& settings);
// Writes what the log cache holds to the log file, and empties it.
void FlushLogCache(core::AppState& state);

}  // namespace wavetrace::rx
