// The Qt view over the real start-up: what the main window shows and what
// its menu items and buttons do.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <thread>

#include "core/reporting.h"
#include "tests/qt/gui_program.h"
#include "ui/main_window_widget.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using testing::GuiProgram;
using testing::WaitUntil;
namespace cmd = core::cmd;

bool ShowsModelText(GuiProgram& program) {
  return program.View().Window().Receive()->ModelText() == program.State().Screen.RxText();
}

TEST(MainWindow, StartUpShowsWelcomeTextTitleAndStatus) {
  GuiProgram program;
  ASSERT_TRUE(program.Home().Valid());
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    ASSERT_TRUE(WaitUntil(
        [&] { return window.Receive()->ModelText().find(u"into your Pocket PC.") != std::u16string::npos; }));
    std::u16string shown = window.Receive()->ModelText();
    EXPECT_NE(shown.find(u"Welcome to Wavetrace Pro\r\n"), std::u16string::npos);
    EXPECT_NE(shown.find(u"Rel. 2.71.3089 (11.2008)"), std::u16string::npos);
    EXPECT_EQ(shown, program.State().Screen.RxText());
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Wavetrace Pro "));

    core::ShowStatus(program.State(), u"Port opened: COM1: 9600,8,N,1");
    EXPECT_TRUE(WaitUntil(
        [&] { return window.StatusLine()->text() == QStringLiteral("Port opened: COM1: 9600,8,N,1"); }));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(MainWindow, GreyedCommandsAreDisabledAndFollowTheModel) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    auto& screen = program.State().Screen;
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    for (int command : {cmd::kAbout,
                        cmd::kExit,
                        cmd::kHelp,
                        cmd::kRunScript,
                        cmd::kConfigLoad,
                        cmd::kConfigSave,
                        cmd::kConfigSaveAs,
                        cmd::kConfigSetDefault,
                        cmd::kProgramOptions,
                        cmd::kCopy,
                        cmd::kPaste,
                        cmd::kClearReceiveWindow,
                        cmd::kClearSendHistory,
                        cmd::kReceiveOptions,
                        cmd::kTransmitOptions,
                        cmd::kCommProperties,
                        cmd::kScreenOff,
                        cmd::kFullscreen,
                        cmd::kBacklightOnReceive,
                        cmd::kDecimal,
                        cmd::kHex,
                        cmd::kOctal,
                        cmd::kBinary,
                        cmd::kPauseRxDisplay,
                        cmd::kSoftwareButtons,
                        cmd::kAsciiChart,
                        cmd::kCommPinouts}) {
      QAction* action = window.Action(command);
      ASSERT_NE(action, nullptr) << command;
      EXPECT_EQ(action->isEnabled(), !screen.IsMenuItemGrey(command)) << command;
    }
    EXPECT_TRUE(window.Action(cmd::kAbout)->isEnabled());
    EXPECT_TRUE(window.Action(cmd::kExit)->isEnabled());
    EXPECT_EQ(window.Action(cmd::kAbout)->text(), QStringLiteral("About..."));
    EXPECT_EQ(window.Action(cmd::kClearReceiveWindow)->text(), QStringLiteral("Received window"));

    for (int command : {cmd::kPlay, cmd::kStop, cmd::kSend, cmd::kRepeat, cmd::kRecord, cmd::kRelay,
                        cmd::kAsciiButton, cmd::kBinaryButton, cmd::kClearButton}) {
      QPushButton* button = window.Button(command);
      ASSERT_NE(button, nullptr) << command;
      EXPECT_EQ(button->isEnabled(), screen.IsButtonEnabled(command)) << command;
    }

    // Later changes of the model reach the window.
    screen.GreyMenuItem(cmd::kAbout, true);
    screen.EnableButton(cmd::kClearButton, false);
    screen.SetButtonPressed(cmd::kBinaryButton, true);
    EXPECT_TRUE(WaitUntil([&] { return !window.Action(cmd::kAbout)->isEnabled(); }));
    EXPECT_TRUE(WaitUntil([&] { return !window.Button(cmd::kClearButton)->isEnabled(); }));
    EXPECT_TRUE(WaitUntil([&] { return window.Button(cmd::kBinaryButton)->isChecked(); }));
  });
  EXPECT_EQ(exitCode, 0);
}

