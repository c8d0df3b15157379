// The transmit path over pseudo-terminals: escapes and postamble, repeat
// runs, the history, and files.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

#include "app/transmit_options.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/file_transmit.h"
#include "serial/port.h"
#include "serial/tx_thread.h"

namespace wavetrace::serial {
namespace {

namespace cmd = core::cmd;

TEST(TransmitArithmetic, RepeatPausesAndFileChunks) {
  for (auto [delay, steps, single] :
       {std::tuple{250u, 2, 0}, {100u, 1, 0}, {99u, 0, 99}, {50u, 0, 50}, {0u, 0, 0}, {1050u, 10, 0}}) {
    RepeatPause p = RepeatPauseOf(delay);
    EXPECT_EQ(std::pair(p.Steps, p.SingleSleepMs), std::pair(steps, single)) << delay;
  }
  // A fifth of a second of line time a chunk. Plans that TransmitTest.Files
  // does not send: exactly one chunk, and a tail behind whole chunks.
  EXPECT_EQ(std::tuple(FileChunkSize(115200), FileChunkSize(49), FileChunkSize(50)),
            std::tuple(2304u, 0u, 1u));
  for (auto [size, count, tail] : {std::tuple{192u, 1u, 0u}, {600u, 3u, 24u}}) {
    ChunkPlan plan = PlanFileChunks(size, 9600, false);
    EXPECT_EQ(std::tuple(plan.ChunkSize, plan.ChunkCount, plan.TailBytes, plan.TailSent),
              std::tuple(192u, count, tail, count > 1))
        << size;
  }
}

class TransmitTest : public testing::ProgramFixture {
 protected:
  void SetUp() override {
    ProgramFixture::SetUp();
    ASSERT_TRUE(device.Valid());
    state.Port.SelectedPort = core::Utf8ToWide(device.SlavePath());
    state.Port.SelectedBaud = 9600;
    ASSERT_TRUE(Play());
  }
  bool Play() {
    state.Queue.SendCommand(cmd::kPlay);
    return PumpUntil([&] { return state.Screen.IsButtonEnabled(cmd::kStop); });
  }
  // Types the text and presses SEND; waits for the send to finish unless told not to.
  bool Send(const std::u16string& text, bool wait = true) {
    state.Screen.SetTxText(text);
    state.Queue.SendCommand(cmd::kSend);
    return !wait || PumpUntil([&] { return !state.TxActive && state.Screen.TxEnabled(); });
  }
  bool Stopped() { return !state.TxActive && state.Screen.IsButtonEnabled(cmd::kPlay); }
  void SetOptions(const std::function<void(app::TransmitOptionValues&)>& change) {
    app::TransmitOptionValues options = app::TransmitOptionsOf(state);
    change(options);
    app::ApplyTransmitOptions(state, options);
  }
  // A file of the size in the test's folder, as the transmit field names it.
  std::u16string File(const std::string& name, size_t size) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i % 253 + 1);
    std::ofstream(folder.Path() + "/" + name, std::ios::binary) << bytes;
    return u"[File::" + core::Utf8ToWide(folder.Path() + "/" + name) + u"]";
  }

  platform::PtyPair device;
};

TEST_F(TransmitTest, EscapesThePostambleAndTheHistoryOfThree) {
  SetOptions([](auto& o) { o.PostambleKeysTX = u"[0A]"; });
  ASSERT_TRUE(Send(u"AT[0D][00]x"));
  EXPECT_EQ(device.Read(6, 2000), std::string("AT\r\0x\n", 6));
  EXPECT_EQ(state.Screen.Status(), core::BytesToWide(std::string("AT\r\0x\n", 6)));
  EXPECT_EQ(state.Screen.TxHistory(), std::vector<std::u16string>{u"AT[0D][00]x"});

  // An empty field sends nothing.
  state.Screen.SetStatus(u"before");
  ASSERT_TRUE(Send(u""));
  EXPECT_EQ(device.Read(1, 300), "");
  EXPECT_EQ(state.Screen.Status(), u"before");
  EXPECT_TRUE(state.Screen.TxEnabled() && state.Screen.IsButtonEnabled(cmd::kSend));

  for (const char16_t* text : {u"one", u"two", u"two", u"three", u"four"}) ASSERT_TRUE(Send(text));
  EXPECT_EQ(state.Screen.TxHistory(), (std::vector<std::u16string>{u"two", u"three", u"four"}));
  state.Queue.SendCommand(cmd::kClearSendHistory);
  ASSERT_TRUE(Send(u"five"));
  EXPECT_EQ(state.Screen.TxHistory(), std::vector<std::u16string>{u"five"});
}

