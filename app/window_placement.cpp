#include "app/window_placement.h"

#include <algorithm>
#include <cstdint>

#include "config/registry_store.h"

namespace wavetrace::app {
namespace {

constexpr char kKeyPath[] = "Window";
// A frame smaller than this was not a usable window.
constexpr int kMinFrameSide = 100;
// How much of a restored window's top edge must lie on the screen.
constexpr int kGrabMargin = 64;

WindowLayout LayoutOf(uint32_t value) {
  return value <= static_cast<uint32_t>(WindowLayout::kDesktop) ? static_cast<WindowLayout>(value)
                                                                : WindowLayout::kAutomatic;
}

}  // namespace

std::optional<WindowLayout> ParseLayout(std::string_view text) {
  if (text == "compact") return WindowLayout::kCompact;
  if (text == "desktop") return WindowLayout::kDesktop;
  return std::nullopt;
}

WindowLayout ChooseLayout(int screenWidth, int screenHeight, WindowLayout stored, WindowLayout commandLine) {
  if (commandLine != WindowLayout::kAutomatic) return commandLine;
  if (stored != WindowLayout::kAutomatic) return stored;
  int shortSide = std::min(screenWidth, screenHeight);
  int longSide = std::max(screenWidth, screenHeight);
  bool panel = shortSide <= 0 || (shortSide <= kPanelShortSide && longSide <= kPanelLongSide);
  return panel ? WindowLayout::kCompact : WindowLayout::kDesktop;
}

WindowPlacement LoadWindowPlacement(const std::string& folder) {
  WindowPlacement placement;
  config::RegistryKey key;
  bool created = false;
  if (!config::RegistryStore(folder + "/" + kWindowFileName).CreateKey(kKeyPath, key, created))
    return placement;
  uint32_t value = 0;
  if (key.QueryDword("Layout", value)) placement.Layout = LayoutOf(value);
  if (key.QueryDword("FrameLayout", value)) placement.FrameLayout = LayoutOf(value);
  // Positions left of or above the primary screen are negative.
  for (auto [name, field] :
       {std::pair{"X", &WindowFrame::X}, std::pair{"Y", &WindowFrame::Y},
        std::pair{"Width", &WindowFrame::Width}, std::pair{"Height", &WindowFrame::Height}}) {
    if (key.QueryDword(name, value)) placement.Frame.*field = static_cast<int32_t>(value);
  }
  return placement;
}

bool SaveWindowPlacement(const std::string& folder, const WindowPlacement& placement) {
  config::RegistryKey key;
  bool created = false;
  if (!config::RegistryStore(folder + "/" + kWindowFileName).CreateKey(kKeyPath, key, created)) return false;
  const WindowFrame& f = placement.Frame;
  bool written = key.SetDword("Layout", static_cast<uint32_t>(placement.Layout)) &&
                 key.SetDword("FrameLayout", static_cast<uint32_t>(placement.FrameLayout));
  written = written && key.SetDword("X", static_cast<uint32_t>(f.X)) &&
            key.SetDword("Y", static_cast<uint32_t>(f.Y)) &&
            key.SetDword("Width", static_cast<uint32_t>(f.Width)) &&
            key.SetDword("Height", static_cast<uint32_t>(f.Height));
  return written;
}

std::optional<WindowFrame> RestoredFrame(const WindowPlacement& placement, WindowLayout layout,
                                         const WindowFrame& available) {
  const WindowFrame& f = placement.Frame;
  if (placement.FrameLayout != layout || layout == WindowLayout::kAutomatic) return std::nullopt;
  if (f.Width < kMinFrameSide || f.Height < kMinFrameSide) return std::nullopt;
  // The title bar must be reachable: part of the top edge on the area.
  bool grabbable = f.X + f.Width >= available.X + kGrabMargin &&
                   f.X <= available.X + available.Width - kGrabMargin && f.Y >= available.Y &&
                   f.Y <= available.Y + available.Height - kGrabMargin;
  if (!grabbable) return std::nullopt;
  WindowFrame frame = f;
  frame.Width = std::min(frame.Width, available.Width);
  frame.Height = std::min(frame.Height, available.Height);
  return frame;
}

}  // namespace wavetrace::app
