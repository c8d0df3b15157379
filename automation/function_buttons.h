#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace wavetrace::automation {

enum class ButtonKind { kHardware, kSoftware };

// A hardware button whose whole string is one of these (exactly, case
// included) runs the program function instead of sending the string.
inline constexpr std::array<std::u16string_view, 5> kFunctionTokens = {
    u"{SCREEN_OFF}", u"{PLAY}", u"{STOP}", u"{CLEAR_RECEIVE_WINDOW}", u"{EXIT_PROGRAM}"};

// A press of button number (1 to 4 hardware, 1 to 6 software), on the main
// thread: a hardware button's token runs its function; otherwise the
// button's string goes into the transmit field and SEND is issued, when
// the field is enabled and the string is not empty. A software button's
// string is always sent as text.
void PressFunctionButton(core::AppState& state, ButtonKind kind, int number);

// Software buttons 1 and 2 can be pressed; 3 to 6 are always disabled.
inline constexpr int kPressableSoftwareButtons = 2;

// The software button strip: shown or hidden, buttons 1 and 2 enabled and 3
// to 6 always disabled.
void ShowSoftwareButtons(core::AppState& state, bool shown);
// What software button number (1 to 6) shows on the strip: its caption
// while it can be pressed, nothing on the disabled ones.
std::u16string SoftwareButtonLabel(const core::DataSettings& data, int number);

// A hot key (193 to 207): 193 to 196 are hardware buttons 1 to 4, the rest
// do nothing.
void OnHotKey(core::AppState& state, int hotKey);

}  // namespace wavetrace::automation
