#pragma once

#include <QSize>

namespace wavetrace::ui {

// The main screen is laid out for a 240x320 portrait screen with an 11 pixel
// font. A small panel gets that layout on all of its area; a desktop gets it
// at the desktop's own font size (which follows the desktop's scale), in a
// window of a useful size that the user can resize.
inline constexpr int kLogicalWidth = 240;
inline constexpr int kLogicalHeight = 320;
inline constexpr int kLayoutFontPixels = 11;

struct ScreenFit {
  double Scale = 1.0;  // applied to sizes and fonts of the layout
  QSize WindowSize;    // never larger than the available area
};

// available: the usable area of the screen (without panels); an empty size
// stands for "no screen" and gives the unscaled layout. desktopFontPixels:
// the pixel size of the desktop's font (0 when unknown).
ScreenFit FitToScreen(QSize available, int desktopFontPixels);

// A pixel size scaled and rounded, at least 1.
int Scaled(double scale, int pixels);

}  // namespace wavetrace::ui