TEST_F(TransmitTest, RepeatRunsAndStop) {
  SetOptions([](auto& o) { o.TxRepeatNum = 3, o.TxRepeatDelay = 50; });
  state.Queue.SendCommand(cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send activated.");
  EXPECT_TRUE(state.Screen.IsButtonPressed(cmd::kRepeat));
  ASSERT_TRUE(Send(u"ping"));
  EXPECT_EQ(device.Read(12, 2000), "pingpingping");
  EXPECT_EQ(device.Read(1, 300), "");

  // Without end until STOP, which ends it at the next step.
  SetOptions([](auto& o) { o.TxRepeatNum = 0, o.TxRepeatDelay = 100; });
  Send(u"x", false);
  EXPECT_EQ(device.Read(3, 3000), "xxx");
  // SEND stays enabled during the run; pressing it leaves a resume behind
  // that the thread only takes after STOP, with no port.
  ASSERT_TRUE(state.Screen.IsButtonEnabled(cmd::kSend));
  state.Queue.SendCommand(cmd::kSend);
  state.Queue.SendCommand(cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return Stopped(); }));
  state.Queue.SendCommand(cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send deactivated.");

  // The transmit thread is still there for the next connection (once it has
  // finished the run's last pause and parked).
  ASSERT_TRUE(PumpUntil([&] { return state.TxThread->IsParked() || state.TxThread->HasEnded(); }));
  ASSERT_FALSE(state.TxThread->HasEnded());
  ASSERT_TRUE(Play());
  ASSERT_TRUE(Send(u"again"));
  EXPECT_EQ(device.Read(5, 2000), "again");
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);
}

TEST_F(TransmitTest, Files) {
  state.Screen.SetEventsEnabled(true);
  auto shown = [&](const std::u16string& prefix) {
    std::vector<std::u16string> texts;
    for (const auto& e : state.Screen.TakeEvents())
      if (e.Type == core::ScreenEvent::Kind::kStatus && e.Text.rfind(prefix, 0) == 0) texts.push_back(e.Text);
    return texts;
  };
  // Size, whole file, bytes that arrive, progress shown.
  using Case = std::tuple<size_t, bool, size_t, std::vector<std::u16string>>;
  for (const auto& [size, whole, arrives, progress] :
       {Case{100, false, 100, {u"Sent: 100%"}}, Case{288, false, 192, {u"Sent: 100%"}},
        Case{288, true, 288, {u"Sent: 100%", u"Sent: 100%"}},
        Case{576, false, 576, {u"Sent: 25%", u"Sent: 50%", u"Sent: 75%", u"Sent: 100%"}}}) {
    SetOptions([whole = whole](auto& o) { o.TxSendWholeFile = whole ? 1 : 0; });
    shown(u"");
    ASSERT_TRUE(Send(File("f" + std::to_string(size) + ".bin", size)));
    std::string bytes;
    for (size_t i = 0; i < arrives; ++i) bytes += static_cast<char>(i % 253 + 1);
    EXPECT_EQ(device.Read(arrives, 3000), bytes) << size;
    EXPECT_EQ(device.Read(1, 200), "") << size;
    EXPECT_EQ(shown(u"Sent: "), progress) << size;
  }
  const std::u16string empty = File("empty.bin", 0);
  ASSERT_TRUE(Send(empty));
  EXPECT_EQ(shown(u"Empty file. "), std::vector<std::u16string>{u"Empty file. "});
  EXPECT_EQ(device.Read(1, 200), "");

  // A missing file says so with the system's code; nothing is sent or kept.
  ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(folder.Path()) + u"/missing.bin]"));
  EXPECT_EQ(state.Screen.Status().rfind(u"Error opening file. Verify it exists. : Error code=2", 0), 0u);
  auto history = state.Screen.TxHistory();
  EXPECT_EQ(history.size(), 3u);
  EXPECT_EQ(history.back(), empty);
}

TEST_F(TransmitTest, StopDuringAFileEndsItQuietly) {
  Send(File("long.bin", 192 * 40), false);  // some ten seconds at 9600 baud
  EXPECT_EQ(device.Read(192 * 2, 3000).size(), 192u * 2);
  state.Queue.SendCommand(cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return Stopped(); }));
  EXPECT_LT(device.Read(192 * 40, 500).size(), 192u * 36);
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);
}

}  // namespace
}  // namespace wavetrace::serial
