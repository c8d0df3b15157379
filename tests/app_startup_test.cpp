#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <numeric>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/files.h"
#include "platform/instance_lock.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using core::AppState;
using testing::RecordingFrontEnd;
using testing::TempFolder;

platform::OsInfo Linux() {
  return {true, "Linux", 6, 1, ""};
}

constexpr char16_t kWelcomeNormal[] =
    u"    Welcome to Wavetrace Pro\r\n    Rel. 2.71.3089 (11.2008)\r\n\r\n Please tap the PLAY button\r\n "
    u"below "
    u"to open a communications\r\n port. After which you may then\r\n begin receiving serial data\r\n into "
    u"your "
    u"Pocket PC.";

// One program start in a configuration folder, shut down at the end.
class Start {
 public:
  explicit Start(const std::string& folder, platform::OsInfo os = Linux(), std::u16string script = u"") {
    state.View = &view;
    state.ConfigFolder = core::Utf8ToWide(folder);
    state.Switches.ScriptPath = std::move(script);
    result = StartUp(state, os);
  }
  ~Start() {
    if (!state.ShuttingDown) Shutdown(state);
    AfterMessageLoop(state);
  }
  Start(const Start&) = delete;
  Start& operator=(const Start&) = delete;

  AppState state;
  RecordingFrontEnd view;
  int result = 0;
};

void WriteRegistry(const std::string& folder, int major, int minor, int multi = 0) {
  char text[256];
  std::snprintf(text, sizeof text,
                "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro]\nMajorVersion=dword:%08x\n"
                "MinorVersion=dword:%08x\nMULTIinst=dword:%08x\n",
                major, minor, multi);
  std::ofstream(folder + "/registry.txt") << text;
}

TEST(OperatingSystem, TestsAndSupport) {
  struct Case {
    platform::OsInfo os;
    int pc4, pc421, pc5;
    bool supported;
  };
  const Case cases[] = {
      {Linux(), 0, 0, 0, true},
      {{true, "WindowsCE", 4, 20, "PocketPC"}, 1, 0, 0, true},
      {{true, "WindowsCE", 4, 21, "PocketPC"}, 1, 1, 0, true},
      {{true, "WindowsCE", 5, 1, "PocketPC"}, 0, 0, 1, true},
      {{true, "WindowsCE", 3, 0, "PocketPC"}, 0, 0, 0, false},
      {{true, "WindowsCE", 4, 21, "Smartphone"}, 0, 0, 0, false},
      {{true, "WindowsCE", 5, 0, "pocketpc"}, 0, 0, 0, false},
      {{true, "FreeBSD", 14, 0, ""}, 0, 0, 0, false},
      {{false, "", 0, 0, ""}, 0, 0, 0, false},
  };
  for (const auto& c : cases) {
    AppState state;
    state.IsPocketPC4 = static_cast<uint8_t>(CheckPocketPC4(c.os));
    state.IsPocketPC421 = static_cast<uint8_t>(CheckPocketPC421(c.os));
    state.IsPocketPC5 = static_cast<uint8_t>(CheckPocketPC5(c.os));
    EXPECT_EQ(state.IsPocketPC4, c.pc4) << c.os.SystemName << c.os.Major << "." << c.os.Minor;
    EXPECT_EQ(state.IsPocketPC421, c.pc421) << c.os.SystemName << c.os.Major << "." << c.os.Minor;
    EXPECT_EQ(state.IsPocketPC5, c.pc5) << c.os.SystemName << c.os.Major << "." << c.os.Minor;
    EXPECT_EQ(IsSupportedPlatform(c.os, state), c.supported) << c.os.SystemName << c.os.Major;
  }
  EXPECT_EQ(CheckPocketPC3({true, "WindowsCE", 3, 0, "PocketPC"}), 1);
}

TEST(StartUp, AnUnsupportedSystemGetsOneBoxAndNothingElse) {
  TempFolder folder;
  Start start(folder.Path(), {true, "FreeBSD", 14, 0, ""});
  EXPECT_EQ(start.result, -1);
  auto boxes = start.view.Boxes();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].title, u"O/S not supported");
  EXPECT_EQ(boxes[0].text, u"This program requires the Pocket PC 2003 or later Operating System.");
  EXPECT_TRUE(start.state.g_RxWindowBuf.Empty());
  EXPECT_FALSE(start.state.RxThread);
  EXPECT_FALSE(platform::FileExists(folder.Path() + "/registry.txt"));
}

