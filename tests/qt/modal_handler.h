#pragma once

// Shared by the Qt tests: reaching a modal dialog that runs its own loop.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <utility>

#include "tests/qt/gui_program.h"
#include "ui/main_window_widget.h"

namespace wavetrace::ui::testing {

// Calls act(dialog) once a modal dialog of type T is up; the dialog runs its
// own loop, so the test reaches it from a timer.
template <typename T>
class ModalHandler {
 public:
  explicit ModalHandler(std::function<void(T&)> act) : act_(std::move(act)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget());
      if (!dialog) return;
      timer_.stop();
      handled_ = true;
      act_(*dialog);
    });
    timer_.start(10);
  }
  ModalHandler(const ModalHandler&) = delete;
  ModalHandler& operator=(const ModalHandler&) = delete;

  [[nodiscard]] bool Handled() const { return handled_; }

 private:
  std::function<void(T&)> act_;
  QTimer timer_;
  bool handled_ = false;
};

// Presses the dialog's OK or Cancel button, as a tap does.
inline void ClickOk(QDialog& dialog) {
  dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
}
inline void ClickCancel(QDialog& dialog) {
  dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
}

// Opens a dialog of type T through the menu item of command and lets act work
// on it; true once it has closed again and the queue was served.
template <typename T>
bool RunDialog(MainWindowWidget& window, int command, const std::function<void(T&)>& act) {
  ModalHandler<T> handler(act);
  window.Action(command)->trigger();
  return WaitUntil([&] { return handler.Handled() && !QApplication::activeModalWidget(); });
}

}  // namespace wavetrace::ui::testing
