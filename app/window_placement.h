#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wavetrace::app {

// The Qt view lays the main screen out one of two ways: the compact layout
// of a 240x320 screen for small touch panels, or a desktop layout at the
// desktop's own density. The values are those of --layout and of the window
// file.
enum class WindowLayout { kAutomatic = 0, kCompact = 1, kDesktop = 2 };

// "compact" or "desktop" (--layout); nothing for anything else.
std::optional<WindowLayout> ParseLayout(std::string_view text);

// Screens no larger than this in either orientation are small panels.
inline constexpr int kPanelShortSide = 480;
inline constexpr int kPanelLongSide = 800;

// The layout for a screen of width x height: the command line's when it
// names one, else the stored choice, else compact on a small panel (or when
// there is no screen) and desktop otherwise.
WindowLayout ChooseLayout(int screenWidth, int screenHeight, WindowLayout stored, WindowLayout commandLine);

struct WindowFrame {
  int X = 0;
  int Y = 0;
  int Width = 0;
  int Height = 0;
  friend bool operator==(const WindowFrame&, const WindowFrame&) = default;
};

// What the window file in the configuration folder keeps across runs: the
// layout chosen in Program Options, and the window's last frame with the
// layout it had then. It is not part of the configuration file.
struct WindowPlacement {
  WindowLayout Layout = WindowLayout::kAutomatic;
  WindowLayout FrameLayout = WindowLayout::kAutomatic;  // kAutomatic: no frame kept
  WindowFrame Frame;
};

inline constexpr char kWindowFileName[] = "window.txt";

// A missing or unreadable file gives the defaults.
WindowPlacement LoadWindowPlacement(const std::string& folder);
// False when the file could not be written.
bool SaveWindowPlacement(const std::string& folder, const WindowPlacement& placement);

// The kept frame when it was the same layout's and enough of it lies on
// the screen's usable area to be grabbed, its size held to that area;
// nothing otherwise (the view then picks the layout's default).
std::optional<WindowFrame> RestoredFrame(const WindowPlacement& placement, WindowLayout layout,
                                         const WindowFrame& available);

}  // namespace wavetrace::app