TEST(StartUp, AStoreWithoutAReleaseWarnsOnceAndRecordsIt) {
  // A fresh folder, a store left by an earlier --list-ports, a hand-written one.
  struct Case {
    const char* values;
    uint32_t multi;
  };
  const Case stores[] = {
      {nullptr, 0},
      {"DEFAULTcfg=dword:00000000\nMULTIinst=dword:00000000\nAcquireHWbuttons=dword:00000000\n"
       "DisableIcon=dword:00000000\n",
       0},
      {"MULTIinst=dword:00000001\n", 1},
  };
  for (const auto& [values, multi] : stores) {
    TempFolder folder;
    if (values) {
      std::ofstream(folder.Path() + "/registry.txt")
          << "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro]\n"
          << values;
    }
    std::string what = values ? values : "(no store)";
    {
      Start first(folder.Path());
      ASSERT_EQ(first.result, 0);
      auto boxes = first.view.Boxes();
      ASSERT_EQ(boxes.size(), 1u) << what;
      EXPECT_EQ(boxes[0].title, u"Warning: Version mismatch");
      EXPECT_EQ(
          boxes[0].text,
          u"Expected: 2.71 \r\nReceived: Rel. \"0.0\" \r\nSome features may not function properly.  You have "
          u"been warned.  :)");
    }
    Start second(folder.Path());
    ASSERT_EQ(second.result, 0);
    EXPECT_TRUE(second.view.Boxes().empty()) << what;
    EXPECT_EQ(second.state.ProgramOptions.MULTIinst, multi) << what;
  }
}

TEST(StartUp, AnUnusableConfigurationFolderIsReportedOnce) {
  TempFolder folder;
  std::ofstream(folder.Path() + "/plain") << "x";  // a file where the folder should be
  Start start(folder.Path() + "/plain");  // ends for want of an instance lock, as before
  int reports = 0;
  for (const auto& box : start.view.Boxes()) {
    if (box.text.find(u"Error opening Program Options registry key: ") != std::u16string::npos) ++reports;
  }
  EXPECT_EQ(reports, 1);
  EXPECT_EQ(start.state.ProgramOptions.MULTIinst, 0u);
}

TEST(StartUp, AFolderOfAnotherReleaseWarnsEveryTime) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 70);
  for (int run = 0; run < 2; ++run) {
    Start start(folder.Path());
    ASSERT_EQ(start.result, 0);
    auto boxes = start.view.Boxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].text.find(u"Received: Rel. \"2.70\""), std::u16string::npos);
  }
}

TEST(StartUp, NormalStartShowsTheClosedStateAndTheWelcomeText) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  Start start(folder.Path());
  ASSERT_EQ(start.result, 0);
  auto& s = start.state;
  EXPECT_EQ(s.WindowTitle, u"Wavetrace Pro ");
  EXPECT_EQ(s.g_RxWindowBuf.Size(), 16384u);
  EXPECT_EQ(s.DataLogCache.Size(), 65535u);
  EXPECT_EQ(s.CurrentConfigPath, core::Utf8ToWide(folder.Path()) + u"/Default.cfg.txt");
  ASSERT_TRUE(s.RxThread && s.TxThread && s.RxWndUpdate && s.LogIntervalThread);
  EXPECT_EQ(s.FirstPaintState, 2);
  EXPECT_TRUE(s.Screen.RxText().empty());

  OnFirstPaint(s);
  EXPECT_EQ(s.Screen.RxText(), kWelcomeNormal);
  OnFirstPaint(s);  // only the first paint writes it
  EXPECT_EQ(s.Screen.RxText(), kWelcomeNormal);

  EXPECT_FALSE(s.Screen.IsButtonEnabled(core::cmd::kSend));
  EXPECT_FALSE(s.Screen.IsButtonEnabled(core::cmd::kStop));
  EXPECT_FALSE(s.Screen.IsMenuItemGrey(core::cmd::kAbout));
  EXPECT_FALSE(s.Screen.IsMenuItemGrey(core::cmd::kExit));
  EXPECT_TRUE(s.Screen.IsMenuItemGrey(core::cmd::kRunScript));
  EXPECT_FALSE(s.Screen.IsMenuItemGrey(core::cmd::kConfigLoad));
  EXPECT_TRUE(s.Screen.IsMenuItemChecked(core::cmd::kHex));
  EXPECT_EQ(s.Screen.TrayState(), 1);
  EXPECT_TRUE(s.Screen.WindowShown());
}

