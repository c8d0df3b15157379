#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <memory>

#include "app/window_placement.h"
#include "core/app_state.h"
#include "core/front_end.h"

class QSocketNotifier;
class QTimer;

namespace wavetrace::ui {

class MainWindowWidget;
class TrayIcon;

// The Qt front end: renders the main-screen model into the main window and
// the tray icon, turns the user's actions into commands, and serves the
// message queue from the GUI thread.
class QtView : public QObject, public core::FrontEnd {
  Q_OBJECT

 public:
  // Needs the QApplication. The layout is chosen for the primary screen (or
  // as --layout in state.Switches or the window file say), and the window
  // takes its last size and place in that layout when it fits the screen.
  explicit QtView(core::AppState& state, QObject* parent = nullptr);
  ~QtView() override;

  // The message loop: serves the queue until the quit message, then returns
  // its code. Meant as the loop that app::RunProgram runs.
  int RunMessageLoop();

  [[nodiscard]] MainWindowWidget& Window() const { return *window_; }
  // Null when the desktop has no tray.
  [[nodiscard]] TrayIcon* Tray() const { return tray_; }

  // core::FrontEnd
  void ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon icon) override;
  [[nodiscard]] bool BoxesNeedMainThread() const override { return true; }
  [[nodiscard]] bool WindowExists() const override;
  bool SetClipboardText(std::u16string_view text) override;
  void SetWaitCursor(bool wait) override;
  [[nodiscard]] int ScreenHeight() const override { return screenHeight_; }
  void RenderScreenChanges() override;
  void ShowAbout(std::u16string_view releaseLine, bool automationMode) override;
  void ShowProgramOptions() override;
  void ShowTransmitOptions() override;
  void ShowCommProperties() override;
  [[nodiscard]] bool HasOptionPages() const override { return true; }
  bool ShowReceiveOptions(int page) override;
  bool ShowAsciiChart(bool variantB) override;
  bool ShowPinouts() override;
  std::u16string ChooseConfigFile(bool save, std::u16string_view start) override;
  std::u16string ChooseScriptFile() override;
  bool OpenManual(const std::string& path, std::string_view fragment) override;
  void InterruptModal() override;

 private:
  void PumpQueue();
  void ArmTimer();
  void EndLoop();
  void ApplyEvent(const core::ScreenEvent& event);
  void RefreshControls();
  void OnFirstShown();
  void ShowWindow(bool shown);
  void Activate();
  void ChooseFileToSend();
  // An existing file picked in Qt's own dialog; empty when cancelled.
  QString PickExistingFile(const QString& title, const QString& folder);
  [[nodiscard]] QWidget* BoxParent() const;
  // How large a dialog may be: the window's size in the compact layout, the
  // screen's usable area on the desktop.
  [[nodiscard]] QSize DialogRoom() const;
  void SavePlacement();

  core::AppState& state_;
  std::unique_ptr<MainWindowWidget> window_;
  double scale_ = 1.0;
  app::WindowPlacement placement_;
  app::WindowLayout layout_ = app::WindowLayout::kCompact;
  TrayIcon* tray_ = nullptr;
  QSocketNotifier* notifier_ = nullptr;
  QTimer* timer_ = nullptr;
  std::atomic<int> screenHeight_{0};
  QString sendFileFolder_;
  QString scriptFolder_;
  bool loopEnded_ = false;
  bool waitCursor_ = false;
  bool rendering_ = false;
  bool renderAgain_ = false;
  std::atomic<bool> interrupted_{false};
};

}  // namespace wavetrace::ui
