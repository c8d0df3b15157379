// The About screen, the Program Options page and the relay pages.
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "config/program_options.h"
#include "tests/qt/gui_program.h"
#include "ui/about_dialog.h"
#include "ui/program_options_dialog.h"
#include "ui/relay_dialogs.h"

namespace wavetrace::ui {
namespace {

using testing::WaitUntil;

TEST(Dialogs, AboutShowsTheReleaseLineAndTheAutomationWarning) {
  testing::TestApplication();
  for (bool automation : {false, true}) {
    AboutDialog dialog(u"Rel. 2.71.3089  (11.2008)", automation);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("About..."));
    auto* release = dialog.findChild<QLabel*>(QStringLiteral("releaseLine"));
    ASSERT_NE(release, nullptr);
    EXPECT_EQ(release->text(), QStringLiteral("Rel. 2.71.3089  (11.2008)"));
    auto* warning = dialog.findChild<QLabel*>(QStringLiteral("automationWarning"));
    ASSERT_EQ(warning != nullptr, automation);
    if (warning) {
      EXPECT_EQ(warning->text(), QStringLiteral("Warning: [ Automation Mode ]"));
    }
  }
}

TEST(Dialogs, ProgramOptionsPageShowsAndReturnsTheFourValues) {
  testing::TestApplication();
  ProgramOptionValues values;
  values.MULTIinst = 1;
  values.DisableIcon = 1;
  ProgramOptionsDialog dialog(values);
  const struct {
    QCheckBox* box;
    const char* caption;
    bool checked;
  } boxes[] = {{dialog.IgnoreDefaultConfig(), "Ignore loading Default Config", false},
               {dialog.MultipleInstances(), "Allow running multiple instances", true},
               {dialog.HardwareButtons(), "Acquire hardware buttons", false},
               {dialog.DisableIcon(), "Disable icon on Start bar", true}};
  for (const auto& b : boxes) {
    EXPECT_EQ(b.box->text(), QString::fromLatin1(b.caption));
    EXPECT_EQ(b.box->isChecked(), b.checked) << b.caption;
  }
  dialog.IgnoreDefaultConfig()->setChecked(true);
  dialog.DisableIcon()->setChecked(false);
  ProgramOptionValues chosen = dialog.Values();
  EXPECT_EQ(chosen.DEFAULTcfg, 1u);
  EXPECT_EQ(chosen.MULTIinst, 1u);
  EXPECT_EQ(chosen.AcquireHWbuttons, 0u);
  EXPECT_EQ(chosen.DisableIcon, 0u);

  bool noteShown = false;
  for (auto* label : dialog.findChildren<QLabel*>()) {
    noteShown |= label->text() ==
                 QStringLiteral("* Wavetrace Pro needs to restart\n  for these features to take effect.");
  }
  EXPECT_TRUE(noteShown);
}

TEST(Dialogs, ProgramOptionsThroughTheMenuOkSavesAndCancelDoesNot) {
  testing::GuiProgram program;
  EXPECT_EQ(program.RunShown([&](MainWindowWidget& window, core::AppState& state) {
    testing::CancelThenOk<ProgramOptionsDialog>(
        window, core::cmd::kProgramOptions,
        [](ProgramOptionsDialog& dialog) { dialog.MultipleInstances()->setChecked(true); },
        [&](bool ok) {
          core::AppState saved;
          saved.RegistryFile = state.RegistryFile;
          ASSERT_EQ(config::LoadProgramOptions(saved), 0);
          EXPECT_EQ(state.ProgramOptions.MULTIinst + saved.ProgramOptions.MULTIinst, ok ? 2u : 0u);
        });
    EXPECT_TRUE(
        WaitUntil([&] { return window.StatusLine()->text() == QStringLiteral("Program Options saved."); }));
  }),
            0);
}

TEST(Dialogs, IpRelayPageClampsWhatIsTypedAndCancelPutsTheSettingsBack) {
  testing::TestApplication();
  core::AppState state;
  state.Data.IP = {u"10", u"0", u"0", u"1"};
  state.Data.RelayTCP_RemotePort = 5000;
  const core::DataSettings before = state.Data;
  {
    IpRelayDialog page(state);
    EXPECT_EQ(page.OctetField(0)->text(), QStringLiteral("10"));
    EXPECT_TRUE(page.TcpButton()->isChecked());
    page.OctetField(1)->clear();
    QTest::keyClicks(page.OctetField(1), QStringLiteral("300"));
    EXPECT_EQ(page.OctetField(1)->text(), QStringLiteral("255"));
    EXPECT_EQ(page.OctetField(1)->cursorPosition(), 3);
    page.PortField()->clear();
    QTest::keyClicks(page.PortField(), QStringLiteral("70000"));
    EXPECT_EQ(page.PortField()->text(), QStringLiteral("65535"));
    page.UdpButton()->click();
    EXPECT_EQ(state.Data.Relay_SocketType_UDP, 1);
    page.accept();
    EXPECT_EQ(state.Data.IP[1], u"255");
    EXPECT_EQ(state.Data.RelayTCP_RemotePort, 65535);
  }
  state.Data = before;
  IpRelayDialog page(state);
  page.UdpButton()->click();
  page.OctetField(3)->setText(QStringLiteral("9"));
  page.reject();
  EXPECT_TRUE(state.Data == before);
}

TEST(Dialogs, RelayPageEnableBoxGovernsTheTcpIpButtonUnlessRelayIsOn) {
  testing::TestApplication();
  core::AppState state;
  RelayPageDialog page(state);
  EXPECT_FALSE(page.TcpIpButton()->isEnabled());
  page.NetworkEnableBox()->click();
  EXPECT_EQ(state.Data.EnableTCPIPrelay, 1);
  EXPECT_TRUE(page.TcpIpButton()->isEnabled());
  page.reject();
  EXPECT_EQ(state.Data.EnableTCPIPrelay, 0);
  state.RelayActive = true;
  state.Data.EnableTCPIPrelay = 1;
  RelayPageDialog locked(state);
  EXPECT_FALSE(locked.NetworkEnableBox()->isEnabled());
  EXPECT_FALSE(locked.TcpIpButton()->isEnabled());
}

}  // namespace
}  // namespace wavetrace::ui
