#pragma once

#include <string>
#include <string_view>

#include "core/app_state.h"
#include "platform/system_error.h"

namespace wavetrace::core {

// ": Error code=%d (0x%0x)" with the failure's code, then the device-busy
// description when the device is busy or gone, the system's own text for a
// non-zero code, and for a port the user may not open, how to get access.
std::u16string FormatErrorCode(const platform::SysResult& failure);

// Replaces the status line's text.
void ShowStatus(AppState& state, std::u16string_view text);
// The text with the failure's code on the status line; in port scan mode the
// receive window shows it instead. A report with no system call behind it
// passes {} and shows code 0.
void ShowStatusError(AppState& state, std::u16string_view text, const platform::SysResult& failure);
// A modal box titled "Error..." with the failure's code. The memory lock is
// held while the box is up, so workers that need a buffer wait for the user.
void ShowErrorBox(AppState& state, std::u16string_view text, const platform::SysResult& failure);
// The text framed by "\r\n***\r\n", with the failure's code, at the receive
// window's caret. Goes nowhere before the main window exists.
void WriteErrorBlock(AppState& state, std::u16string_view text, const platform::SysResult& failure);

// Any other modal box (warnings, notices), on the main thread when the view
// needs it there.
void ShowMessageBox(AppState& state, std::u16string_view title, std::u16string_view text, BoxIcon icon);

}  // namespace wavetrace::core
