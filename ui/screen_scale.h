#pragma once

#include <QSize>

namespace wavetrace::ui {

// The main screen is laid out for a 240x320 portrait screen; larger displays
// get it magnified in half steps so that it stays readable and touchable.
inline constexpr int kLogicalWidth = 240;
inline constexpr int kLogicalHeight = 320;

struct ScreenFit {
  double Scale = 1.0;  // applied to sizes and fonts
  QSize WindowSize;    // never larger than the available area
};

// available: the usable area of the screen (without panels); an empty size
// stands for "no screen" and gives the unscaled layout.
ScreenFit FitToScreen(QSize available);

// A pixel size scaled and rounded, at least 1.
int Scaled(double scale, int pixels);

}  // namespace wavetrace::ui
