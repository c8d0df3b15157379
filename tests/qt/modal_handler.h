#pragma once

// Shared by the Qt tests: reaching a modal dialog that runs its own loop.
#include <QApplication>
#include <QTimer>
#include <functional>
#include <utility>

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

}  // namespace wavetrace::ui::testing
