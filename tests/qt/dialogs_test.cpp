// The Program Options page, the relay pages and the Transmit Options sheet with
// the transmit field's file picker (the About screen: reference_screens_test).
#include <string>
#include <tuple>

#include "app/window_placement.h"
#include "config/program_options.h"
#include "core/code_page.h"
#include "tests/qt/gui_program.h"
#include "ui/program_options_dialog.h"
#include "ui/relay_dialogs.h"
#include "ui/transmit_options_dialog.h"
#include "ui/window_relay_dialog.h"

namespace wavetrace::ui {
namespace {

using namespace testing;

TEST(Dialogs, ProgramOptionsShowTheOptionsAndTheLayoutOkSavesThemAndCancelDoesNot) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    state.ProgramOptions.MULTIinst = 1;
    state.ProgramOptions.DisableIcon = 1;
    auto values = [](const core::ProgramOptionsKey& options) {
      return std::tuple(options.DEFAULTcfg, options.MULTIinst, options.AcquireHWbuttons, options.DisableIcon);
    };
    CancelThenOk<ProgramOptionsDialog>(
        window, core::cmd::kProgramOptions,
        [](ProgramOptionsDialog& dialog) {
          const std::tuple<QCheckBox*, const char*, bool> boxes[] = {
              {dialog.IgnoreDefaultConfig(), "Ignore loading Default Config", false},
              {dialog.MultipleInstances(), "Allow running multiple instances", true},
              {dialog.HardwareButtons(), "Acquire hardware buttons", false},
              {dialog.DisableIcon(), "Disable icon on Start bar", true}};
          for (const auto& [box, caption, checked] : boxes) {
            EXPECT_EQ(box->text(), caption);
            EXPECT_EQ(box->isChecked(), checked) << caption;
          }
          EXPECT_EQ(dialog.LayoutField()->currentText(), "Automatic");
          dialog.LayoutField()->setCurrentIndex(dialog.LayoutField()->findText("Desktop"));
          dialog.IgnoreDefaultConfig()->setChecked(true);
          dialog.DisableIcon()->setChecked(false);
        },
        [&](bool ok) {
          core::AppState saved;
          saved.RegistryFile = state.RegistryFile;
          ASSERT_EQ(config::LoadProgramOptions(saved), 0);
          EXPECT_EQ(values(state.ProgramOptions),
                    ok ? std::tuple(1u, 1u, 0u, 0u) : std::tuple(0u, 1u, 0u, 1u));
          EXPECT_EQ(values(saved.ProgramOptions),
                    ok ? std::tuple(1u, 1u, 0u, 0u) : std::tuple(0u, 0u, 0u, 0u));
          // The layout is kept in the window file and counts from the next start.
          EXPECT_EQ(app::LoadWindowPlacement(core::WideToUtf8(state.ConfigFolder)).Layout,
                    ok ? app::WindowLayout::kDesktop : app::WindowLayout::kAutomatic);
        });
    EXPECT_TRUE(WaitUntil([&] { return window.StatusLine()->text() == "Program Options saved."; }));
  });
}

TEST(Dialogs, RelayPagesClampWhatIsTypedFollowTheEnableBoxesAndCancelPutsTheSettingsBack) {
  TestApplication();
  unsetenv("DISPLAY");
  core::AppState state;
  state.Data.IP = {u"10", u"0", u"0", u"1"};
  state.Data.RelayTCP_RemotePort = 5000;
  const core::DataSettings before = state.Data;
  for (bool ok : {false, true}) {
    IpRelayDialog page(state);
    EXPECT_EQ(page.OctetField(0)->text(), "10");
    EXPECT_TRUE(page.TcpButton()->isChecked());
    for (auto [field, typed, clamped] :
         {std::tuple{page.OctetField(1), "300", "255"}, {page.PortField(), "70000", "65535"}}) {
      field->clear();
      QTest::keyClicks(field, typed);
      EXPECT_EQ(field->text(), clamped);
      EXPECT_EQ(field->cursorPosition(), field->text().size());
    }
    page.UdpButton()->click();
    EXPECT_EQ(state.Data.Relay_SocketType_UDP, 1) << "stored at once";
    ok ? page.accept() : page.reject();
    EXPECT_EQ(state.Data == before, !ok);
  }
  EXPECT_EQ(std::pair(state.Data.IP[1], state.Data.RelayTCP_RemotePort),
            std::pair(std::u16string(u"255"), 65535));

  // Each enable box governs its button; OK publishes the window relay's switch, Cancel puts both back.
  for (bool ok : {false, true}) {
    RelayPageDialog page(state);
    EXPECT_FALSE(page.TcpIpButton()->isEnabled() || page.WindowButton()->isEnabled());
    page.NetworkEnableBox()->click();
    page.WindowEnableBox()->click();
    EXPECT_EQ(state.Data.EnableTCPIPrelay, 1);
    EXPECT_TRUE(page.TcpIpButton()->isEnabled() && page.WindowButton()->isEnabled());
    ok ? page.accept() : page.reject();
    EXPECT_EQ(std::pair(state.Data.EnableTCPIPrelay, state.PublishedWindowRelay.Load()->WindowRelayEnabled),
              ok ? std::pair(1, 1) : std::pair(0, 0));
  }

  // Without a display the selector page says why its list is empty; Cancel puts "Show Class names" back.
  state.Data.ShowClassNames = 1;
  for (bool ok : {false, true}) {
    WindowRelayDialog page(state);
    EXPECT_TRUE(page.ClassNamesBox()->isChecked());
    EXPECT_EQ(page.List()->count(), 0);
    EXPECT_EQ(page.Reason()->text().toStdString(), platform::Desktop().Unavailable());
    EXPECT_EQ(page.VirtualKeyboardBox()->isEnabled(), relay::VirtualKeyboardOffered());
    page.ClassNamesBox()->click();
    EXPECT_EQ(state.Data.ShowClassNames, 0);
    ok ? page.accept() : page.reject();
    EXPECT_EQ(state.Data.ShowClassNames, ok ? 0 : 1);
  }

  // While RELAY is on, no relay control can be changed (both halves follow one rule).
  state.RelayActive = true;
  RelayPageDialog locked(state);
  EXPECT_FALSE(locked.NetworkEnableBox()->isEnabled() || locked.WindowButton()->isEnabled());
}

TEST(TransmitOptions, PagesShowTheSettingsAddAppendsWhileTheFieldHasRoomCancelKeepsOkStoresFilePickerFills) {
  QTemporaryDir folder;
  const QString first = folder.filePath("firmware image.bin");
  const QString second = folder.filePath("setup.txt");
  for (const QString& path : {first, second}) ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
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

    // The file picker, from the button beside the field or the Edit menu; cancelling leaves the field.
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
