// The Qt view over the real start-up: what the main window shows and what
// its menu items, buttons and fields do; PLAY and STOP on a pseudo-terminal.
#include <fstream>
#include <thread>

#include "automation/port_scan.h"
#include "platform/pty.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using namespace testing;
namespace cmd = core::cmd;

// Waits until the receive window shows the model's text.
bool ShowsModelText(MainWindowWidget& window, core::AppState& state) {
  return WaitUntil([&] { return window.Receive()->ModelText() == state.Screen.RxText(); });
}

// Waits until the window shows the port open or closed (the line commands
// follow it) with a status line that starts with status (null: any).
bool ShowsPort(const MainWindowWidget& window, bool opened, const char* status) {
  return WaitUntil(
      [&] {
        return window.Button(cmd::kPlay)->isEnabled() != opened &&
               window.Button(cmd::kStop)->isEnabled() == opened &&
               window.Action(cmd::kCommProperties)->isEnabled() != opened &&
               window.Action(cmd::kToggleRts)->isEnabled() == opened &&
               window.StatusLine()->text().startsWith(status);
      },
      10000);
}

TEST(MainWindow, StartUpShowsTheTitleAndTheModelsControls) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    auto& screen = state.Screen;
    EXPECT_EQ(window.windowTitle(), "Wavetrace Pro ");

    // Every menu item and button shows what the model says of its command.
    auto actions = window.findChildren<QAction*>(QRegularExpression("^action\\d+$"));
    auto buttons = window.findChildren<QPushButton*>(QRegularExpression("^button\\d+$"));
    EXPECT_EQ(std::pair(actions.size(), buttons.size()), std::pair(qsizetype{31}, qsizetype{9}));
    for (QAction* action : actions) {
      int command = action->objectName().mid(6).toInt();
      EXPECT_EQ(action, window.Action(command));
      EXPECT_EQ(action->isEnabled(), !screen.IsMenuItemGrey(command)) << command;
      EXPECT_EQ(action->isChecked(), screen.IsMenuItemChecked(command)) << command;
    }
    for (QPushButton* button : buttons) {
      int command = button->objectName().mid(6).toInt();
      EXPECT_EQ(button->isEnabled(), screen.IsButtonEnabled(command)) << command;
    }

    // A button the model presses later shows pressed, and released again (later grey and enabled
    // states: PortConnection).
    for (bool pressed : {true, false}) {
      screen.SetButtonPressed(cmd::kRepeat, pressed);
      EXPECT_TRUE(WaitUntil([&] { return window.Button(cmd::kRepeat)->isChecked() == pressed; }));
    }

    // Choosing the checked radix item again keeps its mark: Qt's own toggle is undone (which item
    // the model checks: app_startup_test).
    for (int command : {cmd::kDecimal, cmd::kDecimal, cmd::kOctal, cmd::kOctal}) {
      window.Action(command)->trigger();
      EXPECT_TRUE(WaitUntil([&] {
        return screen.IsMenuItemChecked(command) && window.Action(command)->isChecked();
      })) << command;
    }
  });
}

TEST(MainWindow, ReceiveWindowShowsTheWelcomeTextAndFollowsEditsWithoutReloading) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    ReceiveView* receive = window.Receive();
    auto& screen = state.Screen;
    ASSERT_TRUE(WaitUntil([&] { return !receive->ModelText().empty(); }));
    ASSERT_TRUE(ShowsModelText(window, state));

    // The welcome text is there; the user's selection survives appends from a worker thread: the text
    // is edited, not reloaded.
    QTextCursor selection(receive->document());
    selection.setPosition(4);
    selection.setPosition(11, QTextCursor::KeepAnchor);
    receive->setTextCursor(selection);
    ASSERT_EQ(receive->textCursor().selectedText(), "Welcome");
    std::thread([&] { screen.RxInsertAtCaret(u"\r\nline A\r\nline B"); }).join();
    EXPECT_TRUE(ShowsModelText(window, state));
    EXPECT_EQ(receive->textCursor().selectedText(), "Welcome");

    // At the end the view follows new lines; scrolled back it stays put.
    for (int i = 0; i < 200; ++i) screen.RxInsertAtCaret(u"received line\r\n");
    ASSERT_TRUE(ShowsModelText(window, state));
    QScrollBar* bar = receive->verticalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(0);
    screen.RxInsertAtCaret(u"one more\r\n");
    ASSERT_TRUE(ShowsModelText(window, state));
    EXPECT_EQ(bar->value(), 0);
  });
}

