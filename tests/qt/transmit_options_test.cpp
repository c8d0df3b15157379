// The Transmit Options sheet with its Configure Button page, and the file
// picker of the transmit field.
#include <tuple>

#include "tests/qt/gui_program.h"
#include "ui/transmit_options_dialog.h"

namespace wavetrace::ui {
namespace {

using namespace testing;

TEST(TransmitOptions, PagesShowTheSettingsAddAppendsWhileTheFieldHasRoomCancelKeepsAndOkStores) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    auto& data = state.Data;
    data.TxRepeatNum = 5;
    data.TxRepeatDelay = 250;
    data.wcszPostambleKeysTX = u"[0D]";
    data.TxClrRCVEtxt = 1;
    data.HardwareButtonData[0] = u"ATZ";
    data.SoftwareButtonData[0] = u"AT+GMR";
    data.SoftwareButtonCaption = {u"Reset", u"Version"};
    const core::DataSettings before = data;
    state.Screen.SetTxHistory({u"AT&V"});
    const QString choices =
        state.Screen.IsMenuItemGrey(core::cmd::kScreenOff) ? "AT&V {PLAY}" : "AT&V {SCREEN_OFF} {PLAY}";
    auto shown = [](TransmitOptionsDialog& dialog) {
      return QStringList({dialog.HardwareButtonChoice()->isChecked() ? "hardware" : "software",
                          dialog.ButtonCounter()->text(), dialog.ButtonStringField()->currentText(),
                          dialog.ButtonCaptionField()->text(),
                          dialog.ButtonCaptionField()->isEnabled() ? "editable" : "grey"});
    };
    CancelThenOk<TransmitOptionsDialog>(
        window, core::cmd::kTransmitOptions,
        [&](TransmitOptionsDialog& dialog) {
          EXPECT_EQ(std::tuple(dialog.RepeatCountField()->value(), dialog.RepeatDelayField()->value(),
                               dialog.PostambleField()->text(), dialog.ClearReceiveBox()->isChecked(),
                               dialog.WholeFileBox()->isChecked()),
                    std::tuple(5, 250, "[0D]", true, false));
          dialog.RepeatCountField()->setValue(0);
          dialog.RepeatDelayField()->setValue(1500);
          dialog.ClearReceiveBox()->setChecked(false);
          dialog.WholeFileBox()->setChecked(true);
          // "Add..." offers the keys by name. 12 characters and a 4-character key make the 16 the
          // field takes; then not even one more character fits.
          for (const char* name : {"LineFeed", "Tab", "Esc", "Comma"}) {
            for (QAction* key : dialog.AddKeyButton()->menu()->actions())
              if (key->text() == name) key->trigger();
          }
          EXPECT_EQ(dialog.PostambleField()->text(), "[0D][0A][09][1B]");

          // The Configure Button page opens on hardware button 1 and writes each button.
          QComboBox* string = dialog.ButtonStringField();
          EXPECT_EQ(shown(dialog), QStringList({"hardware", " 1 / 4", "ATZ", "Reset", "grey"}));
          QStringList listed;
          for (int i = 0; i < string->count(); ++i) listed << string->itemText(i);
          EXPECT_EQ(listed.join(' '), choices + " {STOP} {CLEAR_RECEIVE_WINDOW} {EXIT_PROGRAM}");
          string->setCurrentIndex(string->findText(QStringLiteral("{PLAY}")));  // hardware 1
          dialog.SoftwareButtonChoice()->setChecked(true);
          dialog.ButtonNumberField()->setValue(2);
          EXPECT_EQ(shown(dialog), QStringList({"software", " 2 / 6", "", "Version", "editable"}));
          string->setEditText(QStringLiteral("AT+CSQ"));
          dialog.ButtonCaptionField()->setText(QStringLiteral("Signal"));
        },
        [&](bool ok) {
          EXPECT_EQ(data == before, !ok);
          if (!ok) return;
          EXPECT_EQ(std::tuple(data.TxRepeatNum, data.TxRepeatDelay, data.PostambleLengthTX,
                               data.TxClrRCVEtxt, data.TxSendWholeFile),
                    std::tuple(0u, 1500u, 4, 0, 1));
          // Each button kept its own string and caption.
          EXPECT_EQ(std::tuple(data.HardwareButtonData[0], data.SoftwareButtonData[0],
                               data.SoftwareButtonCaption[0], data.SoftwareButtonData[1],
                               data.SoftwareButtonCaption[1]),
                    std::tuple(u"{PLAY}", u"AT+GMR", u"Reset", u"AT+CSQ", u"Signal"));
        });
  });
}

TEST(TransmitOptions, FilePickerPutsTheFileIntoTheTransmitField) {
  QTemporaryDir folder;
  const QString first = folder.filePath("firmware image.bin");
  const QString second = folder.filePath("setup.txt");
  for (const QString& path : {first, second}) ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    // The button beside the field and the Edit menu's item; cancelling leaves the field as it is.
    for (auto [path, expected, button] :
         {std::tuple{first, first, true}, {QString(), first, false}, {second, second, false}}) {
      ModalHandler<QFileDialog> picker([&, path = path](QFileDialog& dialog) {
        ExpectFitsTheWindow(dialog, window);
        // Typed as a user does: selectFile() depends on how far the folder listing has loaded.
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        if (path.isEmpty() || !name) return dialog.reject();
        name->setText(path);
        static_cast<QDialog&>(dialog).accept();  // the file dialog's own, which checks the file exists
      });
      button ? window.SendFileButton()->click() : window.SendFileAction()->trigger();
      EXPECT_TRUE(picker.handled);
      const std::u16string field = u"[File::" + expected.toStdU16String() + u"]";
      EXPECT_EQ(state.Screen.TxText(), field);
      EXPECT_TRUE(WaitUntil([&] { return window.TransmitField()->currentText().toStdU16String() == field; }));
    }
    // The model locks the field, and then there is no file to choose either.
    for (bool enabled : {false, true}) {
      state.Screen.SetTxEnabled(enabled);
      EXPECT_TRUE(WaitUntil([&] {
        return window.TransmitField()->isEnabled() == enabled &&
               window.SendFileButton()->isEnabled() == enabled &&
               window.SendFileAction()->isEnabled() == enabled;
      }));
    }
  });
}

}  // namespace
}  // namespace wavetrace::ui
