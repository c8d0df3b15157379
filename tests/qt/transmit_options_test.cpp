// The Transmit Options sheet and the file picker of the transmit field,
// reached through the running program: what they show and what they leave
// in the settings and in the transmit field.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QToolButton>
#include <string>

#include "app/transmit_options.h"
#include "rx/postamble.h"
#include "tests/qt/gui_program.h"
#include "tests/qt/modal_handler.h"
#include "ui/main_window_widget.h"
#include "ui/transmit_options_dialog.h"

namespace wavetrace::ui {
namespace {

using testing::ClickCancel;
using testing::ClickOk;
using testing::GuiProgram;
using testing::ModalHandler;
using testing::WaitUntil;
namespace cmd = core::cmd;

bool RunSheet(MainWindowWidget& window, const std::function<void(TransmitOptionsDialog&)>& act) {
  return testing::RunDialog<TransmitOptionsDialog>(window, cmd::kTransmitOptions, act);
}

// Chooses the named key from the "Add..." menu, as a tap on it does.
bool ChooseKey(TransmitOptionsDialog& dialog, const QString& name) {
  QMenu* keys = dialog.AddKeyButton()->menu();
  if (!keys) return false;
  for (QAction* action : keys->actions()) {
    if (action->text() == name) {
      action->trigger();
      return true;
    }
  }
  return false;
}

void SetPostamble(TransmitOptionsDialog& dialog, const QString& text) {
  dialog.PostambleField()->selectAll();
  QTest::keyClick(dialog.PostambleField(), Qt::Key_Delete);
  QTest::keyClicks(dialog.PostambleField(), text);
}

void SetStartValues(core::AppState& state) {
  app::TransmitOptionValues values;
  values.TxRepeatNum = 5;
  values.TxRepeatDelay = 250;
  values.PostambleKeysTX = u"[0D]";
  values.TxClrRCVEtxt = 1;
  values.TxSendWholeFile = 0;
  app::ApplyTransmitOptions(state, values);
}

TEST(TransmitOptions, ShowsTheCurrentValuesAndOkStoresEveryValue) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    ASSERT_TRUE(window.Action(cmd::kTransmitOptions)->isEnabled());
    SetStartValues(state);

    QStringList tabs;
    int count = -1;
    int delay = -1;
    QString postamble;
    bool clearReceive = false;
    bool wholeFile = true;
    QString hint;
    int fontPixels = 0;
    QSize sheetSize;
    bool handled = RunSheet(window, [&](TransmitOptionsDialog& dialog) {
      auto* pages = dialog.findChild<QTabWidget*>();
      for (int i = 0; pages && i < pages->count(); ++i) tabs << pages->tabText(i);
      count = dialog.RepeatCountField()->value();
      delay = dialog.RepeatDelayField()->value();
      postamble = dialog.PostambleField()->text();
      clearReceive = dialog.ClearReceiveBox()->isChecked();
      wholeFile = dialog.WholeFileBox()->isChecked();
      if (auto* label = dialog.findChild<QLabel*>(QStringLiteral("wholeFileHint"))) hint = label->text();
      fontPixels = dialog.font().pixelSize();
      sheetSize = dialog.size();

      dialog.RepeatCountField()->setValue(0);
      dialog.RepeatDelayField()->setValue(1500);
      SetPostamble(dialog, QStringLiteral("[0D][0A]"));
      dialog.ClearReceiveBox()->setChecked(false);
      dialog.WholeFileBox()->setChecked(true);
      ClickOk(dialog);
    });
    ASSERT_TRUE(handled);

    EXPECT_EQ(tabs, QStringList({QStringLiteral("Repeat"), QStringLiteral("Filters")}));
    EXPECT_EQ(count, 5);
    EXPECT_EQ(delay, 250);
    EXPECT_EQ(postamble, QStringLiteral("[0D]"));
    EXPECT_TRUE(clearReceive);
    EXPECT_FALSE(wholeFile);
    EXPECT_TRUE(hint.contains(QStringLiteral("loses its tail"))) << hint.toStdString();
    EXPECT_EQ(fontPixels, window.font().pixelSize());
    EXPECT_LE(sheetSize.width(), window.width());
    EXPECT_LE(sheetSize.height(), window.height());

