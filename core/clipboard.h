#pragma once

#include <string_view>

#include "core/app_state.h"

namespace wavetrace::core {

// Puts the text on the view's clipboard, on the main thread when the view
// needs it there. 1 when the clipboard holds the text, 0 otherwise (no
// window, no clipboard).
int CopyTextToClipboard(AppState& state, std::u16string_view text);

}  // namespace wavetrace::core
