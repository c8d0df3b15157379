#pragma once

#include <string>
#include <string_view>

namespace wavetrace::core {

enum class BoxIcon { kNone, kInformation, kWarning, kStop };

// What the core needs from whichever front end shows the main screen: the
// Qt view or the headless view. Everything else reaches the view through the
// main-screen model.
class FrontEnd {
 public:
  virtual ~FrontEnd() = default;

  // A modal box; returns when the user dismissed it. The core calls it on the
  // main thread only when BoxesNeedMainThread() says so.
  virtual void ShowMessageBox(std::u16string_view title, std::u16string_view text, BoxIcon icon) = 0;
  [[nodiscard]] virtual bool BoxesNeedMainThread() const = 0;

  // False once the main window is gone (or was never there).
  [[nodiscard]] virtual bool WindowExists() const = 0;
  // Puts the text on the system clipboard; false when it was not taken.
  virtual bool SetClipboardText(std::u16string_view text) = 0;
  virtual void SetWaitCursor(bool wait) = 0;
  // Height of the primary screen in pixels (0 when there is none).
  [[nodiscard]] virtual int ScreenHeight() const = 0;

  // Called on the main thread when the main-screen model has changes.
  virtual void RenderScreenChanges() = 0;
  // The About screen with its release line.
  virtual void ShowAbout(std::u16string_view releaseLine, bool automationMode) = 0;
  // The program options page.
  virtual void ShowProgramOptions() = 0;
  // Whether the main window is the active window (a display switched off by
  // the program comes back when another window takes over).
  [[nodiscard]] virtual bool WindowActive() const { return true; }
  // The transmit options sheet (Repeat and Filters pages).
  virtual void ShowTransmitOptions() {}
  // The communication properties pages (port, line setting, flow control).
  virtual void ShowCommProperties() {}
  // Whether ShowCommProperties puts pages in front of a user.
  [[nodiscard]] virtual bool HasOptionPages() const { return false; }
  // The receive options sheet, opened at page (0..4 in tab order: Filters,
  // Replace, Logging, Relay, Advanced). False when it could not be shown.
  virtual bool ShowReceiveOptions(int /*page*/) { return false; }
  // The reference screens: the ASCII chart (variant B: one leading blank
  // fewer on every row) and the serial port pinouts. False when not shown.
  virtual bool ShowAsciiChart(bool /*variantB*/) { return false; }
  virtual bool ShowPinouts() { return false; }
  // Called from any thread when the program is asked to end (SIGTERM) while a
  // modal box may be up: no box may hold the shutdown up from then on.
  virtual void InterruptModal() {}
  // Lets the user pick a configuration file to load (save false) or to save
  // to, starting at start (a folder, or for a save a file name in it); empty
  // when cancelled or when the front end has no file dialog.
  virtual std::u16string ChooseConfigFile(bool /*save*/, std::u16string_view /*start*/) { return {}; }
  // Lets the user pick a script file to run; empty when cancelled or when
  // the front end has no file dialog.
  virtual std::u16string ChooseScriptFile() { return {}; }
  // Start-up found this program running already (the single-instance rule)
  // and ends; a window comes forward silently, a terminal is told why.
  virtual void AnotherInstanceRuns() {}
  // Opens the HTML page at path (a local file), at the place fragment names,
  // in the desktop's browser; false when the front end cannot.
  virtual bool OpenManual(const std::string& /*path*/, std::string_view /*fragment*/) { return false; }
  // On the main thread: a send run has ended, or the port has just opened or
  // closed; the transmit path may be free.
  virtual void TransmitPathChanged() {}
};

}  // namespace wavetrace::core
