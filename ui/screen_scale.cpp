#include "ui/screen_scale.h"

#include <QApplication>
#include <QFont>
#include <QProxyStyle>
#include <algorithm>
#include <cmath>

namespace wavetrace::ui {
namespace {
// Beyond this the layout gains nothing.
constexpr double kMaxScale = 2.5;
// Below this the display is a small panel rather than a desktop.
constexpr double kPanelRatio = 1.5;
// A desktop window starts at least this share of the screen's height tall.
constexpr double kDesktopHeightShare = 0.6;
}  // namespace

ScreenFit FitToScreen(QSize available, int desktopFontPixels) {
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
  if (desktopFontPixels > 0)
    fit.Scale = std::clamp(static_cast<double>(desktopFontPixels) / kLayoutFontPixels, 1.0, kMaxScale);
  // The layout's proportions; the receive window takes what is more.
  int height = std::max(Scaled(fit.Scale, kLogicalHeight),
                        static_cast<int>(std::lround(available.height() * kDesktopHeightShare)));
  height = std::min(height, available.height());
  int width = std::min(height * kLogicalWidth / kLogicalHeight, available.width());
  fit.WindowSize = QSize(width, height);
  return fit;
}

int Scaled(double scale, int pixels) {
  return std::max(1, static_cast<int>(std::lround(scale * pixels)));
}

namespace {

// The style's sizes of the small parts, scaled with the layout's font.
class ScaledStyle : public QProxyStyle {
 public:
  explicit ScaledStyle(double scale) : scale_(scale) {}

  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
      case PM_IndicatorWidth:
      case PM_IndicatorHeight:
      case PM_ExclusiveIndicatorWidth:
      case PM_ExclusiveIndicatorHeight:
      case PM_SmallIconSize:
      case PM_ScrollBarExtent:
      case PM_MenuButtonIndicator:
        return Scaled(scale_, pixels);
      default:
        return pixels;
    }
  }

 private:
  double scale_;
};

}  // namespace

const QFont& DesktopFont() {
  // As the first view found it: a second view in the same process starts
  // from it too.
  static const QFont desktopFont = QApplication::font();
  return desktopFont;
}

void ApplyApplicationLook(const ViewLayout& layout) {
  QFont font = DesktopFont();
  if (!layout.Desktop) font.setPixelSize(Scaled(layout.Scale, kLayoutFontPixels));
  // Without a class name this also drops the class fonts (menus, tool tips)
  // a platform theme set.
  QApplication::setFont(font);
  bool scaled = !layout.Desktop && layout.Scale > 1.0;
  if (scaled || dynamic_cast<ScaledStyle*>(QApplication::style())) {
    QApplication::setStyle(scaled ? new ScaledStyle(layout.Scale) : new QProxyStyle);
  }
}

}  // namespace wavetrace::ui
