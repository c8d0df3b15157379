// The About screen, the Program Options page, and Copy and Paste, reached
// through the menu of the running program.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTextCursor>

#include "core/reporting.h"
#include "tests/qt/gui_program.h"
#include "tests/qt/modal_handler.h"
#include "ui/about_dialog.h"
#include "ui/main_window_widget.h"
#include "ui/program_options_dialog.h"
#include "ui/receive_view.h"

namespace wavetrace::ui {
namespace {

using testing::GuiProgram;
using testing::ModalHandler;
using testing::WaitUntil;
namespace cmd = core::cmd;

// Whether the registry file holds the dword, its name quoted or not.
bool RegistryHolds(const QString& path, const QString& name, const QString& value) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return false;
  QRegularExpression line(QStringLiteral("^\"?%1\"?=dword:%2\\s*$").arg(name, value),
                          QRegularExpression::MultilineOption);
  return line.match(QString::fromUtf8(file.readAll())).hasMatch();
}

TEST(Dialogs, AboutShowsTheReleaseLine) {
  GuiProgram program;
  QString title;
  QString release;
  bool warningShown = true;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    ModalHandler<AboutDialog> handler([&](AboutDialog& dialog) {
      title = dialog.windowTitle();
      if (auto* label = dialog.findChild<QLabel*>(QStringLiteral("releaseLine"))) release = label->text();
      warningShown = dialog.findChild<QLabel*>(QStringLiteral("automationWarning")) != nullptr;
      dialog.accept();
    });
    window.Action(cmd::kAbout)->trigger();
    EXPECT_TRUE(WaitUntil([&] { return handler.Handled(); }));
  });
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(title, QStringLiteral("About..."));
  EXPECT_EQ(release, QStringLiteral("Rel. 2.71.3089  (11.2008)"));
  EXPECT_FALSE(warningShown);
}

TEST(Dialogs, AboutInAutomationModeWarns) {
  testing::TestApplication();
  AboutDialog dialog(u"Rel. 2.71.3089  (11.2008)", true);
  auto* warning = dialog.findChild<QLabel*>(QStringLiteral("automationWarning"));
  ASSERT_NE(warning, nullptr);
  EXPECT_EQ(warning->text(), QStringLiteral("Warning: [ Automation Mode ]"));
}

TEST(Dialogs, ProgramOptionsPageShowsAndReturnsTheFourValues) {
  testing::TestApplication();
  ProgramOptionValues values;
  values.MULTIinst = 1;
  values.DisableIcon = 1;
  ProgramOptionsDialog dialog(values);
  EXPECT_EQ(dialog.IgnoreDefaultConfig()->text(), QStringLiteral("Ignore loading Default Config"));
  EXPECT_EQ(dialog.MultipleInstances()->text(), QStringLiteral("Allow running multiple instances"));
  EXPECT_EQ(dialog.HardwareButtons()->text(), QStringLiteral("Acquire hardware buttons"));
  EXPECT_EQ(dialog.DisableIcon()->text(), QStringLiteral("Disable icon on Start bar"));
  EXPECT_FALSE(dialog.IgnoreDefaultConfig()->isChecked());
  EXPECT_TRUE(dialog.MultipleInstances()->isChecked());
  EXPECT_FALSE(dialog.HardwareButtons()->isChecked());
  EXPECT_TRUE(dialog.DisableIcon()->isChecked());

  dialog.IgnoreDefaultConfig()->setChecked(true);
  dialog.DisableIcon()->setChecked(false);
  ProgramOptionValues chosen = dialog.Values();
  EXPECT_EQ(chosen.DEFAULTcfg, 1u);
  EXPECT_EQ(chosen.MULTIinst, 1u);
  EXPECT_EQ(chosen.AcquireHWbuttons, 0u);
  EXPECT_EQ(chosen.DisableIcon, 0u);

  bool noteShown = false;
  for (auto* label : dialog.findChildren<QLabel*>()) {
    noteShown = noteShown ||
                label->text() ==
                    QStringLiteral("* Wavetrace Pro needs to restart\n  for these features to take effect.");
  }
  EXPECT_TRUE(noteShown);
}

