// PLAY, SEND and STOP through the running program, over pseudo-terminals and
// on the simulated device: data into the receive window, escapes and the
// postamble, repeat runs, the history, files, the device going away.
#include <gtest/gtest.h>

#include "app/transmit_options.h"
#include "cli_child.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/port.h"
#include "serial/simulated_device.h"
#include "serial/tx_thread.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;
namespace cmd = core::cmd;

// The step boundary of the repeat pause (its other rows, shared with a script's DELAY:
// ScriptRunner.DelaysInWholeStepsAboveOneHundredMilliseconds; the file chunks: TransmitTest's files).
TEST(TransmitArithmetic, ARepeatPauseOfAHundredMillisecondsIsOneStep) {
  for (auto [delay, steps, single] : {std::tuple{100u, 1, 0}, {99u, 0, 99}}) {
    RepeatPause p = RepeatPauseOf(delay);
    EXPECT_EQ(std::pair(p.Steps, p.SingleSleepMs), std::pair(steps, single)) << delay;
  }
}

class PortProgramTest : public testing::ProgramFixture {
 protected:
  // Sentences five times a second keep the simulated device's tests short.
  [[nodiscard]] std::string ExtraRegistry() const override { return "SimulatedSentenceMs=dword:000000c8\n"; }
  bool Play(const std::u16string& port, uint32_t baud = 9600) {
    state.Port.SelectedPort = port;
    state.Port.SelectedBaud = baud;
    state.Screen.RxClear();
    state.Queue.SendCommand(cmd::kPlay);
    return PumpUntil([&] { return state.Screen.Status() == u"Port opened!  Send/Receive active..."; });
  }
  bool Play(const platform::PtyPair& device) {
    return device.Valid() && Play(core::Utf8ToWide(device.SlavePath()));
  }
  // Waits until the port is closed and nothing is being sent.
  bool Closed() {
    return PumpUntil(
        [&] { return state.Screen.IsButtonEnabled(cmd::kPlay) && !state.PortOpen && !state.TxActive; });
  }
  bool Stop() {
    state.Queue.SendCommand(cmd::kStop);
    return Closed();
  }
  // Types the text and presses SEND; waits for the send to finish unless told not to.
  bool Send(const std::u16string& text, bool wait = true) {
    state.Screen.SetTxText(text);
    state.Queue.SendCommand(cmd::kSend);
    return !wait || PumpUntil([&] { return !state.TxActive && state.Screen.TxEnabled(); });
  }
  void SetOptions(const std::function<void(app::TransmitOptionValues&)>& change) {
    app::TransmitOptionValues options = app::TransmitOptionsOf(state);
    change(options);
    app::ApplyTransmitOptions(state, options);
  }
  // A file in the test's folder, as the transmit field names it.
  std::u16string File(const std::string& name, const std::string& bytes) {
    std::ofstream(folder.Path() + "/" + name, std::ios::binary) << bytes;
    return u"[File::" + core::Utf8ToWide(folder.Path() + "/" + name) + u"]";
  }
  // Whether another program could open the device now.
  static bool Free(const platform::PtyPair& device) {
    platform::SysResult failure;
    bool opened = platform::OpenTermiosPort(device.SlavePath(), failure) != nullptr;
    EXPECT_TRUE(opened || platform::IsDeviceBusyOrGone(failure));
    return opened;
  }
  size_t Count(const std::string& text) {
    return testing::Count(core::WideToBytes(state.Screen.RxText()), text);
  }

  platform::PtyPair pty;
};
using ReceivePathTest = PortProgramTest;
using TransmitTest = PortProgramTest;
using SimulatedPortTest = PortProgramTest;

