#pragma once

#include "core/app_state.h"

namespace wavetrace::app {

// Start-bar notification operations.
inline constexpr int kNotifyAdd = 100;
inline constexpr int kNotifyRemove = 130;
inline constexpr int kNotifyActive = 140;
inline constexpr int kNotifyIdle = 145;

// The start-bar notification and tray icon; returns whether it is enabled.
bool ShellNotification(core::AppState& state, int operation);

}  // namespace wavetrace::app