// Exactly which of the four radix items carry the check mark.
std::vector<int> CheckedRadixItems(const MainWindowWidget& window) {
  std::vector<int> checked;
  for (int command : {cmd::kDecimal, cmd::kHex, cmd::kOctal, cmd::kBinary}) {
    if (window.Action(command)->isChecked()) checked.push_back(command);
  }
  return checked;
}

TEST(MainWindow, RadixItemsMoveTheSingleCheckMark) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    ASSERT_TRUE(WaitUntil([&] { return CheckedRadixItems(window).size() == 1; }));

    window.Action(cmd::kHex)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return CheckedRadixItems(window) == std::vector<int>{cmd::kHex}; }));
    EXPECT_EQ(program.State().Data.Base, 16);

    window.Action(cmd::kDecimal)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return CheckedRadixItems(window) == std::vector<int>{cmd::kDecimal}; }));
    EXPECT_EQ(program.State().Data.Base, 10);

    // Choosing the checked item again must not clear its mark.
    window.Action(cmd::kDecimal)->trigger();
    window.Action(cmd::kOctal)->trigger();
    window.Action(cmd::kOctal)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return program.State().Data.Base == 8; }));
    EXPECT_TRUE(WaitUntil([&] { return CheckedRadixItems(window) == std::vector<int>{cmd::kOctal}; }));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(MainWindow, ReceiveWindowFollowsEditsWithoutReloading) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ReceiveView* receive = window.Receive();
    auto& screen = program.State().Screen;
    ASSERT_TRUE(WaitUntil([&] { return !receive->ModelText().empty() && ShowsModelText(program); }));

    // The user's selection survives appends: the text is edited, not reloaded.
    QTextCursor selection(receive->document());
    selection.setPosition(4);
    selection.setPosition(11, QTextCursor::KeepAnchor);
    receive->setTextCursor(selection);
    ASSERT_EQ(receive->textCursor().selectedText(), QStringLiteral("Welcome"));

    // Received text arrives from a worker thread.
    std::thread worker([&] { screen.RxInsertAtCaret(u"\r\nline A\r\nline B"); });
    worker.join();
    EXPECT_TRUE(WaitUntil([&] { return ShowsModelText(program); }));
    EXPECT_EQ(receive->textCursor().selectedText(), QStringLiteral("Welcome"));
    EXPECT_NE(receive->ModelText().find(u"\r\nline A\r\nline B"), std::u16string::npos);

    // A replacement in the middle and a clear.
    screen.RxSetSelection(4, 11);
    screen.RxReplaceSelection(u"Hello");
    EXPECT_TRUE(WaitUntil([&] { return ShowsModelText(program); }));
    EXPECT_EQ(receive->ModelText().substr(0, 9), u"    Hello");
    screen.RxClear();
    EXPECT_TRUE(WaitUntil([&] { return receive->ModelText().empty(); }));

    // At the end the view follows new lines; scrolled back it stays put.
    for (int i = 0; i < 200; ++i) screen.RxInsertAtCaret(u"received line\r\n");
    ASSERT_TRUE(WaitUntil([&] { return ShowsModelText(program); }));
    QScrollBar* bar = receive->verticalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(0);
    screen.RxInsertAtCaret(u"one more\r\n");
    ASSERT_TRUE(WaitUntil([&] { return ShowsModelText(program); }));
    EXPECT_EQ(bar->value(), 0);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(MainWindow, ButtonsAndTransmitFieldTalkToTheModel) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    auto& screen = program.State().Screen;
    ASSERT_TRUE(WaitUntil([&] { return !window.Receive()->ModelText().empty() && ShowsModelText(program); }));

    // CLEAR posts its command; the main window empties the receive window.
    window.Button(cmd::kClearButton)->click();
    EXPECT_TRUE(WaitUntil([&] { return screen.RxText().empty() && window.Receive()->ModelText().empty(); }));
    // A click does not press the button by itself: that is the model's call.
    EXPECT_FALSE(window.Button(cmd::kClearButton)->isChecked());

    // The history drop-down comes from the model; typing goes back to it.
    screen.SetTxHistory({u"ATZ", u"AT+GMR"});
    screen.SetTxText(u"ATI");
    QComboBox* field = window.TransmitField();
    EXPECT_TRUE(
        WaitUntil([&] { return field->count() == 2 && field->currentText() == QStringLiteral("ATI"); }));
    EXPECT_EQ(field->itemText(1), QStringLiteral("AT+GMR"));
    field->lineEdit()->setText(QStringLiteral("AT&V"));
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"AT&V"; }));
    screen.SetTxEnabled(false);
    EXPECT_TRUE(WaitUntil([&] { return !field->isEnabled(); }));

    // "Send history" empties the field and its list.
    window.Action(cmd::kClearSendHistory)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return field->count() == 0 && field->currentText().isEmpty(); }));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(MainWindow, FullscreenAndFocusFollowTheModel) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(
        WaitUntil([&] { return window.isVisible() && window.Button(cmd::kClearButton)->isVisible(); }));
    int normalHeight = window.Receive()->height();

    window.Action(cmd::kFullscreen)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return window.Action(cmd::kFullscreen)->isChecked(); }));
    EXPECT_TRUE(WaitUntil([&] {
      return !window.Button(cmd::kClearButton)->isVisible() && !window.TransmitField()->isVisible() &&
             window.Receive()->height() > normalHeight;
    }));
    window.Action(cmd::kFullscreen)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return window.Button(cmd::kClearButton)->isVisible(); }));
    EXPECT_FALSE(window.Action(cmd::kFullscreen)->isChecked());

    program.State().Screen.SetFocus(core::control::kTransmitField);
    EXPECT_TRUE(WaitUntil([&] { return window.TransmitField()->hasFocus(); }));
    program.State().Screen.SetFocus(core::control::kReceiveWindow);
    EXPECT_TRUE(WaitUntil([&] { return window.Receive()->hasFocus(); }));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(MainWindow, ExitCommandEndsTheRunAndJoinsTheThreads) {
  GuiProgram program;
  bool threadsRan = false;
  int exitCode = program.Run(
      [&] {
        threadsRan = program.State().RxWndUpdate != nullptr && program.State().RxThread != nullptr;
        program.State().Queue.PostCommand(cmd::kExit);
      },
      false);
  EXPECT_EQ(exitCode, 0);
  EXPECT_TRUE(threadsRan);
  EXPECT_EQ(program.State().RxThread, nullptr);
  EXPECT_EQ(program.State().TxThread, nullptr);
  EXPECT_EQ(program.State().RxWndUpdate, nullptr);
  EXPECT_EQ(program.State().LogIntervalThread, nullptr);
  EXPECT_TRUE(program.State().ShuttingDown);
}

TEST(MainWindow, ClosingTheWindowIsTheExitCommand) {
  GuiProgram program;
  bool stayedOpen = false;
  int exitCode = program.Run(
      [&] {
        MainWindowWidget& window = program.View().Window();
        ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
        window.close();
        // The close was refused: the shutdown, not the window, ends the run.
        stayedOpen = window.isVisible();
      },
      false);
  EXPECT_TRUE(stayedOpen);
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(program.State().RxWndUpdate, nullptr);
}

}  // namespace
}  // namespace wavetrace::ui
