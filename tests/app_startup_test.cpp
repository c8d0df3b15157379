#include <gtest/gtest.h>

#include <tuple>

#include "app/help.h"
#include "app/tray_notification.h"
#include "core/messages.h"
#include "platform/files.h"
#include "platform/instance_lock.h"
#include "program_fixture.h"

namespace wavetrace::app {
namespace {

using core::AppState;
using testing::FreshProgram;
using testing::StartedProgram;
using testing::TempFolder;
using testing::WriteRegistry;
namespace cmd = core::cmd;

// The boxes shown, "title: text" each, one a line.
std::u16string BoxTexts(StartedProgram& program) {
  std::u16string texts;
  for (const auto& box : program.view.Boxes()) texts += box.title + u": " + box.text + u"\n";
  return texts;
}

// Every start of the other tests is on Linux 6.1.
TEST(StartUp, OnlyLinuxIsSupportedAndAnotherSystemGetsOneBoxAndNothingElse) {
  EXPECT_TRUE(IsSupportedPlatform({true, "Linux", 2, 6}));
  for (const platform::OsInfo& os :
       {platform::OsInfo{true, "FreeBSD", 14, 0}, {true, "linux", 6, 1}, {false, "Linux", 6, 1}})
    EXPECT_FALSE(IsSupportedPlatform(os)) << os.Valid << os.SystemName;
  TempFolder folder;
  StartedProgram start(folder.Path());
  EXPECT_EQ(start.Start({true, "FreeBSD", 14, 0}), -1);
  EXPECT_EQ(BoxTexts(start),
            u"O/S not supported: This program requires the Pocket PC 2003 or later Operating System.\n");
  EXPECT_TRUE(start.state.g_RxWindowBuf.Empty() && !start.state.RxThread);
  EXPECT_FALSE(platform::FileExists(folder.Path() + "/registry.txt"));
}

TEST(StartUp, TheVersionWarningAndTheRecordedRelease) {
  // A store without a release (none at all, or a hand-written one) warns once
  // and records this release; another release (2.70) warns on every start.
  const std::string key = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro]\n";
  using Case = std::tuple<std::string, uint32_t, std::u16string>;  // the store ("": none), MULTIinst, release
  for (const auto& [store, multi, release] :
       {Case{"", 0, u"0.0"}, Case{key + "MULTIinst=dword:00000001\n", 1, u"0.0"},
        Case{key + "MajorVersion=dword:00000002\nMinorVersion=dword:00000046\n", 0, u"2.70"}}) {
    TempFolder folder;
    if (!store.empty()) std::ofstream(folder.Path() + "/registry.txt") << store;
    for (int run = 0; run < 2; ++run) {
      StartedProgram start(folder.Path());
      ASSERT_EQ(start.Start(), 0);
      const std::u16string warning =
          u"Warning: Version mismatch: Expected: 2.71 \r\nReceived: Rel. \"" + release +
          u"\" \r\nSome features may not function properly.  You have been warned.  :)\n";
      EXPECT_EQ(BoxTexts(start), run == 1 && release == u"0.0" ? u"" : warning) << store << run;
      EXPECT_EQ(start.state.ProgramOptions.MULTIinst, multi);
    }
  }
}

TEST(StartUp, AnUnusableConfigurationFolderIsReportedOnce) {
  TempFolder folder;
  std::ofstream(folder.Path() + "/plain") << "x";  // a file where the folder should be
  StartedProgram start(folder.Path() + "/plain");
  start.Start();  // ends for want of an instance lock, as before
  const std::u16string boxes = BoxTexts(start);
  const std::u16string report = u"Error opening Program Options registry key: ";
  EXPECT_TRUE(boxes.find(report) != std::u16string::npos && boxes.find(report) == boxes.rfind(report))
      << "once";
  EXPECT_EQ(start.state.ProgramOptions.MULTIinst, 0u);
}

class StartUpTest : public testing::ProgramFixture {};

// The title: MainWindow.StartUpShowsTheWelcomeTextTitleStatusAndTheModelsControls; the current
// configuration and radix without a default file: StartUp.LoadsTheDefaultConfigurationThenTheOneAskedFor;
// "Shutting down...": Headless.ATerminalGetsTheWelcomeAndUtf8BothWays.
TEST_F(StartUpTest, NormalStartShowsTheClosedStateTakesTheCommandsAndExitEndsEveryThread) {
  auto& screen = state.Screen;
  auto send = [&](int command) { state.Queue.SendCommand(command); };
  EXPECT_EQ(std::pair(state.g_RxWindowBuf.Size(), state.DataLogCache.Size()),
            std::pair(size_t{16384}, size_t{65535}));
  ASSERT_TRUE(state.RxThread && state.TxThread && state.RxWndUpdate && state.LogIntervalThread);
  EXPECT_TRUE(screen.RxText().empty());
  // Writes the welcome text (its words: Headless.ATerminalGetsTheWelcomeAndUtf8BothWays); a later paint
  // does not again.
  OnFirstPaint(state);
  const std::u16string welcome = screen.RxText();
  OnFirstPaint(state);
  EXPECT_EQ(screen.RxText(), welcome);
  EXPECT_FALSE(screen.IsButtonEnabled(cmd::kSend) || screen.IsButtonEnabled(cmd::kStop));
  EXPECT_FALSE(screen.IsMenuItemGrey(cmd::kAbout) || screen.IsMenuItemGrey(cmd::kExit) ||
               screen.IsMenuItemGrey(cmd::kConfigLoad) || screen.IsMenuItemGrey(cmd::kRunScript));
  EXPECT_TRUE(screen.TrayState() == 1 && screen.WindowShown());
  send(cmd::kAbout);
  EXPECT_EQ(view.about, u"Rel. 2.71.3089  (11.2008)");

  // The radix, view, pause and clear commands.
  const std::pair<int, int> radixes[] = {
      {cmd::kDecimal, 10}, {cmd::kHex, 16}, {cmd::kHex, 16}, {cmd::kOctal, 8}, {cmd::kBinary, 2}};
  for (auto [command, base] : radixes) {
    send(command);
    EXPECT_EQ(state.Data.Base, base);
    for (int item : {cmd::kDecimal, cmd::kHex, cmd::kOctal, cmd::kBinary})
      EXPECT_EQ(screen.IsMenuItemChecked(item), item == command) << command;
  }
  for (int binary : {1, 0}) {
    send(binary ? cmd::kBinaryButton : cmd::kAsciiButton);
    EXPECT_EQ(state.Data.modeASCII + 2 * state.Data.modeBINARY, binary ? 2 : 1);
    EXPECT_EQ(screen.IsButtonEnabled(cmd::kBinaryButton), !binary);
    EXPECT_EQ(screen.IsButtonEnabled(cmd::kAsciiButton), !!binary);
  }
  for (int clear : {cmd::kClearReceiveWindow, cmd::kClearButton}) {
    screen.RxInsertAtCaret(u"data");
    screen.SetShownCount(4);
    send(clear);
    EXPECT_TRUE(screen.RxText().empty() && screen.ShownCount() == 0) << clear;
  }
  for (int paused : {1, 0}) {
    send(cmd::kPauseRxDisplay);
    EXPECT_EQ(state.Data.PauseRxDisplay, paused);
    EXPECT_EQ(screen.IsMenuItemChecked(cmd::kPauseRxDisplay), paused == 1);
  }

  // Every screen command reaches its screen; a screen not shown is reported.
  const std::pair<int, std::string> table[] = {{cmd::kReceiveOptions, "receive options 0"},
                                               {cmd::kAsciiChart, "chart A"},
                                               {cmd::kCommPinouts, "pinouts"},
                                               {cmd::kHelp, "manual " + ManualPath()},
                                               {cmd::kFullscreen, ""},
                                               {cmd::kAsciiChart, "chart B"}};  // the other variant
  for (const auto& [command, shown] : table) {
    view.screens.clear();
    EXPECT_FALSE(screen.IsMenuItemGrey(command)) << command;
    send(command);
    EXPECT_EQ(view.screens, shown.empty() ? std::vector<std::string>{} : std::vector{shown}) << command;
  }
  EXPECT_TRUE(ManualPath().ends_with("/docs/manual/index.html")) << ManualPath();

  view.screensShown = false;
  for (int command : {cmd::kReceiveOptions, cmd::kAsciiChart, cmd::kCommPinouts, cmd::kHelp}) send(command);
  std::vector<std::u16string> boxes;
  for (const auto& box : view.Boxes()) boxes.push_back(box.text.substr(0, box.text.find(u':')));
  EXPECT_EQ(boxes,
            (std::vector<std::u16string>{u"Creating Receive Options dialog.", u"Creating ASCII Chart Dialog.",
                                         u"Creating Pinouts Dialog."}));
  EXPECT_EQ(screen.Status().rfind(u"The manual is /", 0), 0u);

  // Give the parked threads time to park: shutdown must wake them anyway.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  state.Queue.PostCommand(cmd::kExit);
  EXPECT_EQ(state.Queue.RunLoop(), 0);
  EXPECT_FALSE(state.RxThread || state.TxThread || state.RxWndUpdate || state.LogIntervalThread);
  EXPECT_TRUE(state.ShuttingDown && state.g_RxWindowBuf.Empty() && state.DataLogCache.Empty());
  EXPECT_TRUE(screen.TrayState() == 0 && state.Queue.NextTimerDelayMs() == -1);
}

TEST(StartUp, WithoutADisplayScreenOffIsGreyAndDisableIconKeepsTheNotificationOff) {
  FreshProgram start("DisableIcon=dword:00000001\n");
  const std::string saved = std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "";
  unsetenv("DISPLAY");
  int result = start.Start();
  if (!saved.empty()) setenv("DISPLAY", saved.c_str(), 1);
  ASSERT_EQ(result, 0);
  auto& s = start.state;
  EXPECT_FALSE(s.Screen.IsMenuItemGrey(cmd::kScreenOff));
  OnFirstPaint(s);
  EXPECT_TRUE(s.Screen.IsMenuItemGrey(cmd::kScreenOff));
  s.Queue.SendCommand(cmd::kScreenOff);  // then changes nothing
  EXPECT_EQ(s.DisplayPower.PowerState, 0);
  EXPECT_FALSE(ShellNotification(s, kNotifyActive) || ShellNotification(s, kNotifyIdle));
  EXPECT_EQ(s.Screen.TrayState(), 0);
}

TEST(StartUp, AutomationModeAndAScriptThatCannotBeRead) {
  // Which scripts cannot be read (an empty one too): HeadlessScript.UnreadableScriptsEndTheRun...
  for (const std::string name : {"/run.txt", "/missing.txt"}) {
    SCOPED_TRACE(name);
    FreshProgram start;
    std::ofstream(start.Path() + "/run.txt") << "<COMMENT>hi</COMMENT>";
    const std::u16string script = core::Utf8ToWide(start.Path() + name);
    const bool runs = name == "/run.txt";
    AppState& s = start.state;
    s.Switches.ScriptPath = script;
    ASSERT_EQ(start.Start(), 0);
    EXPECT_EQ(s.AutomationMode, runs ? 1 : 0);
    EXPECT_EQ(s.WindowTitle, runs ? u"Wavetrace Pro(Auto) " : u"Wavetrace Pro ");
    EXPECT_EQ(BoxTexts(start), runs ? u"" : u"Script file automation: init failed... aborting.\n");
    if (!runs) continue;
    OnFirstPaint(s);
    EXPECT_EQ(s.Screen.RxText(),
              u" Welcome to Wavetrace Pro(Auto)\r\n        AUTOMATION MODE\r\n    Rel. 2.71.3089 "
              u"(11.2008)\r\n\r\n[Running script:] \r\n" +
                  script + u"\r\n\r\n");
    for (int item : {cmd::kConfigLoad, cmd::kConfigSave, cmd::kConfigSaveAs, cmd::kConfigSetDefault})
      EXPECT_TRUE(s.Screen.IsMenuItemGrey(item)) << item;
  }
}

TEST(StartUp, LoadsTheDefaultConfigurationThenTheOneAskedFor) {
  TempFolder folder;
  for (auto [name, data] : {std::pair{"/Default.cfg.txt", "Base=2\r\nmodeASCII=0\r\nmodeBINARY=1"},
                            {"/night.cfg.txt", "Base=8"},
                            // Both views off is a valid file: the data is shown as it comes.
                            {"/plain.cfg.txt", "modeASCII=0\r\nmodeBINARY=0"}}) {
    std::ofstream(folder.Path() + name) << "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\n"
                                        << data << "\r\n"
                                        << std::string(64, ';') << "\r\n";
  }
  // A configuration asked for that is missing is reported; the default stays current.
  using Case = std::tuple<std::string, std::string, std::string, int, int, int, int>;
  const std::string ignoreDefault = "DEFAULTcfg=dword:00000001\n";
  for (const auto& [options, config, current, base, checked, ascii, binary] :
       {Case{"", "", "/Default.cfg.txt", 2, cmd::kBinary, 0, 1},
        Case{ignoreDefault, "", "/Default.cfg.txt", 16, cmd::kHex, 1, 0},
        Case{"", "/night.cfg.txt", "/night.cfg.txt", 8, cmd::kOctal, 0, 1},
        Case{ignoreDefault, "/night.cfg.txt", "/night.cfg.txt", 8, cmd::kOctal, 1, 0},
        Case{ignoreDefault, "/plain.cfg.txt", "/plain.cfg.txt", 16, cmd::kHex, 0, 0},
        Case{"", "/gone.cfg.txt", "/Default.cfg.txt", 2, cmd::kBinary, 0, 1}}) {
    SCOPED_TRACE(options + config);
    WriteRegistry(folder.Path(), options);
    StartedProgram start(folder.Path());
    AppState& s = start.state;
    if (!config.empty()) s.Switches.ConfigPath = core::Utf8ToWide(folder.Path() + config);
    ASSERT_EQ(start.Start(), 0);
    EXPECT_EQ(std::tuple(s.Data.Base, s.Data.modeASCII, s.Data.modeBINARY), std::tuple(base, ascii, binary));
    EXPECT_TRUE(s.Screen.IsMenuItemChecked(checked));
    // A button is greyed only while its view is the only one on.
    EXPECT_EQ(s.Screen.IsButtonEnabled(cmd::kAsciiButton), !(ascii && !binary));
    EXPECT_EQ(s.Screen.IsButtonEnabled(cmd::kBinaryButton), !(binary && !ascii));
    EXPECT_EQ(s.CurrentConfigPath, core::Utf8ToWide(folder.Path() + current));
    const bool gone = config == "/gone.cfg.txt";
    EXPECT_EQ(s.Screen.Status().rfind(u"Config file not found [", 0) == 0, gone);
    EXPECT_EQ(s.Screen.Status().find(u"Error code=2 (0x2)") != std::u16string::npos, gone);
  }
}

TEST(Instances, ASecondStartBringsTheFirstToTheFront) {
  FreshProgram first;
  ASSERT_EQ(first.Start(), 0);
  first.state.Screen.SetEventsEnabled(true);
  StartedProgram second(first.Path());
  EXPECT_EQ(second.Start(), -1);
  EXPECT_TRUE(second.view.Boxes().empty());
  EXPECT_FALSE(second.state.RxThread);
  EXPECT_TRUE(first.PumpUntil([&] {
    for (const auto& e : first.state.Screen.TakeEvents())
      if (e.Type == core::ScreenEvent::Kind::kActivate) return true;
    return false;
  }));
}

TEST(Instances, SeveralAllowedGetNumberedTitlesUntilAllThirtyAreTaken) {
  FreshProgram last("MULTIinst=dword:00000001\n");  // started once every title is taken
  std::vector<std::unique_ptr<StartedProgram>> started;
  for (const char16_t* title : {u"Wavetrace Pro ", u"Wavetrace Pro #2", u"Wavetrace Pro #3"}) {
    started.push_back(std::make_unique<StartedProgram>(last.Path()));
    ASSERT_EQ(started.back()->Start(), 0);
    EXPECT_EQ(started.back()->state.WindowTitle, title);
  }
  started.clear();
  auto titles = InstanceTitleCandidates(u"Wavetrace Pro ");
  ASSERT_EQ(titles.size(), 30u);
  EXPECT_EQ(titles[29], u"Wavetrace Pro #30");
  std::vector<std::unique_ptr<platform::InstanceLock>> holders;
  for (const auto& title : titles) {
    holders.push_back(std::make_unique<platform::InstanceLock>(last.Path() + "/instances"));
    ASSERT_TRUE(holders.back()->Acquire(core::WideToUtf8(title)));
  }
  ASSERT_EQ(last.Start(), 0);
  EXPECT_EQ(last.state.WindowTitle, u"Wavetrace Pro ");
}

// Clearing the send history: MainWindow.ButtonsFieldsClipboardAndFullscreenTalkToTheModel.

}  // namespace
}  // namespace wavetrace::app
