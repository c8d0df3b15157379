// PLAY and STOP on a pseudo-terminal through the running program: the
// buttons, the status line, the menu item and the received text.
#include <QLabel>

#include "platform/pty.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using testing::WaitUntil;
namespace cmd = core::cmd;

constexpr int kPortTimeoutMs = 10000;

bool Shows(const MainWindowWidget& window, bool opened, const QString& status) {
  return window.Button(cmd::kPlay)->isEnabled() != opened &&
         window.Button(cmd::kStop)->isEnabled() == opened &&
         window.Action(cmd::kCommProperties)->isEnabled() != opened &&
         window.StatusLine()->text().startsWith(status);
}

TEST(PortConnection, PlayReceivesStopClosesAndAnUnpluggedDeviceCloses) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  testing::GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    ASSERT_TRUE(WaitUntil([&] { return !window.Receive()->ModelText().empty(); }));
    ASSERT_TRUE(Shows(window, false, QString()));
    state.Port.SelectedPort = QString::fromStdString(pty.SlavePath()).toStdU16String();
    state.Port.SelectedBaud = 9600;
    const QString opened = QStringLiteral("Port opened!  Send/Receive active...");

    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(WaitUntil([&] { return Shows(window, true, opened); }, kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();
    ASSERT_TRUE(pty.Write("hello"));
    EXPECT_TRUE(
        WaitUntil([&] { return window.Receive()->ModelText().find(u"hello") != std::u16string::npos; },
                  kPortTimeoutMs));

    window.Button(cmd::kStop)->click();
    EXPECT_TRUE(WaitUntil(
        [&] { return Shows(window, false, QStringLiteral("Port closed!  Send/Receive deactivated.")); },
        kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();

    // The port is free again: a second PLAY opens it; then the device goes.
    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(WaitUntil([&] { return Shows(window, true, opened); }, kPortTimeoutMs));
    pty.CloseMaster();
    EXPECT_TRUE(
        WaitUntil([&] { return Shows(window, false, QStringLiteral("Port closed!")); }, kPortTimeoutMs))
        << window.StatusLine()->text().toStdString();
  }),
            0);
}

}  // namespace
}  // namespace wavetrace::ui