TEST_F(ReceivePathTest, AFailedOpenThenABurstWholeAndInOrderStopWhileDataFlowsAndTheDeviceGoingAway) {
  state.Port.SelectedPort = u"/dev/does-not-exist-wavetrace";
  // (Its status line with the system's code:
  // Headless.AnUnknownOptionEndsWithTwoWithoutStartingAPortThatFailsAtStartWithOne.)
  state.Queue.SendCommand(cmd::kPlay);
  EXPECT_TRUE(state.Screen.IsButtonEnabled(cmd::kPlay));
  EXPECT_FALSE(state.PlayFlag);

  // The thread was never resumed: a good port opens after that, and no other program can take it meanwhile.
  // (PLAY and STOP's buttons: PortConnection in the Qt tests.)
  ASSERT_TRUE(Play(pty));
  EXPECT_TRUE(state.Screen.IsMenuItemGrey(cmd::kConfigLoad));
  EXPECT_EQ(state.Screen.TrayState(), 2);
  EXPECT_FALSE(Free(pty));
  std::string burst;
  for (int i = 0; i < 12000; ++i) burst += static_cast<char>('A' + i % 26);
  ASSERT_TRUE(pty.Write(burst));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= burst.size(); }));
  EXPECT_EQ(core::WideToBytes(state.Screen.RxText()), burst);

  // STOP while data flows; nothing more arrives once closed. (STOP's status line and buttons:
  // PortConnection in the Qt tests.)
  std::atomic<bool> sending{true};
  std::thread device([&] {
    while (sending) {
      pty.Write(std::string(512, 'x'));
      std::this_thread::sleep_for(1ms);
    }
  });
  std::this_thread::sleep_for(100ms);
  EXPECT_TRUE(Stop());
  sending = false;
  device.join();
  program.PumpUntil([] { return false; }, 450ms);
  const size_t shown = state.Screen.RxText().size();
  program.PumpUntil([] { return false; }, 450ms);
  EXPECT_EQ(state.Screen.RxText().size(), shown);
  EXPECT_TRUE(state.Screen.IsMenuItemGrey(cmd::kConfigLoad));  // stays grey
  EXPECT_EQ(state.Screen.TrayState(), 1);
  EXPECT_TRUE(Free(pty));

  // The device going away closes the port; PLAY works again on another.
  ASSERT_TRUE(Play(pty));
  pty.CloseMaster();
  EXPECT_TRUE(Closed());
  EXPECT_EQ(state.Screen.Status(), u"Port closed!  The device went away.");
  platform::PtyPair again;
  ASSERT_TRUE(Play(again));
  ASSERT_TRUE(again.Write("back"));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"back") != std::u16string::npos; }));
}

TEST_F(TransmitTest, EscapesThePostambleTheHistoryOfThreeRepeatRunsFilesAndStop) {
  ASSERT_TRUE(Play(pty));
  SetOptions([](auto& o) { o.PostambleKeysTX = u"[0A]"; });
  ASSERT_TRUE(Send(u"AT[0D][00]x"));
  EXPECT_EQ(pty.Read(6, 2000), std::string("AT\r\0x\n", 6));
  EXPECT_EQ(state.Screen.Status(), core::BytesToWide(std::string("AT\r\0x\n", 6)));
  EXPECT_EQ(state.Screen.TxHistory(), std::vector<std::u16string>{u"AT[0D][00]x"});

  // An empty field sends nothing.
  state.Screen.SetStatus(u"before");
  ASSERT_TRUE(Send(u""));
  EXPECT_EQ(pty.Read(1, 300), "");
  EXPECT_EQ(state.Screen.Status(), u"before");
  EXPECT_TRUE(state.Screen.TxEnabled() && state.Screen.IsButtonEnabled(cmd::kSend));

  for (const char16_t* text : {u"one", u"two", u"two", u"three", u"four"}) ASSERT_TRUE(Send(text));
  EXPECT_EQ(state.Screen.TxHistory(), (std::vector<std::u16string>{u"two", u"three", u"four"}));
  EXPECT_EQ(pty.Read(24, 2000), "one\ntwo\ntwo\nthree\nfour\n");

  // Repeat runs (without the postamble from here on).
  SetOptions([](auto& o) { o.PostambleKeysTX.clear(); });
  SetOptions([](auto& o) { o.TxRepeatNum = 3, o.TxRepeatDelay = 50; });
  state.Queue.SendCommand(cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send activated.");
  EXPECT_TRUE(state.Screen.IsButtonPressed(cmd::kRepeat));
  ASSERT_TRUE(Send(u"ping"));
  EXPECT_EQ(pty.Read(12, 2000), "pingpingping");
  EXPECT_EQ(pty.Read(1, 300), "");

  // Without end until STOP, which ends it at the next step.
  SetOptions([](auto& o) { o.TxRepeatNum = 0, o.TxRepeatDelay = 100; });
  Send(u"x", false);
  EXPECT_EQ(pty.Read(3, 3000), "xxx");
  // SEND stays enabled during the run; pressing it leaves a resume behind
  // that the thread only takes after STOP, with no port.
  ASSERT_TRUE(state.Screen.IsButtonEnabled(cmd::kSend));
  state.Queue.SendCommand(cmd::kSend);
  EXPECT_TRUE(Stop());
  state.Queue.SendCommand(cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send deactivated.");

  // The transmit thread is still there for the next connection (once it has
  // finished the run's last pause and parked).
  ASSERT_TRUE(PumpUntil([&] { return state.TxThread->IsParked() || state.TxThread->HasEnded(); }));
  ASSERT_FALSE(state.TxThread->HasEnded());
  ASSERT_TRUE(Play(pty));
  ASSERT_TRUE(Send(u"again"));
  EXPECT_EQ(pty.Read(5, 2000), "again");
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);

  // Files.
  state.Screen.SetEventsEnabled(true);
  auto shown = [&](const std::u16string& prefix) {
    std::vector<std::u16string> texts;
    for (const auto& e : state.Screen.TakeEvents())
      if (e.Type == core::ScreenEvent::Kind::kStatus && e.Text.rfind(prefix, 0) == 0) texts.push_back(e.Text);
    return texts;
  };
  std::string bytes;
  for (size_t i = 0; i < 600; ++i) bytes += static_cast<char>(i % 253 + 1);
  // Size, whole file, bytes that arrive, progress shown: chunks of 192 bytes,
  // a tail behind a single chunk sent only with "whole file", behind several always.
  using Case = std::tuple<size_t, bool, size_t, std::vector<std::u16string>>;
  for (const auto& [size, whole, arrives, progress] :
       {Case{100, false, 100, {u"Sent: 100%"}}, Case{288, false, 192, {u"Sent: 100%"}},
        Case{288, true, 288, {u"Sent: 100%", u"Sent: 100%"}},
        Case{600, false, 600, {u"Sent: 25%", u"Sent: 50%", u"Sent: 75%", u"Sent: 100%"}}}) {
    SetOptions([whole = whole](auto& o) { o.TxSendWholeFile = whole ? 1 : 0; });
    shown(u"");
    ASSERT_TRUE(Send(File("f" + std::to_string(size) + ".bin", bytes.substr(0, size))));
    EXPECT_EQ(pty.Read(arrives, 3000), bytes.substr(0, arrives)) << size;
    EXPECT_EQ(pty.Read(1, 200), "") << size;
    EXPECT_EQ(shown(u"Sent: "), progress) << size;
  }
  const std::u16string empty = File("empty.bin", "");
  ASSERT_TRUE(Send(empty));
  EXPECT_EQ(shown(u"Empty file. "), std::vector<std::u16string>{u"Empty file. "});
  EXPECT_EQ(pty.Read(1, 200), "");

  // A missing file says so with the system's code; nothing is sent or kept.
  ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(folder.Path()) + u"/missing.bin]"));
  EXPECT_EQ(state.Screen.Status().rfind(u"Error opening file. Verify it exists. : Error code=2", 0), 0u);
  auto history = state.Screen.TxHistory();
  EXPECT_EQ(history.size(), 3u);
  EXPECT_EQ(history.back(), empty);

  // STOP during a file ends it quietly.
  Send(File("long.bin", std::string(192 * 40, 'x')), false);  // some ten seconds at 9600 baud
  EXPECT_EQ(pty.Read(192 * 2, 3000).size(), 192u * 2);
  EXPECT_TRUE(Stop());
  EXPECT_LT(pty.Read(192 * 40, 500).size(), 192u * 36);
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);
}

