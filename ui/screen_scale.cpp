#include "ui/screen_scale.h"

#include <algorithm>
#include <cmath>

namespace wavetrace::ui {
namespace {
// Beyond this a desktop window would fill the screen without gaining anything.
constexpr double kMaxScale = 2.5;
// Below this the display is a small panel rather than a desktop.
constexpr double kPanelRatio = 1.5;
}  // namespace

ScreenFit FitToScreen(QSize available) {
  ScreenFit fit;
  if (available.width() <= 0 || available.height() <= 0) {
    fit.WindowSize = QSize(kLogicalWidth, kLogicalHeight);
    return fit;
  }
  double ratio = std::min(static_cast<double>(available.width()) / kLogicalWidth,
                          static_cast<double>(available.height()) / kLogicalHeight);
  if (ratio < kPanelRatio) {
    // A small panel (320x240, 480x320): the unscaled layout on all of it.
    fit.WindowSize = available;
    return fit;
  }
  // Half steps keep the fonts on whole pixels at the common sizes.
  fit.Scale = std::clamp(std::floor(ratio * 2.0) / 2.0, 1.0, kMaxScale);
  fit.WindowSize = QSize(std::min(Scaled(fit.Scale, kLogicalWidth), available.width()),
                         std::min(Scaled(fit.Scale, kLogicalHeight), available.height()));
  return fit;
}

int Scaled(double scale, int pixels) {
  return std::max(1, static_cast<int>(std::lround(scale * pixels)));
}

}  // namespace wavetrace::ui
