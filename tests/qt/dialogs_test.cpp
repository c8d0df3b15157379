// The Program Options page and the relay pages (the About screen: reference_screens_test).
#include <string>
#include <tuple>

#include "app/window_placement.h"
#include "config/program_options.h"
#include "core/code_page.h"
#include "tests/qt/gui_program.h"
#include "ui/program_options_dialog.h"
#include "ui/relay_dialogs.h"
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

  // While RELAY is on, no relay control can be changed.
  state.RelayActive = true;
  RelayPageDialog locked(state);
  EXPECT_FALSE(locked.NetworkEnableBox()->isEnabled() || locked.TcpIpButton()->isEnabled() ||
               locked.WindowEnableBox()->isEnabled() || locked.WindowButton()->isEnabled());
}

}  // namespace
}  // namespace wavetrace::ui