// The simulated device on VSP0 (found there by discovery: see
// DiscoveryTest.KindsOfDevicesAndTheirNames), at its 4800,8,N,1.
TEST_F(SimulatedPortTest, ReadExactlyWithItsSettingEchoesPacesAFileAndSurvivesManyOpens) {
  EXPECT_EQ(state.Simulated.SimulatedSentenceMs, 200);
  ASSERT_TRUE(Play(u"VSP0:", 4800));
  std::u16string expected = core::BytesToWide(SimulatedSentences(0) + SimulatedSentences(1));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= expected.size(); }));
  EXPECT_EQ(state.Screen.RxText().substr(0, expected.size()), expected);
  // It echoes lines sent through the transmit path that are no AT command
  // (those it answers: below).
  ASSERT_TRUE(Send(u"hello[0D]"));
  EXPECT_TRUE(PumpUntil([&] { return Count("hello\r\n") == 1; }));
  // A file is paced by the line: five chunks of 96 bytes: a second of line time at 4800 baud, where
  // writing them takes a quarter of that.
  std::string text;
  for (int i = 0; i < 48; ++i) text += "ATI" + std::to_string(100000 + i) + "\r";
  ASSERT_TRUE(Send(File("commands.txt", text)));
  // The transfer ended only once the line had carried the file.
  EXPECT_TRUE(CurrentPort(state)->DrainOutput(0));
  EXPECT_TRUE(PumpUntil([&] { return Count("OK\r\n") == 48; }));

  // It survives many opens and closes, and an exit while open at another line setting (that this reads
  // garbage: UartModel and HeadlessScan).
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(Stop()) << i;
    ASSERT_TRUE(Play(u"VSP0:", 4800)) << i;
  }
  ASSERT_TRUE(Stop());
  ASSERT_TRUE(Play(u"VSP0:", 9600));
}

}  // namespace
}  // namespace wavetrace::serial
