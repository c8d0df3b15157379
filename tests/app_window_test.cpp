// What the window's front end is given to decide by the model: the layout
// and the remembered frame, PLAY before any port is chosen, the port list's
// preselection and where data begins after the welcome text.
#include <gtest/gtest.h>

#include <fstream>

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

TEST(WindowLayout, ByScreenSizeUnlessTheCommandLineOrTheStoredChoiceSays) {
  struct Case {
    int width, height;
    L stored, commandLine, expected;
  };
  for (const auto& c : {Case{320, 240, L::kAutomatic, L::kAutomatic, L::kCompact},
                        Case{480, 800, L::kAutomatic, L::kAutomatic, L::kCompact},
                        Case{800, 480, L::kAutomatic, L::kAutomatic, L::kCompact},
                        Case{0, 0, L::kAutomatic, L::kAutomatic, L::kCompact},
                        Case{800, 600, L::kAutomatic, L::kAutomatic, L::kDesktop},
                        Case{480, 854, L::kAutomatic, L::kAutomatic, L::kDesktop},
                        Case{1280, 1024, L::kCompact, L::kAutomatic, L::kCompact},
                        Case{320, 240, L::kDesktop, L::kAutomatic, L::kDesktop},
                        Case{320, 240, L::kCompact, L::kDesktop, L::kDesktop},
                        Case{1920, 1080, L::kDesktop, L::kCompact, L::kCompact}}) {
    EXPECT_EQ(ChooseLayout(c.width, c.height, c.stored, c.commandLine), c.expected)
        << c.width << "x" << c.height << " " << static_cast<int>(c.stored) << static_cast<int>(c.commandLine);
  }
  EXPECT_EQ(ParseCommandLine({"--layout", "desktop"}).Switches.Layout, static_cast<int32_t>(L::kDesktop));
  EXPECT_EQ(ParseCommandLine({"--layout=compact"}).Switches.Layout, static_cast<int32_t>(L::kCompact));
  EXPECT_EQ(ParseCommandLine({"--layout", "big"}).Error, "--layout takes compact or desktop, not 'big'");
}

TEST(WindowLayout, TheFrameIsKeptInTheWindowFileAndComesBackOnlyWhereItFits) {
  testing::TempFolder folder;
  EXPECT_EQ(LoadWindowPlacement(folder.Path()).FrameLayout, L::kAutomatic);
  const WindowPlacement saved{L::kCompact, L::kDesktop, {-20, 30, 900, 700}};
  ASSERT_TRUE(SaveWindowPlacement(folder.Path(), saved));
  const WindowPlacement loaded = LoadWindowPlacement(folder.Path());
  EXPECT_EQ(std::tuple(loaded.Layout, loaded.FrameLayout, loaded.Frame),
            std::tuple(saved.Layout, saved.FrameLayout, saved.Frame));
  // Not in the configuration folder's other files.
  EXPECT_FALSE(std::ifstream(folder.Path() + "/Default.cfg.txt").good());

  const WindowFrame screen{0, 0, 1280, 1024};
  struct Case {
    L layout;
    WindowFrame frame;
    std::optional<WindowFrame> restored;
  };
  for (const auto& c : {Case{L::kDesktop, {-20, 30, 900, 700}, WindowFrame{-20, 30, 900, 700}},
                        Case{L::kCompact, {-20, 30, 900, 700}, std::nullopt},
                        Case{L::kDesktop, {100, 100, 3000, 2000}, WindowFrame{100, 100, 1280, 1024}},
                        Case{L::kDesktop, {1250, 100, 600, 400}, std::nullopt},
                        Case{L::kDesktop, {100, -10, 600, 400}, std::nullopt},
                        Case{L::kDesktop, {100, 100, 50, 400}, std::nullopt}}) {
    EXPECT_EQ(RestoredFrame({L::kAutomatic, L::kDesktop, c.frame}, c.layout, screen), c.restored)
        << c.frame.X << "," << c.frame.Y << " " << c.frame.Width << "x" << c.frame.Height;
  }
}

// A window whose communication properties choose answer (empty: cancelled).
class PagesFrontEnd : public testing::RecordingFrontEnd {
 public:
  explicit PagesFrontEnd(core::AppState& state) : state_(state) {}
  [[nodiscard]] bool HasOptionPages() const override { return hasPages; }
  void ShowCommProperties() override {
    statusWhileShown = state_.Screen.Status();
    state_.Port.SelectedPort = answer;
  }
  bool hasPages = true;
  std::u16string answer;
  std::u16string statusWhileShown;

 private:
  core::AppState& state_;
};

TEST(FirstRun, PlayWithoutAPortAsksForOneOnThePortPageThenOpensTheOneChosen) {
  core::AppState state;
  PagesFrontEnd view(state);
  state.View = &view;
  auto play = [&](int64_t source = 0) {
    MainWindowProc(state, core::MakeMessage(core::kWmCommand, core::cmd::kPlay, source));
  };
  const std::u16string failed = u"Error! Selected port failed to open. Check settings.";
  play();  // cancelled: nothing is opened, the request stays on the status line
  EXPECT_EQ(view.statusWhileShown, kChoosePortText);
  EXPECT_EQ(state.Screen.Status(), kChoosePortText);
  EXPECT_FALSE(state.PlayFlag);
  view.answer = u"/nonexistent/ttyUSB9";
  play();  // a port chosen: PLAY goes on with it
  EXPECT_EQ(state.Screen.Status().rfind(failed, 0), 0u);
  view.statusWhileShown.clear();
  play();  // a port selected already: no pages
  EXPECT_TRUE(view.statusWhileShown.empty());

  // Without pages to show (headless), from the command line or while a
  // script runs, PLAY reports the error as always.
  for (int unattended = 0; unattended < 3; ++unattended) {
    state.Port.SelectedPort.clear();
    view.hasPages = unattended != 0;
    state.ScriptRunning = unattended == 2;
    play(unattended == 1 ? core::kFromCommandLine : 0);
    EXPECT_TRUE(view.statusWhileShown.empty()) << unattended;
    EXPECT_EQ(state.Screen.Status().rfind(failed, 0), 0u) << unattended;
  }
}

TEST(FirstRun, TheSinglePortListedIsPreselectedAndDataBeginsOnANewLine) {
  core::PortSettings port;
  std::array<std::string, core::kPortSlots> paths{};
  port.PortPresent[10] = 1;  // the simulated device only
  EXPECT_EQ(PreselectedSlot(port, paths), 10);
  paths[3] = "/dev/ttyUSB0";
  EXPECT_EQ(PreselectedSlot(port, paths), -1);
  port.SelectedPort = u"COM3:";
  EXPECT_EQ(PreselectedSlot(port, paths), 3);
  EXPECT_EQ(ListedSlots(port, paths), (std::vector<int>{3, 10}));

  core::AppState state;
  state.FirstPaintState = 2;
  OnFirstPaint(state);
  const std::u16string welcome = state.Screen.RxText();
  BeginDataOnNewLine(state);
  BeginDataOnNewLine(state);  // a second opening adds nothing
  EXPECT_EQ(state.Screen.RxText(), welcome + u"\r\n");
  state.Screen.RxClear();
  BeginDataOnNewLine(state);
  EXPECT_EQ(state.Screen.RxText(), u"");
}

}  // namespace
}  // namespace wavetrace::app