    const core::DataSettings& data = state.Data;
    EXPECT_EQ(data.TxRepeatNum, 0u);
    EXPECT_EQ(data.TxRepeatDelay, 1500u);
    EXPECT_EQ(data.wcszPostambleKeysTX, u"[0D][0A]");
    EXPECT_EQ(data.PostambleLengthTX, 2);
    EXPECT_EQ(data.PostambleBytesTX[0], 0x0D);
    EXPECT_EQ(data.PostambleBytesTX[1], 0x0A);
    EXPECT_EQ(data.TxClrRCVEtxt, 0);
    EXPECT_EQ(data.TxSendWholeFile, 1);

    // The next opening shows what was stored.
    int countAgain = -1;
    QString postambleAgain;
    bool wholeFileAgain = false;
    ASSERT_TRUE(RunSheet(window, [&](TransmitOptionsDialog& dialog) {
      countAgain = dialog.RepeatCountField()->value();
      postambleAgain = dialog.PostambleField()->text();
      wholeFileAgain = dialog.WholeFileBox()->isChecked();
      ClickCancel(dialog);
    }));
    EXPECT_EQ(countAgain, 0);
    EXPECT_EQ(postambleAgain, QStringLiteral("[0D][0A]"));
    EXPECT_TRUE(wholeFileAgain);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(TransmitOptions, CancelStoresNothing) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetStartValues(state);
    const core::DataSettings before = state.Data;

    ASSERT_TRUE(RunSheet(window, [](TransmitOptionsDialog& dialog) {
      dialog.RepeatCountField()->setValue(9);
      dialog.RepeatDelayField()->setValue(40);
      SetPostamble(dialog, QStringLiteral("[1B]"));
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("Tab")));
      dialog.ClearReceiveBox()->setChecked(false);
      dialog.WholeFileBox()->setChecked(true);
      ClickCancel(dialog);
    }));
    const core::DataSettings& data = state.Data;
    EXPECT_EQ(data.TxRepeatNum, before.TxRepeatNum);
    EXPECT_EQ(data.TxRepeatDelay, before.TxRepeatDelay);
    EXPECT_EQ(data.wcszPostambleKeysTX, before.wcszPostambleKeysTX);
    EXPECT_EQ(data.PostambleLengthTX, before.PostambleLengthTX);
    EXPECT_EQ(data.PostambleBytesTX, before.PostambleBytesTX);
    EXPECT_EQ(data.TxClrRCVEtxt, before.TxClrRCVEtxt);
    EXPECT_EQ(data.TxSendWholeFile, before.TxSendWholeFile);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(TransmitOptions, AddAppendsANamedKeyWhileTheFieldHasRoom) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetStartValues(state);

    QStringList listed;
    QString afterLineFeed;
    QString full;
    QString afterRefused;
    ASSERT_TRUE(RunSheet(window, [&](TransmitOptionsDialog& dialog) {
      for (QAction* action : dialog.AddKeyButton()->menu()->actions()) listed << action->text();
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("LineFeed")));
      afterLineFeed = dialog.PostambleField()->text();
      // 12 characters and a 4-character key make the 16 the field takes...
      SetPostamble(dialog, QStringLiteral("[0D][0A][09]"));
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("Esc")));
      full = dialog.PostambleField()->text();
      // ...and then not even one more character fits.
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("Comma")));
      afterRefused = dialog.PostambleField()->text();
      SetPostamble(dialog, QString());
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("Enter")));
      ASSERT_TRUE(ChooseKey(dialog, QStringLiteral("Comma")));
      ClickOk(dialog);
    }));

    QStringList names;
    for (const rx::PostambleKey& key : rx::PostambleKeys()) {
      names << QString::fromStdU16String(std::u16string(key.Name));
    }
    EXPECT_EQ(listed, names);
    EXPECT_EQ(afterLineFeed, QStringLiteral("[0D][0A]"));
    EXPECT_EQ(full, QStringLiteral("[0D][0A][09][1B]"));
    EXPECT_EQ(afterRefused, full);
    EXPECT_EQ(state.Data.wcszPostambleKeysTX, u"[0D],");
    EXPECT_EQ(state.Data.PostambleLengthTX, 2);
  });
  EXPECT_EQ(exitCode, 0);
}