TEST(Dialogs, ProgramOptionsOkSavesAndCancelDoesNot) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    QString registryPath = program.Home().FilePath(QStringLiteral("registry.txt"));

    ModalHandler<ProgramOptionsDialog> cancel([](ProgramOptionsDialog& dialog) {
      dialog.MultipleInstances()->setChecked(true);
      dialog.reject();
    });
    window.Action(cmd::kProgramOptions)->trigger();
    ASSERT_TRUE(WaitUntil([&] { return cancel.Handled(); }));
    EXPECT_EQ(program.State().ProgramOptions.MULTIinst, 0u);
    EXPECT_TRUE(RegistryHolds(registryPath, QStringLiteral("MULTIinst"), QStringLiteral("00000000")));

    ModalHandler<ProgramOptionsDialog> ok([](ProgramOptionsDialog& dialog) {
      dialog.MultipleInstances()->setChecked(true);
      dialog.accept();
    });
    window.Action(cmd::kProgramOptions)->trigger();
    ASSERT_TRUE(WaitUntil([&] { return ok.Handled(); }));
    EXPECT_TRUE(
        WaitUntil([&] { return window.StatusLine()->text() == QStringLiteral("Program Options saved."); }));
    EXPECT_EQ(program.State().ProgramOptions.MULTIinst, 1u);
    EXPECT_TRUE(RegistryHolds(registryPath, QStringLiteral("MULTIinst"), QStringLiteral("00000001")));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(Dialogs, CopyTakesTheReceivedTextWithItsLineEnds) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    ReceiveView* receive = window.Receive();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible() && !receive->ModelText().empty(); }));
    program.State().Screen.RxClear();
    program.State().Screen.RxInsertAtCaret(u"first\r\nsecond\r\n");
    ASSERT_TRUE(WaitUntil([&] { return receive->ModelText() == u"first\r\nsecond\r\n"; }));

    receive->setFocus();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == receive; }));
    receive->selectAll();
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("first\r\nsecond\r\n"));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(Dialogs, PasteReplacesTheFieldUnlessTheFieldHasTheFocus) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    auto& screen = program.State().Screen;
    QLineEdit* edit = window.TransmitField()->lineEdit();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    QGuiApplication::clipboard()->setText(QStringLiteral("XYZ"));
    screen.SetTxText(u"old text");
    ASSERT_TRUE(WaitUntil([&] { return edit->text() == QStringLiteral("old text"); }));

    window.Receive()->setFocus();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == window.Receive(); }));
    window.Action(cmd::kPaste)->trigger();
    EXPECT_EQ(edit->text(), QStringLiteral("XYZ"));
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XYZ"; }));

    // With the focus in the field the text goes in at the caret.
    EXPECT_TRUE(window.TransmitField()->hasFocus());
    edit->setCursorPosition(1);
    window.Action(cmd::kPaste)->trigger();
    EXPECT_EQ(edit->text(), QStringLiteral("XXYZYZ"));
    EXPECT_TRUE(WaitUntil([&] { return screen.TxText() == u"XXYZYZ"; }));

    // Copy takes the field's selection while the field has the focus.
    edit->setSelection(1, 3);
    window.Action(cmd::kCopy)->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("XYZ"));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(Dialogs, ClipboardTextFromTheCore) {
  GuiProgram program;
  int copied = -1;
  int exitCode = program.Run([&] {
    ASSERT_TRUE(WaitUntil([&] { return program.View().Window().isVisible(); }));
    copied = core::CopyTextToClipboard(program.State(), u"copied by the core");
  });
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(copied, 1);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("copied by the core"));
}

}  // namespace
}  // namespace wavetrace::ui
