#pragma once

#include <array>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "platform/hot_keys.h"

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

// The keys of the hot keys 193 to 207, each held with the Super (Windows)
// key: Super+F1 to Super+F4 are hardware buttons 1 to 4; Super+F5 to
// Super+F15 are taken as well and do nothing (F13 to F15 only on keyboards
// that have them).
inline constexpr std::array<platform::HotKey, 15> kHotKeyTable = {{{193, "F1"},
                                                                   {194, "F2"},
                                                                   {195, "F3"},
                                                                   {196, "F4"},
                                                                   {197, "F5"},
                                                                   {198, "F6"},
                                                                   {199, "F7"},
                                                                   {200, "F8"},
                                                                   {201, "F9"},
                                                                   {202, "F10"},
                                                                   {203, "F11"},
                                                                   {204, "F12"},
                                                                   {205, "F13"},
                                                                   {206, "F14"},
                                                                   {207, "F15"}}};

// Takes (enable) or gives back the hot keys of the table from the desktop
// (main thread); a press posts the hot-key message to the main window. What
// cannot be taken (no X display, keys another program holds) is reported
// on the status line. Taking them twice, or giving back what is not held,
// does nothing.
void RegisterHardwareButtons(core::AppState& state, bool enable);

// A hot key (193 to 207): 193 to 196 are hardware buttons 1 to 4, the rest
// do nothing.
void OnHotKey(core::AppState& state, int hotKey);

}  // namespace wavetrace::automation