TEST(StartUp, ExitEndsEveryThreadAndFreesTheBuffers) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  Start start(folder.Path());
  ASSERT_EQ(start.result, 0);
  auto& s = start.state;
  // Give the parked threads time to park: shutdown must wake them anyway.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  s.Queue.PostCommand(core::cmd::kExit);
  EXPECT_EQ(s.Queue.RunLoop(), 0);
  EXPECT_TRUE(s.ShuttingDown);
  EXPECT_FALSE(s.RxThread || s.TxThread || s.RxWndUpdate || s.LogIntervalThread);
  EXPECT_TRUE(s.g_RxWindowBuf.Empty());
  EXPECT_TRUE(s.DataLogCache.Empty());
  EXPECT_EQ(s.Screen.Status(), u"Shutting down...");
  EXPECT_EQ(s.Screen.TrayState(), 0);
  EXPECT_EQ(s.Queue.NextTimerDelayMs(), -1);
}

TEST(StartUp, WithoutADisplayToSwitchOffScreenOffIsGrey) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  const char* display = std::getenv("DISPLAY");
  std::string saved = display ? display : "";
  unsetenv("DISPLAY");
  Start start(folder.Path());
  if (!saved.empty()) setenv("DISPLAY", saved.c_str(), 1);
  ASSERT_EQ(start.result, 0);
  EXPECT_FALSE(start.state.Screen.IsMenuItemGrey(core::cmd::kScreenOff));
  OnFirstPaint(start.state);
  EXPECT_TRUE(start.state.Screen.IsMenuItemGrey(core::cmd::kScreenOff));
  // The command then changes nothing.
  start.state.Queue.SendCommand(core::cmd::kScreenOff);
  EXPECT_EQ(start.state.DisplayPower.PowerState, 0);
}

TEST(StartUp, DisableIconKeepsTheNotificationOff) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  std::ofstream(folder.Path() + "/registry.txt", std::ios::app) << "DisableIcon=dword:00000001\n";
  Start start(folder.Path());
  ASSERT_EQ(start.result, 0);
  EXPECT_EQ(start.state.Screen.TrayState(), 0);
  EXPECT_FALSE(ShellNotification(start.state, kNotifyActive));
  EXPECT_FALSE(ShellNotification(start.state, kNotifyIdle));
  EXPECT_EQ(start.state.Screen.TrayState(), 0);
}

TEST(StartUp, AutomationMode) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  std::string script = folder.Path() + "/run.txt";
  std::ofstream(script) << "<COMMENT>hi</COMMENT>";
  Start start(folder.Path(), Linux(), core::Utf8ToWide(script));
  ASSERT_EQ(start.result, 0);
  auto& s = start.state;
  EXPECT_EQ(s.AutomationMode, 1);
  EXPECT_EQ(s.WindowTitle, u"Wavetrace Pro(Auto) ");
  OnFirstPaint(s);
  EXPECT_EQ(s.Screen.RxText(),
            u" Welcome to Wavetrace Pro(Auto)\r\n        AUTOMATION MODE\r\n    Rel. 2.71.3089 "
            u"(11.2008)\r\n\r\n[Running script:] \r\n" +
                core::Utf8ToWide(script) + u"\r\n\r\n");
  for (int item : {core::cmd::kConfigLoad, core::cmd::kConfigSave, core::cmd::kConfigSaveAs,
                   core::cmd::kConfigSetDefault}) {
    EXPECT_TRUE(s.Screen.IsMenuItemGrey(item)) << item;
  }
}

TEST(StartUp, AScriptThatCannotBeReadFallsBackToNormalMode) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  std::ofstream(folder.Path() + "/empty.txt");
  for (const char* name : {"/missing.txt", "/empty.txt"}) {
    Start start(folder.Path(), Linux(), core::Utf8ToWide(folder.Path() + name));
    ASSERT_EQ(start.result, 0);
    auto boxes = start.view.Boxes();
    ASSERT_EQ(boxes.size(), 1u) << name;
    EXPECT_EQ(boxes[0].title, u"Script file automation");
    EXPECT_EQ(boxes[0].text, u"init failed... aborting.");
    EXPECT_EQ(start.state.AutomationMode, 0);
    EXPECT_EQ(start.state.WindowTitle, u"Wavetrace Pro ");
  }
}

