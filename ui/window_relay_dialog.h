#pragma once

#include <QDialog>

#include "core/app_state.h"
#include "relay/window_relay.h"

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace wavetrace::ui {

// The window relay's selector page: the other programs' windows, one to be
// chosen as the target, "Show Class names", "Refresh", and typing through a
// virtual keyboard where /dev/uinput allows it. It edits the settings in
// place; Cancel puts back what they were when it opened.
class WindowRelayDialog : public QDialog {
  Q_OBJECT

 public:
  explicit WindowRelayDialog(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] QListWidget* List() const { return list_; }
  [[nodiscard]] QCheckBox* ClassNamesBox() const { return classNames_; }
  [[nodiscard]] QPushButton* RefreshButton() const { return refresh_; }
  [[nodiscard]] QCheckBox* VirtualKeyboardBox() const { return virtualKeyboard_; }
  [[nodiscard]] QLabel* Reason() const { return reason_; }

  void done(int result) override;

 private:
  void Fill();

  core::AppState& state_;
  core::WindowListEntry openedTarget_;
  int32_t openedClassNames_ = 0;
  int32_t openedVirtualKeyboard_ = 0;
  relay::WindowList windows_;
  QListWidget* list_ = nullptr;
  QCheckBox* classNames_ = nullptr;
  QPushButton* refresh_ = nullptr;
  QCheckBox* virtualKeyboard_ = nullptr;
  QLabel* reason_ = nullptr;
};

}  // namespace wavetrace::ui
