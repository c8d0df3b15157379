// PLAY and STOP on a pseudo-terminal through the running program: the
// buttons, the status line, the menu item and the received text.
#include <QAction>
#include <QLabel>
#include <QPushButton>

#include "platform/pty.h"
#include "tests/qt/gui_program.h"
#include "ui/main_window_widget.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using testing::GuiProgram;
using testing::WaitUntil;
namespace cmd = core::cmd;

constexpr int kPortTimeoutMs = 10000;

bool ShowsClosed(const MainWindowWidget& window) {
  return window.Button(cmd::kPlay)->isEnabled() && !window.Button(cmd::kStop)->isEnabled() &&
         window.Action(cmd::kCommProperties)->isEnabled();
}

bool ShowsOpened(const MainWindowWidget& window) {
  return !window.Button(cmd::kPlay)->isEnabled() && window.Button(cmd::kStop)->isEnabled() &&
         !window.Action(cmd::kCommProperties)->isEnabled();
}

void SelectPty(core::AppState& state, const platform::PtyPair& pty) {
  state.Port.SelectedPort = QString::fromStdString(pty.SlavePath()).toStdU16String();
  state.Port.SelectedBaud = 9600;
  state.Port.SelectedDataBits = 8;
  state.Port.Parity = u"None";
  state.Port.StopBits = u"1";
}

TEST(PortConnection, PlayReceivesAndStopCloses) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible() && !window.Receive()->ModelText().empty(); }));
    ASSERT_TRUE(ShowsClosed(window));
    SelectPty(program.State(), pty);

    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(WaitUntil(
        [&] {
          return ShowsOpened(window) &&
                 window.StatusLine()->text() == QStringLiteral("Port opened!  Send/Receive active...");
        },
        kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();

    ASSERT_TRUE(pty.Write("hello"));
    EXPECT_TRUE(
        WaitUntil([&] { return window.Receive()->ModelText().find(u"hello") != std::u16string::npos; },
                  kPortTimeoutMs));

    window.Button(cmd::kStop)->click();
    EXPECT_TRUE(WaitUntil(
        [&] {
          return ShowsClosed(window) &&
                 window.StatusLine()->text() == QStringLiteral("Port closed!  Send/Receive deactivated.");
        },
        kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();

    // The port is free again: a second PLAY opens it.
    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(WaitUntil([&] { return ShowsOpened(window); }, kPortTimeoutMs));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(PortConnection, UnpluggedDeviceReturnsToTheClosedState) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SelectPty(program.State(), pty);

    window.Button(cmd::kPlay)->click();
    ASSERT_TRUE(WaitUntil([&] { return ShowsOpened(window); }, kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();

    pty.CloseMaster();
    EXPECT_TRUE(WaitUntil(
        [&] {
          return ShowsClosed(window) &&
                 window.StatusLine()->text().startsWith(QStringLiteral("Port closed!"));
        },
        kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();
  });
  EXPECT_EQ(exitCode, 0);
}

}  // namespace
}  // namespace wavetrace::ui
