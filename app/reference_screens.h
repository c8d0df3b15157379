#pragma once

#include <string>
#include <vector>

#include "core/app_state.h"

namespace wavetrace::app {

// The ASCII chart: one row per byte value 0..255. Variant A reads, for row 0,
// "         000    00     NUL " and for row 65 "   A     065    41 "; variant
// B has one blank fewer at the start of every row. U+0001 stands where a
// control character has no glyph; rows 37 to 40 name the cursor keys that
// share their numbers ("RIGT" spelt so), and row 160 shows "p" rather than
// the no-break space.
inline constexpr int kAsciiChartRows = 256;
std::vector<std::u16string> AsciiChartRows(bool variantB);
// The chart shows variant B while the main screen is in full screen.
bool AsciiChartVariantB(const core::AppState& state);

// The pinout screen: the portrait picture on a screen narrower than 241
// pixels, the landscape one otherwise.
enum class PinoutPicture { kPortrait, kLandscape };
PinoutPicture PinoutPictureFor(int screenWidth);

}  // namespace wavetrace::app
