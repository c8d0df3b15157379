// What the window's front end leaves to the model: the layout and the
// remembered frame, PLAY before any port is chosen, the port list's
// preselection and where data begins after the welcome text.
#include <gtest/gtest.h>

#include "app/comm_properties.h"
#include "app/command_line.h"
#include "app/main_window.h"
#include "app/startup.h"
#include "app/window_placement.h"
#include "core/messages.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using L = WindowLayout;

TEST(WindowLayout, ByScreenSizeUnlessTheCommandLineOrTheStoredChoiceSaysAndTheFrameComesBackWhereItFits) {
  for (auto [width, height, stored, commandLine, expected] :
       {std::tuple{800, 480, L::kAutomatic, L::kAutomatic, L::kCompact},
        {0, 0, L::kAutomatic, L::kAutomatic, L::kCompact},
        {800, 600, L::kAutomatic, L::kAutomatic, L::kDesktop},
        {1280, 1024, L::kCompact, L::kAutomatic, L::kCompact},
        {320, 240, L::kCompact, L::kDesktop, L::kDesktop}}) {
    EXPECT_EQ(ChooseLayout(width, height, stored, commandLine), expected) << width << "x" << height;
  }
  EXPECT_EQ(ParseCommandLine({"--layout", "desktop"}).Switches.Layout, static_cast<int32_t>(L::kDesktop));
  EXPECT_EQ(ParseCommandLine({"--layout=big"}).Error, "--layout takes compact or desktop, not 'big'");

  testing::TempFolder folder;
  ASSERT_TRUE(SaveWindowPlacement(folder.Path(), {L::kCompact, L::kDesktop, {-20, 30, 3000, 700}}));
  const WindowPlacement kept = LoadWindowPlacement(folder.Path());
  EXPECT_EQ(kept.Layout, L::kCompact);
  const WindowFrame screen{0, 0, 1280, 1024};
  EXPECT_EQ(RestoredFrame(kept, L::kDesktop, screen), (WindowFrame{-20, 30, 1280, 700}));
  EXPECT_EQ(RestoredFrame(kept, L::kCompact, screen), std::nullopt);
  EXPECT_EQ(RestoredFrame({L::kAutomatic, L::kDesktop, {1250, 100, 600, 400}}, L::kDesktop, screen),
            std::nullopt);
}

// A window whose communication properties choose answer (empty: cancelled).
struct PagesFrontEnd : testing::RecordingFrontEnd {
  [[nodiscard]] bool HasOptionPages() const override { return hasPages; }
  void ShowCommProperties() override {
    statusWhileShown = state.Screen.Status();
    state.Port.SelectedPort = answer;
  }
  core::AppState state;
  bool hasPages = true;
  std::u16string answer, statusWhileShown;
};

TEST(FirstRun, PlayWithoutAPortAsksForOneTheOnlyPortListedIsPreselectedAndDataBeginsOnANewLine) {
  PagesFrontEnd view;
  core::AppState& state = view.state;
  state.View = &view;
  auto play = [&](int64_t source = 0) {
    MainWindowProc(state, core::MakeMessage(core::kWmCommand, core::cmd::kPlay, source));
  };
  const std::u16string failed = u"Error! Selected port failed to open. Check settings.";
  play();  // cancelled: nothing opens, the request stays on the status line
  EXPECT_EQ(view.statusWhileShown + state.Screen.Status(), std::u16string(kChoosePortText) + kChoosePortText);
  EXPECT_FALSE(state.PlayFlag);
  view.answer = u"/nonexistent/ttyUSB9";
  play();
  EXPECT_EQ(state.Screen.Status().rfind(failed, 0), 0u);
  // Without pages to show (headless) or from the command line: the error as always.
  view.answer.clear();
  for (bool headless : {true, false}) {
    state.Port.SelectedPort.clear();
    view.hasPages = !headless;
    play(headless ? 0 : core::kFromCommandLine);
    EXPECT_EQ(state.Screen.Status().rfind(failed, 0), 0u) << headless;
  }

  // The only port listed is preselected.
  core::PortSettings port;
  std::array<std::string, core::kPortSlots> paths{};
  port.PortPresent[10] = 1;  // the simulated device
  EXPECT_EQ(PreselectedSlot(port, paths), 10);
  paths[3] = "/dev/ttyUSB0";
  EXPECT_EQ(PreselectedSlot(port, paths), -1);

  // Data begins on a new line after the welcome text.
  state.FirstPaintState = 2;
  OnFirstPaint(state);
  const std::u16string welcome = state.Screen.RxText();
  BeginDataOnNewLine(state);
  BeginDataOnNewLine(state);  // a second opening adds nothing
  EXPECT_EQ(state.Screen.RxText(), welcome + u"\r\n");
}

}  // namespace
}  // namespace wavetrace::app
