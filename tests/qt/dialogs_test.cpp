// The About screen and the Program Options page.
#include <QCheckBox>
#include <QLabel>

#include "config/program_options.h"
#include "tests/qt/gui_program.h"
#include "ui/about_dialog.h"
#include "ui/program_options_dialog.h"

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

}  // namespace
}  // namespace wavetrace::ui
