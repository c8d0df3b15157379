#pragma once

// Shared by the Qt tests: one QApplication for the whole binary, a run of the
// real program with the Qt view in a fresh configuration folder, and reaching
// the modal dialogs that run their own loop.
#include <gtest/gtest.h>
#include <stdlib.h>

// The whole widget and test modules: the tests reach into most kinds of widget.
#include <QtTest>
#include <QtWidgets>
#include <functional>
#include <utility>

#include "app/program.h"
#include "core/app_state.h"
#include "core/messages.h"
#include "tests/program_fixture.h"
#include "ui/main_window_widget.h"
#include "ui/qt_view.h"

namespace wavetrace::ui::testing {

inline QApplication& TestApplication() {
  static int argc = 1;
  static char* argv[] = {const_cast<char*>("wavetrace_qt_tests"), nullptr};
  // Never destroyed: it must outlive every test and static.
  static QApplication* application = [] {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setQuitOnLastWindowClosed(false);
    return new QApplication(argc, argv);
  }();
  return *application;
}

// Polls (serving the event loop) until the condition holds or time is up.
inline bool WaitUntil(const std::function<bool()>& condition, int timeoutMs = 5000) {
  return QTest::qWaitFor(condition, timeoutMs);
}

// A whole run of the program with the Qt view, its start-up, message loop and
// shutdown as main() runs them, in a configuration folder of its own that
// already records this release, so that no version warning waits for a user.
// The window has the layout given, as --layout gives it. body runs inside the
// loop once the main window is up; the exit command follows it, and the run
// must end with 0.
inline void RunShown(const std::function<void(MainWindowWidget&, core::AppState&)>& body,
                     app::WindowLayout layout = app::WindowLayout::kCompact) {
  TestApplication();
  QTemporaryDir home;
  wavetrace::testing::WriteRegistry(home.path().toStdString());
  setenv("WAVETRACE_HOME", home.path().toLocal8Bit().constData(), 1);
  core::AppState state;
  state.Switches.Layout = static_cast<int32_t>(layout);
  QtView view(state);
  state.View = &view;
  state.Screen.SetEventsEnabled(true);
  QObject scope;
  // A message box nobody expected would wait for a user forever: it fails
  // the test and is closed.
  QTimer boxGuard;
  QObject::connect(&boxGuard, &QTimer::timeout, [] {
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      ADD_FAILURE() << "unexpected box: " << box->windowTitle().toStdString() << ": "
                    << box->text().toStdString();
      box->done(QMessageBox::Ok);
    }
  });
  boxGuard.start(100);
  const int exitCode = app::RunProgram(state, [&] {
    QTimer::singleShot(0, &scope, [&] {
      MainWindowWidget& window = view.Window();
      EXPECT_TRUE(WaitUntil([&] { return window.isVisible(); })) << "the main window is not shown";
      if (window.isVisible()) body(window, state);
      state.Queue.PostCommand(core::cmd::kExit);
    });
    QTimer::singleShot(20000, &scope, [&] {
      ADD_FAILURE() << "the program did not end in time";
      state.Queue.PostCommand(core::cmd::kExit);
    });
    return view.RunMessageLoop();
  });
  EXPECT_EQ(exitCode, 0);
  state.View = nullptr;
  unsetenv("WAVETRACE_HOME");
}

// Calls act(dialog) once a modal dialog of type T is up; the dialog runs its
// own loop, so the test reaches it from a timer.
template <typename T>
struct ModalHandler {
  explicit ModalHandler(std::function<void(T&)> act) {
    QObject::connect(&timer, &QTimer::timeout, [this, act = std::move(act)] {
      auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget());
      if (!dialog) return;
      timer.stop();
      handled = true;
      act(*dialog);
    });
    timer.start(10);
  }

  QTimer timer;
  bool handled = false;
};

// Presses the dialog's OK or Cancel button, as a tap does.
inline void Click(QDialog& dialog, QDialogButtonBox::StandardButton which) {
  dialog.findChild<QDialogButtonBox*>()->button(which)->click();
}

// A dialog sheet takes the window's font and fits the room a dialog has:
// the compact window, or the desktop's screen.
inline void ExpectFitsTheWindow(const QWidget& sheet, const MainWindowWidget& window) {
  EXPECT_EQ(sheet.font(), window.font());
  EXPECT_LE(sheet.width(), DialogRoom(window).width());
  EXPECT_LE(sheet.height(), DialogRoom(window).height());
}

// Opens the sheet of command through its menu item twice, edits it and
// presses Cancel, then OK; check(ok) follows each once the sheet has closed.
template <typename T>
void CancelThenOk(MainWindowWidget& window, int command, const std::function<void(T&)>& edit,
                  const std::function<void(bool)>& check) {
  for (bool ok : {false, true}) {
    ModalHandler<T> handler([&](T& dialog) {
      ExpectFitsTheWindow(dialog, window);
      edit(dialog);
      Click(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    });
    window.Action(command)->trigger();
    ASSERT_TRUE(WaitUntil([&] { return handler.handled && !QApplication::activeModalWidget(); }));
    check(ok);
  }
}

}  // namespace wavetrace::ui::testing