// Chooses path in the file dialog that opens next; an empty path cancels it.
class FilePicker {
 public:
  explicit FilePicker(const QString& path)
      : handler_([this, path](QFileDialog& dialog) {
          fontPixels_ = dialog.font().pixelSize();
          size_ = dialog.size();
          if (path.isEmpty()) {
            dialog.reject();
            return;
          }
          // Typed as a user does: selectFile() depends on how far the
          // dialog's folder listing has loaded.
          auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
          if (!name) {
            ADD_FAILURE() << "the file dialog has no file name field";
            dialog.reject();
            return;
          }
          name->setText(path);
          // The file dialog's own accept, which checks the file exists.
          static_cast<QDialog&>(dialog).accept();
        }) {}

  [[nodiscard]] bool Handled() const { return handler_.Handled(); }
  [[nodiscard]] int FontPixels() const { return fontPixels_; }
  [[nodiscard]] QSize Size() const { return size_; }

 private:
  ModalHandler<QFileDialog> handler_;
  int fontPixels_ = 0;
  QSize size_;
};

TEST(TransmitOptions, FilePickerPutsTheFileIntoTheTransmitField) {
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  const QString first = folder.filePath(QStringLiteral("firmware image.bin"));
  const QString second = folder.filePath(QStringLiteral("setup.txt"));
  for (const QString& path : {first, second}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("0123456789");
  }

  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    auto& screen = program.State().Screen;
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    QComboBox* field = window.TransmitField();
    ASSERT_NE(window.SendFileButton(), nullptr);
    ASSERT_NE(window.SendFileAction(), nullptr);

    // The button beside the field.
    {
      FilePicker picker(first);
      window.SendFileButton()->click();
      EXPECT_TRUE(picker.Handled());
      EXPECT_EQ(picker.FontPixels(), window.font().pixelSize());
      EXPECT_LE(picker.Size().width(), window.width());
      EXPECT_LE(picker.Size().height(), window.height());
    }
    const std::u16string firstField = u"[File::" + first.toStdU16String() + u"]";
    EXPECT_EQ(screen.TxText(), firstField);
    EXPECT_TRUE(WaitUntil([&] { return field->currentText().toStdU16String() == firstField; }));

    // Cancelling leaves the field as it is.
    {
      FilePicker picker{QString()};
      window.SendFileAction()->trigger();
      EXPECT_TRUE(picker.Handled());
    }
    EXPECT_EQ(screen.TxText(), firstField);

    // The Edit menu's item does the same as the button.
    {
      FilePicker picker(second);
      window.SendFileAction()->trigger();
      EXPECT_TRUE(picker.Handled());
    }
    const std::u16string secondField = u"[File::" + second.toStdU16String() + u"]";
    EXPECT_EQ(screen.TxText(), secondField);
    EXPECT_TRUE(WaitUntil([&] { return field->currentText().toStdU16String() == secondField; }));

    // While the field is locked there is no file to choose either.
    screen.SetTxEnabled(false);
    EXPECT_TRUE(WaitUntil(
        [&] { return !window.SendFileButton()->isEnabled() && !window.SendFileAction()->isEnabled(); }));
    screen.SetTxEnabled(true);
    EXPECT_TRUE(WaitUntil(
        [&] { return window.SendFileButton()->isEnabled() && window.SendFileAction()->isEnabled(); }));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(TransmitOptions, RepeatButtonShowsThePressedStateOfTheModel) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    auto& screen = program.State().Screen;
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    QPushButton* repeat = window.Button(cmd::kRepeat);
    ASSERT_NE(repeat, nullptr);
    EXPECT_FALSE(repeat->isChecked());
    screen.SetButtonPressed(cmd::kRepeat, true);
    EXPECT_TRUE(WaitUntil([&] { return repeat->isChecked(); }));
    screen.SetButtonPressed(cmd::kRepeat, false);
    EXPECT_TRUE(WaitUntil([&] { return !repeat->isChecked(); }));
  });
  EXPECT_EQ(exitCode, 0);
}

}  // namespace
}  // namespace wavetrace::ui
