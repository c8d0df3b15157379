// The About screen, the Program Options page and the relay pages.
#include <tuple>

#include "config/program_options.h"
#include "tests/qt/gui_program.h"
#include "ui/about_dialog.h"
#include "ui/program_options_dialog.h"
#include "ui/relay_dialogs.h"
#include "ui/window_relay_dialog.h"

namespace wavetrace::ui {
namespace {

using namespace testing;

TEST(Dialogs, AboutShowsTheReleaseLineAndTheAutomationWarning) {
  TestApplication();
  for (bool automation : {false, true}) {
    AboutDialog dialog(u"Rel. 2.71.3089  (11.2008)", automation);
    auto* release = dialog.findChild<QLabel*>("releaseLine");
    ASSERT_NE(release, nullptr);
    EXPECT_EQ(release->text(), "Rel. 2.71.3089  (11.2008)");
    auto* warning = dialog.findChild<QLabel*>("automationWarning");
    EXPECT_EQ(warning ? warning->text() : "none", automation ? "Warning: [ Automation Mode ]" : "none");
  }
}

TEST(Dialogs, ProgramOptionsPageShowsAndReturnsTheFourValues) {
  TestApplication();
  ProgramOptionsDialog dialog({.MULTIinst = 1, .DisableIcon = 1, .Layout = app::WindowLayout::kDesktop});
  EXPECT_EQ(dialog.LayoutField()->currentText(), "Desktop");
  dialog.LayoutField()->setCurrentIndex(1);
  const std::tuple<QCheckBox*, const char*, bool> boxes[] = {
      {dialog.IgnoreDefaultConfig(), "Ignore loading Default Config", false},
      {dialog.MultipleInstances(), "Allow running multiple instances", true},
      {dialog.HardwareButtons(), "Acquire hardware buttons", false},
      {dialog.DisableIcon(), "Disable icon on Start bar", true}};
  for (const auto& [box, caption, checked] : boxes) {
    EXPECT_EQ(box->text(), caption);
    EXPECT_EQ(box->isChecked(), checked) << caption;
  }
  dialog.IgnoreDefaultConfig()->setChecked(true);
  dialog.DisableIcon()->setChecked(false);
  ProgramOptionValues chosen = dialog.Values();
  EXPECT_EQ(std::tuple(chosen.DEFAULTcfg, chosen.MULTIinst, chosen.AcquireHWbuttons, chosen.DisableIcon),
            std::tuple(1u, 1u, 0u, 0u));
  EXPECT_EQ(chosen.Layout, app::WindowLayout::kCompact);
}

TEST(Dialogs, ProgramOptionsThroughTheMenuOkSavesAndCancelDoesNot) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    CancelThenOk<ProgramOptionsDialog>(
        window, core::cmd::kProgramOptions,
        [](ProgramOptionsDialog& dialog) { dialog.MultipleInstances()->setChecked(true); },
        [&](bool ok) {
          core::AppState saved;
          saved.RegistryFile = state.RegistryFile;
          ASSERT_EQ(config::LoadProgramOptions(saved), 0);
          EXPECT_EQ(state.ProgramOptions.MULTIinst + saved.ProgramOptions.MULTIinst, ok ? 2u : 0u);
        });
    EXPECT_TRUE(WaitUntil([&] { return window.StatusLine()->text() == "Program Options saved."; }));
  });
}

TEST(Dialogs, RelayPagesClampWhatIsTypedFollowTheEnableBoxAndCancelPutsTheSettingsBack) {
  TestApplication();
  core::AppState state;
  state.Data.IP = {u"10", u"0", u"0", u"1"};
  state.Data.RelayTCP_RemotePort = 5000;
  const core::DataSettings before = state.Data;
  {
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
    EXPECT_EQ(state.Data.Relay_SocketType_UDP, 1);
    page.accept();
    EXPECT_EQ(state.Data.IP[1], u"255");
    EXPECT_EQ(state.Data.RelayTCP_RemotePort, 65535);
  }
  state.Data = before;
  {
    IpRelayDialog page(state);
    page.UdpButton()->click();
    page.OctetField(3)->setText("9");
    page.reject();
    EXPECT_TRUE(state.Data == before);
  }

  // The enable box governs the tcp/ip button, unless the relay is on.
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
  EXPECT_FALSE(locked.WindowEnableBox()->isEnabled());
  EXPECT_FALSE(locked.WindowButton()->isEnabled());
}

TEST(Dialogs, WindowRelayPagesFollowTheEnableBoxSayWhyTheListIsEmptyAndCancelPutsBack) {
  TestApplication();
  unsetenv("DISPLAY");
  core::AppState state;
  {
    RelayPageDialog page(state);
    EXPECT_FALSE(page.WindowButton()->isEnabled());
    page.WindowEnableBox()->click();
    EXPECT_TRUE(page.WindowButton()->isEnabled());
    page.accept();
    EXPECT_EQ(state.PublishedWindowRelay.Load()->WindowRelayEnabled, 1);
  }
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
}

}  // namespace
}  // namespace wavetrace::ui
