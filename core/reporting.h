#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace wavetrace::core {

// ": Error code=%d (0x%0x)", then the device-busy description for the codes
// that mean the device is busy or gone, then the system's own text for the code.
std::u16string FormatErrorCode(int code);

// Replaces the status line's text.
void ShowStatus(AppState& state, std::u16string_view text);
// The text with the last error code (errno, read at once) on the status line;
// in port scan mode the receive window shows it instead.
void ShowStatusError(AppState& state, std::u16string_view text);
void ShowStatusError(AppState& state, std::u16string_view text, int code);
// A modal box titled "Error..." with the last error code. The memory lock is
// held while the box is up, so workers that need a buffer wait for the user.
void ShowErrorBox(AppState& state, std::u16string_view text);
void ShowErrorBox(AppState& state, std::u16string_view text, int code);
// The text framed by "\r\n***\r\n", with the last error code, at the receive
// window's caret. Goes nowhere before the main window exists.
void WriteErrorBlock(AppState& state, std::u16string_view text);

// Any other modal box (warnings, notices), on the main thread when the view
// needs it there.
void ShowMessageBox(AppState& state, std::u16string_view title, std::u16string_view text, BoxIcon icon);

// 1 when the clipboard holds the text, 0 otherwise (no window, no clipboard).
int CopyTextToClipboard(AppState& state, std::u16string_view text);

struct ClassId {
  uint32_t Data1 = 0;
  uint16_t Data2 = 0;
  uint16_t Data3 = 0;
  std::array<uint8_t, 8> Data4{};
};
// A class identifier unique per start, from the system time as a file time:
// 0 on success, 1 when the time could not be had.
int MakeClassId(ClassId& id);
// The same, from a given file time (100 ns units since 1601) and random bytes.
void FillClassId(ClassId& id, uint64_t fileTime, const std::array<uint8_t, 8>& randomBytes);

}  // namespace wavetrace::core