TEST(StartUp, LoadsTheDefaultConfigurationThenTheOneAskedFor) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  const std::string padding = "\r\n" + std::string(64, ';') + "\r\n";
  std::ofstream(folder.Path() + "/Default.cfg.txt")
      << "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nBase=2\r\nmodeASCII=0\r\nmodeBINARY=1" << padding;
  std::ofstream(folder.Path() + "/night.cfg.txt")
      << "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nBase=8" << padding;
  struct Case {
    std::string options;
    std::string config;
    int base;
    int checked;
    bool binary;
  };
  const Case cases[] = {
      {"", "", 2, core::cmd::kBinary, true},
      {"DEFAULTcfg=dword:00000001\n", "", 16, core::cmd::kHex, false},
      {"", "/night.cfg.txt", 8, core::cmd::kOctal, true},
      {"DEFAULTcfg=dword:00000001\n", "/night.cfg.txt", 8, core::cmd::kOctal, false},
  };
  for (const auto& c : cases) {
    WriteRegistry(folder.Path(), 2, 71);
    std::ofstream(folder.Path() + "/registry.txt", std::ios::app) << c.options;
    AppState s;
    RecordingFrontEnd view;
    s.View = &view;
    s.ConfigFolder = core::Utf8ToWide(folder.Path());
    if (!c.config.empty()) s.Switches.ConfigPath = core::Utf8ToWide(folder.Path() + c.config);
    ASSERT_EQ(StartUp(s, Linux()), 0);
    EXPECT_EQ(s.Data.Base, c.base) << c.options << c.config;
    EXPECT_TRUE(s.Screen.IsMenuItemChecked(c.checked)) << c.options << c.config;
    EXPECT_EQ(s.Data.modeBINARY, c.binary ? 1 : 0) << c.options << c.config;
    EXPECT_FALSE(s.Screen.IsButtonEnabled(c.binary ? core::cmd::kBinaryButton : core::cmd::kAsciiButton));
    if (!c.config.empty()) {
      EXPECT_EQ(s.CurrentConfigPath, s.Switches.ConfigPath);
    }
    Shutdown(s);
    AfterMessageLoop(s);
  }
}

TEST(StartUp, AConfigurationAskedForThatIsMissingIsReported) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  AppState s;
  RecordingFrontEnd view;
  s.View = &view;
  s.ConfigFolder = core::Utf8ToWide(folder.Path());
  s.Switches.ConfigPath = core::Utf8ToWide(folder.Path() + "/gone.cfg.txt");
  ASSERT_EQ(StartUp(s, Linux()), 0);
  EXPECT_EQ(s.Screen.Status().rfind(u"Config file not found [", 0), 0u);
  EXPECT_NE(s.Screen.Status().find(u"Error code=2 (0x2)"), std::u16string::npos);
  EXPECT_EQ(s.CurrentConfigPath, core::Utf8ToWide(folder.Path()) + u"/Default.cfg.txt");
  Shutdown(s);
  AfterMessageLoop(s);
}

TEST(Instances, TitleCandidates) {
  auto titles = InstanceTitleCandidates(u"Wavetrace Pro ");
  ASSERT_EQ(titles.size(), 30u);
  EXPECT_EQ(titles[0], u"Wavetrace Pro ");
  EXPECT_EQ(titles[1], u"Wavetrace Pro #2");
  EXPECT_EQ(titles[29], u"Wavetrace Pro #30");
}

TEST(Instances, ASecondStartBringsTheFirstToTheFront) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  Start first(folder.Path());
  ASSERT_EQ(first.result, 0);
  Start second(folder.Path());
  EXPECT_EQ(second.result, -1);
  EXPECT_TRUE(second.view.Boxes().empty());
  EXPECT_FALSE(second.state.RxThread);
  // The first instance is asked to come to the front.
  bool activated = false;
  first.state.Screen.SetEventsEnabled(true);
  for (int i = 0; i < 500 && !activated; ++i) {
    first.state.Queue.DispatchPending();
    for (const auto& e : first.state.Screen.TakeEvents())
      activated |= e.Type == core::ScreenEvent::Kind::kActivate;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(activated);
}