TEST(MainWindow, ButtonsFieldsClipboardAndFullscreenTalkToTheModel) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    auto& screen = state.Screen;
    ReceiveView* receive = window.Receive();
    QComboBox* field = window.TransmitField();
    QLineEdit* edit = field->lineEdit();
    ASSERT_TRUE(WaitUntil([&] { return !screen.RxText().empty(); }));
    // CLEAR posts its command; a click does not press the button by itself: that is the model's call.
    window.Button(cmd::kClearButton)->click();
    EXPECT_TRUE(WaitUntil([&] { return screen.RxText().empty() && receive->ModelText().empty(); }));
    EXPECT_FALSE(window.Button(cmd::kClearButton)->isChecked());

    // The history drop-down comes from the model; typing goes back to it.
    screen.SetTxHistory({u"ATZ", u"AT+GMR"});
    screen.SetTxText(u"ATI");
    EXPECT_TRUE(WaitUntil([&] { return field->count() == 2 && field->currentText() == "ATI"; }));
    EXPECT_EQ(field->itemText(1), "AT+GMR");
    edit->setText("AT&V");
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"AT&V"; }));
    window.Action(cmd::kClearSendHistory)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return field->count() == 0 && field->currentText().isEmpty(); }));

    // Copy in the receive window takes the text with its line ends; paste there replaces the field,
    // and with the focus in the field goes in at the caret.
    QClipboard* clipboard = QGuiApplication::clipboard();
    screen.RxInsertAtCaret(u"first\r\nsecond\r\n");
    screen.SetTxText(u"old text");
    ASSERT_TRUE(ShowsModelText(window, state));
    ASSERT_TRUE(WaitUntil([&] { return edit->text() == "old text"; }));
    screen.SetFocus(core::control::kReceiveWindow);  // the model moves the focus
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == receive; }));
    receive->selectAll();
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(clipboard->text(), "first\r\nsecond\r\n");
    clipboard->setText("XYZ");
    window.Action(cmd::kPaste)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XYZ"; }));
    EXPECT_TRUE(field->hasFocus());
    edit->setCursorPosition(1);
    window.Action(cmd::kPaste)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XXYZYZ"; }));
    edit->setSelection(1, 3);
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(clipboard->text(), "XYZ");

    int normalHeight = receive->height();
    window.Action(cmd::kFullscreen)->trigger();
    EXPECT_TRUE(WaitUntil([&] {
      return window.Action(cmd::kFullscreen)->isChecked() && !window.Button(cmd::kClearButton)->isVisible() &&
             !field->isVisible() && receive->height() > normalHeight;
    }));
    window.Action(cmd::kFullscreen)->trigger();
    // Its mark follows the model as every mark does (StartUpShowsTheTitleAndTheModelsControls).
    EXPECT_TRUE(WaitUntil([&] { return window.Button(cmd::kClearButton)->isVisible(); }));
    screen.SetFocus(core::control::kTransmitField);
    EXPECT_TRUE(WaitUntil([&] { return field->hasFocus(); }));
  });
}

TEST(MainWindow, StripsShowWhatTheModelSaysAndPostTheirControls) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    PsmStrip* psm = window.PortScanStrip();
    SoftwareButtonStrip* software = window.SoftwareButtons();
    EXPECT_FALSE(psm->isVisible() || software->isVisible());
    const QSize windowSize = window.size();
    const int receiveHeight = window.Receive()->height();
    state.Data.SoftwareButtonCaption = {u"Hello", u"Bye", u"Third"};
    state.Data.SoftwareButtonData = {u"hello there", u"bye"};
    window.Action(cmd::kSoftwareButtons)->trigger();
    ASSERT_TRUE(WaitUntil([&] { return software->isVisible(); }));
    QStringList labels;
    for (int n = 1; n <= 6; ++n)
      labels << software->Button(n)->text() + (software->Button(n)->isEnabled() ? "+" : "");
    EXPECT_EQ(labels.join(' '), QStringLiteral("Hello+ Bye+    "));
    software->Button(1)->click();
    EXPECT_TRUE(WaitUntil([&] { return state.Screen.TxText() == u"hello there"; }));

    state.Psm.PsmEnabled = 1;
    automation::ShowPsmStrip(state);
    ASSERT_TRUE(WaitUntil([&] { return psm->isVisible(); }));
    EXPECT_TRUE(psm->StartButton()->isEnabled() && !psm->StopButton()->isEnabled());
    psm->TxBox()->click();
    const int tx = core::strip::kPsmStrip + core::strip::kPsmTx;
    EXPECT_TRUE(WaitUntil([&] { return state.Screen.IsButtonPressed(tx) && psm->TxBox()->isChecked(); }));
    // Both strips take their room from the receive window, not beyond the screen.
    EXPECT_TRUE(WaitUntil([&] { return window.Receive()->height() < receiveHeight - psm->height(); }));
    EXPECT_EQ(window.size(), windowSize);
  });
}

TEST(MainWindow, RunScriptRunsTheChosenScriptFromTheConfigurationFolderAndClosingIsTheExitCommand) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    const QString folder = QString::fromStdU16String(state.ConfigFolder);
    const QString script = folder + QStringLiteral("/hello.txt");
    ASSERT_TRUE(std::ofstream(script.toStdString()) << "<COMMENT>said by the script</COMMENT>");
    testing::ModalHandler<QFileDialog> picker([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle() + dialog.directory().canonicalPath(),
                QStringLiteral("Run script") + QDir(folder).canonicalPath());
      dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(script);
      static_cast<QDialog&>(dialog).accept();
    });
    window.Action(cmd::kRunScript)->trigger();
    EXPECT_TRUE(WaitUntil(
        [&] { return window.Receive()->ModelText().find(u"said by the script") != std::u16string::npos; }));

    // Closing the window is the Exit command: the close is refused, the shutdown ends the run.
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(WaitUntil([&] { return state.ShuttingDown.load(); }));
  });
}

TEST(PortConnection, PlayOpensAndReceivesTheLineStatusStripShowsThePortAndStopCloses) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    ASSERT_TRUE(WaitUntil([&] { return !window.Receive()->ModelText().empty(); }));
    ASSERT_TRUE(ShowsPort(window, false, nullptr));  // with any status line
    LineStatusStrip* lines = window.LineStatus();
    window.Action(cmd::kLineStatus)->trigger();
    EXPECT_TRUE(
        WaitUntil([&] { return lines->isVisible() && lines->Text() == "Line status: no port open"; }));
    state.Port.SelectedPort = QString::fromStdString(pty.SlavePath()).toStdU16String();
    state.Port.SelectedBaud = 9600;
    window.Button(cmd::kPlay)->click();
    EXPECT_TRUE(ShowsPort(window, true, "Port opened!  Send/Receive active..."))
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
    EXPECT_TRUE(ShowsPort(window, false, "Port closed!  Send/Receive deactivated."))
        << window.StatusLine()->text().toStdString();
  });
}

}  // namespace
}  // namespace wavetrace::ui
