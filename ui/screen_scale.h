#pragma once

#include <QFont>
#include <QSize>

namespace wavetrace::ui {

// The compact layout is laid out for a 240x320 portrait screen with an 11
// pixel font. A small panel gets that layout on all of its area; a larger
// screen gets it at the desktop's own font size (which follows the desktop's
// scale), in a window of a useful size that the user can resize. The desktop
// layout instead takes the desktop's fonts as they are.
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

// How the view lays the main screen out.
struct ViewLayout {
  bool Desktop = false;
  double Scale = 1.0;  // the compact layout's scale; 1 on the desktop
};

// The receive window of the desktop layout asks for this many columns of
// its fixed-pitch font, and lines.
inline constexpr int kDesktopColumns = 82;
inline constexpr int kDesktopLines = 24;

// Gives every window of the program one font and scale: the compact
// layout's scaled font (with check boxes, radio buttons, small icons and
// scroll bars scaled alike) or the desktop's own. Boxes, menus, tool tips
// and file dialogs then follow without being told.
void ApplyApplicationLook(const ViewLayout& layout);
// The desktop's font, as the application had it before the first call.
const QFont& DesktopFont();

}  // namespace wavetrace::ui
