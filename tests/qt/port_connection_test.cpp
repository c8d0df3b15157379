// PLAY and STOP on a pseudo-terminal through the running program: the
// buttons, the status line, the menu items, the line status strip and the
// received text.
#include "platform/pty.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using namespace testing;
namespace cmd = core::cmd;

// Waits until the window shows the port open or closed (the line commands
// follow it) with a status line that starts with status (null: any).
bool Shows(const MainWindowWidget& window, bool opened, const char* status) {
  return WaitUntil(
      [&] {
        return window.Button(cmd::kPlay)->isEnabled() != opened &&
               window.Button(cmd::kStop)->isEnabled() == opened &&
               window.Action(cmd::kCommProperties)->isEnabled() != opened &&
               window.Action(cmd::kSendBreak)->isEnabled() == opened &&
               window.Action(cmd::kToggleRts)->isEnabled() == opened &&
               window.StatusLine()->text().startsWith(status);
      },
      10000);
}

TEST(PortConnection, PlayOpensAndReceivesTheLineStatusStripShowsThePortAndStopCloses) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    ASSERT_TRUE(WaitUntil([&] { return !window.Receive()->ModelText().empty(); }));
    ASSERT_TRUE(Shows(window, false, nullptr));  // with any status line
    LineStatusStrip* lines = window.LineStatus();
    window.Action(cmd::kLineStatus)->trigger();
    EXPECT_TRUE(
        WaitUntil([&] { return lines->isVisible() && lines->Text() == "Line status: no port open"; }));
    state.Port.SelectedPort = QString::fromStdString(pty.SlavePath()).toStdU16String();
    state.Port.SelectedBaud = 9600;
    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(Shows(window, true, "Port opened!  Send/Receive active..."))
        << window.StatusLine()->text().toStdString();
    ASSERT_TRUE(pty.Write("hello"));
    EXPECT_TRUE(WaitUntil(
        [&] { return window.Receive()->ModelText().find(u"hello") != std::u16string::npos; }, 10000));
    // The strip reads the open port (a pseudo-terminal has neither lines nor counters); RTS by hand.
    EXPECT_TRUE(
        WaitUntil([&] { return lines->Text() == "Line status: modem lines n/a; error counters n/a"; }));
    window.Action(cmd::kToggleRts)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return window.Action(cmd::kToggleRts)->isChecked(); }));
    window.Action(cmd::kLineStatus)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return !lines->isVisible(); }));
    window.Button(cmd::kStop)->click();
    EXPECT_TRUE(Shows(window, false, "Port closed!  Send/Receive deactivated."))
        << window.StatusLine()->text().toStdString();
  });
}

}  // namespace
}  // namespace wavetrace::ui
