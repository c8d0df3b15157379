// Scripts, the port scan and the function buttons.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "automation/port_scan.h"
#include "automation/port_scan_table.h"
#include "automation/script_runner.h"
#include "automation/script_scanner.h"
#include "cli_child.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"

namespace wavetrace::automation {
namespace {

TEST(ScriptScanner, FindsTaggedCommands) {
  struct Case {
    std::u16string text;
    std::vector<std::u16string> found;  // keyword|closing|argument of each command found
  };
  const Case cases[] = {
      // Keywords in any case (letters from a to z only); the closing tag is never checked.
      {u"<send>AT[0D]<a-z{>", {u"SEND|A-Z{|AT[0D]"}},
      // Text between commands, line breaks included, is ignored.
      {u"junk\r\n<Comment>a b</Comment>\r\n<PLAY></PLAY>", {u"COMMENT|/COMMENT|a b", u"PLAY|/PLAY|"}},
      // A final tag without its ">" is no command.
      {u"<PLAY></PLAY><STOP></STOP", {u"PLAY|/PLAY|"}},
      {u"<DELAY>100", {}},
      // Tags longer than 31 characters are cut.
      {u"<" + std::u16string(40, u'x') + u">1</y>", {std::u16string(31, u'X') + u"|/Y|1"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(core::WideToUtf8(c.text));
    std::vector<std::u16string> found;
    size_t cursor = 0;
    ScriptCommand command;
    while (FindNextCommand(c.text, cursor, command)) {
      found.push_back(command.Keyword + u"|" + command.ClosingTag + u"|" + command.Argument);
    }
    EXPECT_EQ(found, c.found);
  }
  // A delay this long cannot be run on the recording clock below.
  EXPECT_EQ(ScriptNumber(u"99999999999"), INT32_MAX);
}

// Records what a script does, on a clock that moves only when it waits.
class RecordingHost : public ScriptHost {
 public:
  bool Sleep(int ms) override {
    now += ms;
    waits.push_back(ms);
    if (onSleep) onSleep(now);
    return true;
  }
  [[nodiscard]] bool Ending() const override { return false; }
  void WriteToReceiveWindow(std::u16string_view text) override { Log(u"W:" + std::u16string(text)); }
  void LoadConfiguration(const std::u16string& path) override { Log(u"CONFIG:" + path); }
  void SendText(const std::u16string& text) override { Log(u"SEND:" + text); }
  void Play() override { Log(u"PLAY"); }
  void Stop() override { Log(u"STOP"); }
  void ExitProgram() override { Log(u"EXIT"); }
  void ScriptEnded() override { Log(u"ENDED"); }

  void Log(std::u16string entry) { events.push_back(core::WideToUtf8(entry) + "@" + std::to_string(now)); }
  // Runs a script without the debug echo.
  ScriptEnd Run(std::u16string_view script) { return RunScript(script, state, false, *this); }

  std::atomic<int32_t> state{kScriptRunning};
  int now = 0;
  std::vector<int> waits;
  std::vector<std::string> events;
  std::function<void(int)> onSleep;
};

TEST(ScriptRunner, CarriesOutCommandsInOrderAndEndsWithTheBanner) {
  RecordingHost host;
  ScriptEnd end = host.Run(
      u"<COMMENT>hi</COMMENT><COMMENT></COMMENT><CONFIG>/a.cfg</CONFIG><SEND>AT</SEND><PLAY></PLAY>"
      u"<BEEP>x</BEEP><CONFIG></CONFIG><SEND></SEND><STOP>ignored</STOP>");
  EXPECT_EQ(end, ScriptEnd::kEndOfText);
  EXPECT_EQ(host.state, kScriptEnded);
  // Each command is followed by one 100 ms poll (BEEP, and CONFIG and SEND without
  // an argument, do nothing else); ten empty scans end it. With --debug each command
  // found is shown first: HeadlessScript.LoadsOpensSendsStopsAndExits.
  const std::vector<std::string> expected = {
      "W:\r\nhi\r\n@0",
      "W:\r\n@100",
      "CONFIG:/a.cfg@200",
      "SEND:AT@300",
      "PLAY@400",
      "STOP@800",
      "W:\r\n@1800",
      "W: ============================\r\n@1800",
      "W: Script Automation mode:[END]\r\n\r\n@1800",
      "ENDED@1800",
      // The last command runs once more after the banner.
      "STOP@1800",
  };
  EXPECT_EQ(host.events, expected);
}

TEST(ScriptRunner, DelaysInWholeStepsAboveOneHundredMilliseconds) {
  struct Case {
    const char16_t* delay;
    std::vector<int> waits;  // before the first poll after the command
  };
  // The number is read as the C library reads one: blanks, a sign, digits.
  const Case cases[] = {
      {u" 1050ms", std::vector<int>(10, 100)}, {u"99", {99}}, {u"", {}}, {u"abc", {}}, {u"-5", {}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(core::WideToUtf8(c.delay));
    RecordingHost host;
    host.Run(u"<DELAY>" + std::u16string(c.delay) + u"</DELAY><EXITPROGRAM></EXITPROGRAM>");
    std::vector<int> waits = c.waits;
    waits.push_back(kScriptPollMs);
    EXPECT_EQ(host.waits, waits);
    EXPECT_EQ(host.events.back(), "EXIT@" + std::to_string(host.now));
  }
}

TEST(ScriptRunner, HoldingCutsADelayShortAndResumesWithTheNextCommand) {
  RecordingHost host;
  host.onSleep = [&](int now) {
    if (now == 300) host.state = 2;  // held during the delay
    if (now == 800) host.state = kScriptRunning;
  };
  ScriptEnd end = host.Run(u"<DELAY>5000</DELAY><SEND>next</SEND><EXITPROGRAM></EXITPROGRAM>");
  EXPECT_EQ(end, ScriptEnd::kExitProgram);
  // Three steps of the delay, then polls while held; no banner.
  EXPECT_EQ(host.events, (std::vector<std::string>{"SEND:next@800", "EXIT@900"}));
}

// The headings each entry gets: HeadlessScan.FindsTheSimulatedDevicesSetting.
TEST(PortScanTable, StartsAtTheCurrentSettingAndStepsInLockstep) {
  struct Case {
    uint32_t baud;
    ScanRotation rotate;
    int32_t customCount;
    size_t total;
    std::vector<ScanEntry> first;  // the first entries
  };
  // Data bits, parity and stop bits step together, each wrapping on its own.
  const std::vector<ScanEntry> lockstep = {{9600, 8, u"None", u"1"},
                                           {9600, 7, u"Odd", u"1.5"},
                                           {9600, 6, u"Even", u"2"},
                                           {9600, 5, u"Mark", u"1"},
                                           {9600, 8, u"Space", u"1.5"}};
  const Case cases[] = {
      {9600, {true, true, true, true}, 0, 360, lockstep},
      {115200, {true, false, false, false}, 0, 1, {{115200, 8, u"None", u"1"}}},
      // Six baud steps share four entries: none per rate, all stay empty.
      {9600, {false, true, false, false}, 0, 4, {{}, {}, {}, {}}},
      // A rate that is not in the list counts as the first one.
      {12345, {true, false, false, false}, 0, 16, {{75, 8, u"None", u"1"}, {110, 8, u"None", u"1"}}},
      // The custom rate comes last, when there is one.
      {115200, {true, false, false, false}, 1, 2, {{115200, 8, u"None", u"1"}, {12345, 8, u"None", u"1"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.baud);
    core::PortSettings port;
    port.SelectedBaud = c.baud;
    port.CustomBauds_count = c.customCount;
    port.CustomBaud_01 = 12345;
    std::vector<ScanEntry> table = BuildScanTable(port, c.rotate);
    EXPECT_EQ(table.size(), c.total);
    table.resize(std::min(table.size(), c.first.size()));
    EXPECT_EQ(table, c.first);
  }
  // Within a rate every pairing of data bits, parity and stop bits occurs once.
  std::vector<ScanEntry> table = BuildScanTable(core::PortSettings{}, {true, true, true, true});
  std::set<std::tuple<uint8_t, std::u16string, std::u16string>> pairings;
  for (size_t i = 0; i < 60; ++i) pairings.emplace(table[i].DataBits, table[i].Parity, table[i].StopBits);
  EXPECT_EQ(pairings.size(), 60u);
  EXPECT_EQ(table[60].Baud, 14400u);
}

using ProgramAutomation = testing::ProgramFixture;

// Software buttons 3 to 6 stay disabled: MainWindow.StripsShowWhatTheModelSaysAndPostTheirControls.
TEST_F(ProgramAutomation, TokensRunOnlyFromHardwareButtons) {
  state.Port.SelectedPort = u"VSP0:";
  state.Data.HardwareButtonData[0] = u"{PLAY}";
  state.Data.SoftwareButtonData[0] = u"{PLAY}";
  state.Queue.Send(core::MakeMessage(core::kWmStripCommand,
                                     core::strip::kSoftwareStrip + core::strip::kFirstSoftwareButton));
  EXPECT_EQ(state.Screen.TxText(), u"{PLAY}");
  EXPECT_FALSE(state.PlayFlag);
  state.Queue.Send(core::MakeMessage(core::kWmHotKey, 197));  // application key 5: nothing
  EXPECT_FALSE(state.PlayFlag);
  state.Queue.Send(core::MakeMessage(core::kWmHotKey, core::kFirstHotKey));
  EXPECT_TRUE(state.PlayFlag);
  ASSERT_TRUE(PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kStop); }));
  // A second press finds the port open and does nothing.
  auto port = state.PortHandle;
  state.Queue.Send(core::MakeMessage(core::kWmHotKey, core::kFirstHotKey));
  EXPECT_EQ(state.PortHandle, port);
}

TEST_F(ProgramAutomation, StopDuringAScanRestoresTheLineSetting) {
  state.Port.SelectedPort = u"VSP0:";
  state.Port.SelectedBaud = 1200;
  state.Port.Parity = u"Even";
  state.Psm = {1, 1, 1, 1, 1, 1, 0};
  core::PublishSettings(state);
  const int start = core::strip::kPsmStrip + core::strip::kPsmStart;
  state.Queue.Send(core::MakeMessage(core::kWmStripCommand, start));
  EXPECT_FALSE(state.Screen.IsButtonEnabled(start));
  // The first combination is the current setting (PortScanTable), the second has Mark parity.
  ASSERT_TRUE(PumpUntil([&] { return state.PortOpen && state.Port.SelectedBaud == 1200; }));
  ASSERT_TRUE(PumpUntil([&] { return state.Port.Parity == u"Mark"; }));
  state.Queue.Send(core::MakeMessage(core::kWmStripCommand, core::strip::kPsmStrip + core::strip::kPsmStop));
  // START comes back once the thread has put the setting back and stopped.
  ASSERT_TRUE(PumpUntil([&] { return state.PsmThread->HasEnded() && state.Screen.IsButtonEnabled(start); }));
  EXPECT_EQ(state.PsmOutcome, kScanStopped);
  EXPECT_FALSE(state.PortOpen);
  EXPECT_EQ(state.Port.SelectedBaud, 1200u);
  EXPECT_EQ(state.Port.Parity, u"Even");
  EXPECT_EQ(state.Port.SelectedDataBits, 8);
  EXPECT_TRUE(core::SettingsArePublished(state));
  EXPECT_FALSE(state.PortScanMode);
}

// wavetrace-cli in a fresh configuration folder of this release (the registry
// is written before the program starts).
struct CliRun : testing::TempFolder, testing::Child {
  CliRun(const std::string& registry, const std::vector<std::string>& args)
      : Child((testing::WriteRegistry(Path(), registry), args), Path()) {}
};

TEST(HeadlessScript, LoadsOpensSendsStopsAndExits) {
  platform::PtyPair device;
  ASSERT_TRUE(device.Valid());
  testing::TempFolder scripts;
  std::ofstream(scripts.Path() + "/port.cfg.txt")
      << "[Wavetrace Pro]\r\nConfigFile=1\r\n[COMMs]\r\nSelectedPort=" << device.SlavePath()
      << "\r\nSelectedBaud=115200\r\n; 64 bytes at least\r\n";
  std::ofstream(scripts.Path() + "/run.txt")
      << "<COMMENT>start</COMMENT>\r\n<CONFIG>" << scripts.Path()
      << "/port.cfg.txt</CONFIG>\r\n<PLAY></PLAY>\r\n<SEND>one[0D][0A]</SEND>\r\n<send>two[0D][0A]</send>\r\n"
         "<DELAY>300</DELAY>\r\n<STOP></STOP>\r\n<EXITPROGRAM></EXITPROGRAM>\r\n<SEND>never</SEND>";
  CliRun run("", {"--script", scripts.Path() + "/run.txt", "--debug"});
  EXPECT_EQ(device.Read(12, 20000), "one\r\ntwo\r\n");
  EXPECT_EQ(run.WaitForExit(20000), 0) << run.Err();
  EXPECT_NE(run.Out().find("\r\nFound pair:\r\n <COMMENT></COMMENT>\r\nstart\r\n"), std::string::npos)
      << run.Out();
  EXPECT_EQ(run.Out().find("[END]"), std::string::npos);  // EXITPROGRAM: no end banner
}

TEST(HeadlessScript, UnreadableScriptsEndTheRunAndExitAfterScriptEndsAtTheBanner) {
  testing::TempFolder scripts;
  std::ofstream(scripts.Path() + "/empty.txt");
  std::ofstream(scripts.Path() + "/note.txt") << "<COMMENT>note</COMMENT>";
  // A missing one takes the same path: StartUp.AutomationModeAndAScriptThatCannotBeRead.
  CliRun empty("", {"--script", scripts.Path() + "/empty.txt"});
  EXPECT_EQ(empty.WaitForExit(), 1);
  EXPECT_EQ(empty.Err(), "Script file automation: init failed... aborting. [" + scripts.Path() +
                             "/empty.txt]: the file is empty\n");
  CliRun run("", {"--exit-after-script", "/SCRIPT::" + scripts.Path() + "/note.txt"});
  EXPECT_EQ(run.WaitForExit(20000), 0) << run.Err();
  // The banner and what follows it: ScriptRunner.CarriesOutCommandsInOrderAndEndsWithTheBanner.
  EXPECT_NE(run.Out().find("Script Automation mode:[END]"), std::string::npos) << run.Out();
}

TEST(HeadlessScan, FindsTheSimulatedDevicesSetting) {
  CliRun run("SimulatedSentenceMs=dword:000000fa\n",
             {"--port", "VSP0:", "--baud", "2400", "--scan", "--scan-interval", "1"});
  EXPECT_EQ(run.WaitForExit(120000), 0) << run.Err();
  EXPECT_NE(run.Out().find("PSM started.\r\n(Total combinations = 9)\r\nScan interval = 1 sec.\r\n"),
            std::string::npos);
  // Readable sentences under the device's own setting, and only there.
  const std::string& out = run.Out();
  const size_t own = out.find("[VSP0:,4800,8,N,1]");
  const size_t next = out.find("\r\n[VSP0:", own);
  EXPECT_LT(out.find("$GPGGA,", own), next) << out;
  EXPECT_TRUE(out.find("$GP") > own && out.rfind("$GP") < next) << out;
  for (const char* other : {"[VSP0:,2400,8,N,1]", "[VSP0:,9600,8,N,1]", "[VSP0:,115200,8,N,1]"})
    EXPECT_NE(out.find(other), std::string::npos) << other;
}

}  // namespace
}  // namespace wavetrace::automation
