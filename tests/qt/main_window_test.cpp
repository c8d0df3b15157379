// The Qt view over the real start-up: what the main window shows and what
// its menu items, buttons and fields do.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextCursor>
#include <thread>

#include "automation/port_scan.h"
#include "core/clipboard.h"
#include "core/reporting.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using testing::GuiProgram;
using testing::WaitUntil;
namespace cmd = core::cmd;

bool ShowsModelText(MainWindowWidget& window, core::AppState& state) {
  return window.Receive()->ModelText() == state.Screen.RxText();
}

// Every menu item and button shows what the model says of its command.
void ExpectControlsFollowTheModel(MainWindowWidget& window, const core::MainScreen& screen) {
  int items = 0;
  for (QAction* action : window.findChildren<QAction*>(QRegularExpression(QStringLiteral("^action\\d+$")))) {
    int command = action->objectName().mid(6).toInt();
    EXPECT_EQ(action, window.Action(command));
    EXPECT_EQ(action->isEnabled(), !screen.IsMenuItemGrey(command)) << command;
    ++items;
  }
  int buttons = 0;
  for (auto* button : window.findChildren<QPushButton*>(QRegularExpression(QStringLiteral("^button\\d+$")))) {
    int command = button->objectName().mid(6).toInt();
    EXPECT_EQ(button->isEnabled(), screen.IsButtonEnabled(command)) << command;
    ++buttons;
  }
  EXPECT_EQ(items, 27);
  EXPECT_EQ(buttons, 9);
}

TEST(MainWindow, StartUpShowsTheWelcomeTextTitleStatusAndTheModelsControls) {
  GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    auto& screen = state.Screen;
    ASSERT_TRUE(WaitUntil(
        [&] { return window.Receive()->ModelText().find(u"into your Pocket PC.") != std::u16string::npos; }));
    EXPECT_TRUE(ShowsModelText(window, state));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Wavetrace Pro "));
    core::ShowStatus(state, u"Port opened: COM1: 9600,8,N,1");
    EXPECT_TRUE(WaitUntil(
        [&] { return window.StatusLine()->text() == QStringLiteral("Port opened: COM1: 9600,8,N,1"); }));
    ExpectControlsFollowTheModel(window, screen);
    EXPECT_EQ(window.Action(cmd::kClearReceiveWindow)->text(), QStringLiteral("Received window"));

    // Later changes of the model reach the window.
    screen.GreyMenuItem(cmd::kAbout, true);
    screen.EnableButton(cmd::kClearButton, false);
    screen.SetButtonPressed(cmd::kRepeat, true);
    EXPECT_TRUE(WaitUntil([&] {
      return !window.Action(cmd::kAbout)->isEnabled() && !window.Button(cmd::kClearButton)->isEnabled() &&
             window.Button(cmd::kRepeat)->isChecked();
    }));
    screen.SetButtonPressed(cmd::kRepeat, false);
    EXPECT_TRUE(WaitUntil([&] { return !window.Button(cmd::kRepeat)->isChecked(); }));

    // Choosing the checked radix item again keeps its mark.
    auto checked = [&] {
      std::vector<int> items;
      for (int command : {cmd::kDecimal, cmd::kHex, cmd::kOctal, cmd::kBinary})
        if (window.Action(command)->isChecked()) items.push_back(command);
      return items;
    };
    for (int command : {cmd::kDecimal, cmd::kDecimal, cmd::kOctal, cmd::kOctal}) {
      window.Action(command)->trigger();
      EXPECT_TRUE(WaitUntil([&] { return checked() == std::vector<int>{command}; })) << command;
    }
  }),
            0);
}

TEST(MainWindow, ReceiveWindowFollowsEditsWithoutReloading) {
  GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    ReceiveView* receive = window.Receive();
    auto& screen = state.Screen;
    ASSERT_TRUE(WaitUntil([&] { return !receive->ModelText().empty() && ShowsModelText(window, state); }));

    // The user's selection survives appends from a worker thread: the text is edited, not reloaded.
    QTextCursor selection(receive->document());
    selection.setPosition(4);
    selection.setPosition(11, QTextCursor::KeepAnchor);
    receive->setTextCursor(selection);
    ASSERT_EQ(receive->textCursor().selectedText(), QStringLiteral("Welcome"));
    std::thread([&] { screen.RxInsertAtCaret(u"\r\nline A\r\nline B"); }).join();
    EXPECT_TRUE(WaitUntil([&] { return ShowsModelText(window, state); }));
    EXPECT_EQ(receive->textCursor().selectedText(), QStringLiteral("Welcome"));

    // A replacement in the middle and a clear.
    screen.RxSetSelection(4, 11);
    screen.RxReplaceSelection(u"Hello");
    EXPECT_TRUE(WaitUntil([&] { return ShowsModelText(window, state); }));
    EXPECT_EQ(receive->ModelText().substr(0, 9), u"    Hello");
    screen.RxClear();
    EXPECT_TRUE(WaitUntil([&] { return receive->ModelText().empty(); }));

    // At the end the view follows new lines; scrolled back it stays put.
    for (int i = 0; i < 200; ++i) screen.RxInsertAtCaret(u"received line\r\n");
    ASSERT_TRUE(WaitUntil([&] { return ShowsModelText(window, state); }));
    QScrollBar* bar = receive->verticalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(0);
    screen.RxInsertAtCaret(u"one more\r\n");
    ASSERT_TRUE(WaitUntil([&] { return ShowsModelText(window, state); }));
    EXPECT_EQ(bar->value(), 0);
  }),
            0);
}