TEST(Instances, SeveralAllowedGetNumberedTitles) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71, 1);
  Start first(folder.Path());
  Start second(folder.Path());
  Start third(folder.Path());
  ASSERT_EQ(first.result, 0);
  ASSERT_EQ(second.result, 0);
  ASSERT_EQ(third.result, 0);
  EXPECT_EQ(first.state.WindowTitle, u"Wavetrace Pro ");
  EXPECT_EQ(second.state.WindowTitle, u"Wavetrace Pro #2");
  EXPECT_EQ(third.state.WindowTitle, u"Wavetrace Pro #3");
}

TEST(Instances, WithAllThirtyTitlesTakenTheNewcomerKeepsThePlainTitle) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71, 1);
  std::vector<std::unique_ptr<platform::InstanceLock>> holders;
  for (const auto& title : InstanceTitleCandidates(u"Wavetrace Pro ")) {
    holders.push_back(std::make_unique<platform::InstanceLock>(folder.Path() + "/instances"));
    ASSERT_TRUE(holders.back()->Acquire(core::WideToUtf8(title)));
  }
  Start start(folder.Path());
  ASSERT_EQ(start.result, 0);
  EXPECT_EQ(start.state.WindowTitle, u"Wavetrace Pro ");
}

TEST(MainWindowCommands, RadixAndViewModeAndClear) {
  TempFolder folder;
  WriteRegistry(folder.Path(), 2, 71);
  Start start(folder.Path());
  ASSERT_EQ(start.result, 0);
  auto& s = start.state;
  auto send = [&](int command) { s.Queue.SendCommand(command); };
  auto checkedRadixItems = [&] {
    int n = 0;
    for (int item : {core::cmd::kDecimal, core::cmd::kHex, core::cmd::kOctal, core::cmd::kBinary}) {
      n += s.Screen.IsMenuItemChecked(item) ? 1 : 0;
    }
    return n;
  };
  const std::pair<int, int> radixes[] = {{core::cmd::kDecimal, 10},
                                         {core::cmd::kHex, 16},
                                         {core::cmd::kHex, 16},
                                         {core::cmd::kOctal, 8},
                                         {core::cmd::kBinary, 2}};
  for (auto [command, base] : radixes) {
    send(command);
    EXPECT_EQ(s.Data.Base, base);
    EXPECT_EQ(checkedRadixItems(), 1);
    EXPECT_TRUE(s.Screen.IsMenuItemChecked(command));
  }

  send(core::cmd::kBinaryButton);
  EXPECT_EQ(s.Data.modeASCII, 0);
  EXPECT_EQ(s.Data.modeBINARY, 1);
  EXPECT_FALSE(s.Screen.IsButtonEnabled(core::cmd::kBinaryButton));
  EXPECT_TRUE(s.Screen.IsButtonEnabled(core::cmd::kAsciiButton));
  send(core::cmd::kAsciiButton);
  EXPECT_EQ(s.Data.modeASCII, 1);
  EXPECT_FALSE(s.Screen.IsButtonEnabled(core::cmd::kAsciiButton));

  for (int clear : {core::cmd::kClearReceiveWindow, core::cmd::kClearButton}) {
    s.Screen.RxInsertAtCaret(u"data");
    s.Screen.SetShownCount(4);
    send(clear);
    EXPECT_TRUE(s.Screen.RxText().empty());
    EXPECT_EQ(s.Screen.ShownCount(), 0);
  }

  send(core::cmd::kPauseRxDisplay);
  EXPECT_EQ(s.Data.PauseRxDisplay, 1);
  EXPECT_TRUE(s.Screen.IsMenuItemChecked(core::cmd::kPauseRxDisplay));
  send(core::cmd::kPauseRxDisplay);
  EXPECT_EQ(s.Data.PauseRxDisplay, 0);

  s.Screen.SetTxHistory({u"AT", u"ATZ"});
  s.Screen.SetTxText(u"AT");
  send(core::cmd::kClearSendHistory);
  EXPECT_TRUE(s.Screen.TxHistory().empty());
  EXPECT_TRUE(s.Screen.TxText().empty());
  EXPECT_EQ(s.Screen.TxSelection(), -1);
}

}  // namespace
}  // namespace wavetrace::app