TEST(MainWindow, ButtonsFieldsClipboardAndFullscreenTalkToTheModel) {
  GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    auto& screen = state.Screen;
    ASSERT_TRUE(WaitUntil([&] { return !screen.RxText().empty(); }));
    // CLEAR posts its command; a click does not press the button by itself: that is the model's call.
    window.Button(cmd::kClearButton)->click();
    EXPECT_TRUE(WaitUntil([&] { return screen.RxText().empty() && window.Receive()->ModelText().empty(); }));
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
    window.Action(cmd::kClearSendHistory)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return field->count() == 0 && field->currentText().isEmpty(); }));

    // Copy in the receive window takes the text with its line ends; paste there replaces the field,
    // and with the focus in the field goes in at the caret.
    QClipboard* clipboard = QGuiApplication::clipboard();
    ReceiveView* receive = window.Receive();
    QLineEdit* edit = field->lineEdit();
    screen.RxInsertAtCaret(u"first\r\nsecond\r\n");
    screen.SetTxText(u"old text");
    ASSERT_TRUE(WaitUntil(
        [&] { return ShowsModelText(window, state) && edit->text() == QStringLiteral("old text"); }));
    receive->setFocus();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == receive; }));
    receive->selectAll();
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("first\r\nsecond\r\n"));
    clipboard->setText(QStringLiteral("XYZ"));
    window.Action(cmd::kPaste)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XYZ"; }));
    EXPECT_TRUE(field->hasFocus());
    edit->setCursorPosition(1);
    window.Action(cmd::kPaste)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XXYZYZ"; }));
    edit->setSelection(1, 3);
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(clipboard->text(), QStringLiteral("XYZ"));
    EXPECT_EQ(core::CopyTextToClipboard(state, u"copied by the core"), 1);
    EXPECT_EQ(clipboard->text(), QStringLiteral("copied by the core"));

    int normalHeight = receive->height();
    window.Action(cmd::kFullscreen)->trigger();
    EXPECT_TRUE(WaitUntil([&] {
      return window.Action(cmd::kFullscreen)->isChecked() && !window.Button(cmd::kClearButton)->isVisible() &&
             !field->isVisible() && receive->height() > normalHeight;
    }));
    window.Action(cmd::kFullscreen)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return window.Button(cmd::kClearButton)->isVisible(); }));
    EXPECT_FALSE(window.Action(cmd::kFullscreen)->isChecked());
    screen.SetFocus(core::control::kTransmitField);
    EXPECT_TRUE(WaitUntil([&] { return field->hasFocus(); }));
    screen.SetFocus(core::control::kReceiveWindow);
    EXPECT_TRUE(WaitUntil([&] { return receive->hasFocus(); }));
    screen.SetTxEnabled(false);
    EXPECT_TRUE(WaitUntil([&] { return !field->isEnabled(); }));
  }),
            0);
}

TEST(MainWindow, ClosingTheWindowIsTheExitCommand) {
  GuiProgram program;
  bool threadsRan = false;
  bool stayedOpen = false;
  int exitCode = program.Run(
      [&] {
        MainWindowWidget& window = program.View().Window();
        ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
        threadsRan = program.State().RxWndUpdate && program.State().RxThread;
        window.close();
        // The close was refused: the shutdown, not the window, ends the run.
        stayedOpen = window.isVisible();
      },
      false);
  EXPECT_EQ(exitCode, 0);
  EXPECT_TRUE(threadsRan && stayedOpen);
  const core::AppState& state = program.State();
  EXPECT_FALSE(state.RxThread || state.TxThread || state.RxWndUpdate || state.LogIntervalThread);
  EXPECT_TRUE(state.ShuttingDown);
}

TEST(MainWindow, StripsShowWhatTheModelSaysAndPostTheirControls) {
  GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
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
  }),
            0);
}

TEST(MainWindow, RunScriptOffersTheConfigurationFolderAndRunsTheChosenScript) {
  GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    const QString folder = QString::fromStdU16String(state.ConfigFolder);
    QFile script(folder + QStringLiteral("/hello.txt"));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly) &&
                script.write("<COMMENT>said by the script</COMMENT>") > 0);
    script.close();
    testing::ModalHandler<QFileDialog> picker([&](QFileDialog& dialog) {
      EXPECT_EQ(dialog.windowTitle() + dialog.directory().canonicalPath(),
                QStringLiteral("Run script") + QDir(folder).canonicalPath());
      dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(script.fileName());
      static_cast<QDialog&>(dialog).accept();
    });
    window.Action(cmd::kRunScript)->trigger();
    EXPECT_TRUE(WaitUntil(
        [&] { return window.Receive()->ModelText().find(u"said by the script") != std::u16string::npos; }));
  }),
            0);
}

}  // namespace
}  // namespace wavetrace::ui
