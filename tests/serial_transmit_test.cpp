// The transmit path over pseudo-terminals: escapes and postamble, repeat
// runs, the history, and files.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "app/transmit_options.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/file_transmit.h"
#include "serial/port.h"
#include "serial/tx_thread.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;

TEST(TransmitArithmetic, RepeatPauses) {
  struct Case {
    uint32_t delay;
    int steps, single;
  };
  for (const auto& c : {Case{250, 2, 0}, Case{100, 1, 0}, Case{99, 0, 99}, Case{50, 0, 50}, Case{0, 0, 0},
                        Case{1050, 10, 0}}) {
    RepeatPause p = RepeatPauseOf(c.delay);
    EXPECT_EQ(p.Steps, c.steps) << c.delay;
    EXPECT_EQ(p.SingleSleepMs, c.single) << c.delay;
  }
}

TEST(TransmitArithmetic, FileChunks) {
  EXPECT_EQ(FileChunkSize(9600), 192u);
  EXPECT_EQ(FileChunkSize(115200), 2304u);  // (11520 x 200) / 1000
  EXPECT_EQ(FileChunkSize(49), 0u);
  EXPECT_EQ(FileChunkSize(50), 1u);
  struct Case {
    uint64_t size;
    bool whole;
    uint32_t chunk, count, tail;
    bool tailSent;
  };
  const Case cases[] = {
      {100, false, 100, 1, 0, false},  // fits one chunk: one write of the file
      {192, false, 192, 1, 0, false}, {288, false, 192, 1, 96, false},  // 1.5 chunks: the tail is dropped
      {288, true, 192, 1, 96, true},                                    // unless the whole file is asked for
      {576, false, 192, 3, 0, true},  // exactly three chunks, then an empty tail
      {600, false, 192, 3, 24, true},
  };
  for (const auto& c : cases) {
    ChunkPlan plan = PlanFileChunks(c.size, 9600, c.whole);
    EXPECT_EQ(plan.ChunkSize, c.chunk) << c.size;
    EXPECT_EQ(plan.ChunkCount, c.count) << c.size;
    EXPECT_EQ(plan.TailBytes, c.tail) << c.size;
    EXPECT_EQ(plan.TailSent, c.tailSent) << c.size;
  }
  EXPECT_EQ(FileProgressPercent(0, 3), 25);
  EXPECT_EQ(FileProgressPercent(1, 3), 50);
  EXPECT_EQ(FileProgressPercent(2, 3), 75);
  EXPECT_EQ(FileProgressPercent(0, 1), 100);
}

class TransmitTest : public testing::ProgramFixture {
 protected:
  void SetUp() override {
    ProgramFixture::SetUp();
    ASSERT_TRUE(device.Valid());
    state.Port.SelectedPort = core::Utf8ToWide(device.SlavePath());
    state.Port.SelectedBaud = 9600;
    state.Queue.SendCommand(core::cmd::kPlay);
    ASSERT_TRUE(PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kStop); }));
  }
  // Types the text and presses SEND; waits for the send to finish.
  bool Send(const std::u16string& text) {
    state.Screen.SetTxText(text);
    state.Queue.SendCommand(core::cmd::kSend);
    return PumpUntil([&] { return !state.TxActive && state.Screen.TxEnabled(); });
  }
  std::string WriteFile(const std::string& name, size_t size) {
    std::string path = folder.Path() + "/" + name;
    std::string bytes;
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i % 253 + 1);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

  platform::PtyPair device;
};

TEST_F(TransmitTest, EscapesAndThePostambleArriveAsBytes) {
  app::TransmitOptionValues options = app::TransmitOptionsOf(state);
  options.PostambleKeysTX = u"[0A]";
  app::ApplyTransmitOptions(state, options);
  ASSERT_TRUE(Send(u"AT[0D][00]x"));
  EXPECT_EQ(device.Read(6, 2000), std::string("AT\r\0x\n", 6));
  EXPECT_EQ(state.Screen.Status(), core::BytesToWide(std::string("AT\r\0x\n", 6)));
  EXPECT_EQ(state.Screen.TxHistory(), std::vector<std::u16string>{u"AT[0D][00]x"});
}

TEST_F(TransmitTest, AnEmptyFieldSendsNothing) {
  state.Screen.SetStatus(u"before");
  ASSERT_TRUE(Send(u""));
  EXPECT_EQ(device.Read(1, 300), "");
  EXPECT_EQ(state.Screen.Status(), u"before");
  EXPECT_TRUE(state.Screen.TxEnabled());
  EXPECT_TRUE(state.Screen.IsButtonEnabled(core::cmd::kSend));
}

TEST_F(TransmitTest, TheHistoryKeepsThreeAndDropsTheOldest) {
  for (const char16_t* text : {u"one", u"two", u"two", u"three", u"four"}) ASSERT_TRUE(Send(text));
  EXPECT_EQ(state.Screen.TxHistory(), (std::vector<std::u16string>{u"two", u"three", u"four"}));
  state.Queue.SendCommand(core::cmd::kClearSendHistory);
  EXPECT_TRUE(state.Screen.TxHistory().empty());
  ASSERT_TRUE(Send(u"five"));
  EXPECT_EQ(state.Screen.TxHistory(), std::vector<std::u16string>{u"five"});
}

TEST_F(TransmitTest, RepeatRunsAndStop) {
  app::TransmitOptionValues options = app::TransmitOptionsOf(state);
  options.TxRepeatNum = 3;
  options.TxRepeatDelay = 50;
  app::ApplyTransmitOptions(state, options);
  state.Queue.SendCommand(core::cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send activated.");
  EXPECT_TRUE(state.Screen.IsButtonPressed(core::cmd::kRepeat));
  ASSERT_TRUE(Send(u"ping"));
  EXPECT_EQ(device.Read(12, 2000), "pingpingping");
  EXPECT_EQ(device.Read(1, 300), "");

  // Without end until STOP, which ends it at the next step.
  options.TxRepeatNum = 0;
  options.TxRepeatDelay = 100;
  app::ApplyTransmitOptions(state, options);
  state.Screen.SetTxText(u"x");
  state.Queue.SendCommand(core::cmd::kSend);
  EXPECT_EQ(device.Read(3, 3000), "xxx");
  // SEND stays enabled during the run; pressing it leaves a resume behind
  // that the thread only takes after STOP, with no port.
  ASSERT_TRUE(state.Screen.IsButtonEnabled(core::cmd::kSend));
  state.Queue.SendCommand(core::cmd::kSend);
  state.Queue.SendCommand(core::cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return !state.TxActive && state.Screen.IsButtonEnabled(core::cmd::kPlay); }));
  state.Queue.SendCommand(core::cmd::kRepeat);
  EXPECT_EQ(state.Screen.Status(), u"REPEAT Send deactivated.");

  // The transmit thread is still there for the next connection (once it has
  // finished the run's last pause and parked).
  ASSERT_TRUE(PumpUntil([&] { return state.TxThread->IsParked() || state.TxThread->HasEnded(); }));
  ASSERT_FALSE(state.TxThread->HasEnded());
  state.Queue.SendCommand(core::cmd::kPlay);
  ASSERT_TRUE(PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kStop); }));
  ASSERT_TRUE(Send(u"again"));
  EXPECT_EQ(device.Read(5, 2000), "again");
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);
}

TEST_F(TransmitTest, Files) {
  state.Screen.SetEventsEnabled(true);
  auto progress = [&] {
    std::vector<std::u16string> texts;
    for (const auto& e : state.Screen.TakeEvents()) {
      if (e.Type == core::ScreenEvent::Kind::kStatus && e.Text.rfind(u"Sent: ", 0) == 0)
        texts.push_back(e.Text);
    }
    return texts;
  };
  struct Case {
    size_t size;
    bool whole;
    size_t arrives;
    std::vector<std::u16string> shown;
  };
  const Case cases[] = {
      {100, false, 100, {u"Sent: 100%"}},
      {288, false, 192, {u"Sent: 100%"}},
      {288, true, 288, {u"Sent: 100%", u"Sent: 100%"}},
      {576, false, 576, {u"Sent: 25%", u"Sent: 50%", u"Sent: 75%", u"Sent: 100%"}},
  };
  for (const auto& c : cases) {
    app::TransmitOptionValues options = app::TransmitOptionsOf(state);
    options.TxSendWholeFile = c.whole ? 1 : 0;
    app::ApplyTransmitOptions(state, options);
    std::string path = WriteFile("f" + std::to_string(c.size) + ".bin", c.size);
    progress();
    ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(path) + u"]"));
    std::string expected = platform::ReadWholeFile(path).value_or("").substr(0, c.arrives);
    EXPECT_EQ(device.Read(c.arrives, 3000), expected) << c.size;
    EXPECT_EQ(device.Read(1, 200), "") << c.size;
    EXPECT_EQ(progress(), c.shown) << c.size;
  }

  std::string empty = WriteFile("empty.bin", 0);
  state.Screen.TakeEvents();
  ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(empty) + u"]"));
  bool said = false;
  for (const auto& e : state.Screen.TakeEvents()) said |= e.Text == u"Empty file. ";
  EXPECT_TRUE(said);
  EXPECT_EQ(device.Read(1, 200), "");

  // A missing file says so with the system's code; nothing is sent or kept.
  ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(folder.Path()) + u"/missing.bin]"));
  EXPECT_EQ(state.Screen.Status().rfind(u"Error opening file. Verify it exists. : Error code=2", 0), 0u);
  auto history = state.Screen.TxHistory();
  EXPECT_EQ(history.size(), 3u);
  EXPECT_EQ(history.back(), u"[File::" + core::Utf8ToWide(empty) + u"]");
}

TEST_F(TransmitTest, StopDuringAFileEndsItQuietly) {
  std::string path = WriteFile("long.bin", 192 * 40);  // some ten seconds at 9600 baud
  state.Screen.SetTxText(u"[File::" + core::Utf8ToWide(path) + u"]");
  state.Queue.SendCommand(core::cmd::kSend);
  EXPECT_EQ(device.Read(192 * 2, 3000).size(), 192u * 2);
  state.Queue.SendCommand(core::cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return !state.TxActive && state.Screen.IsButtonEnabled(core::cmd::kPlay); }));
  EXPECT_LT(device.Read(192 * 40, 500).size(), 192u * 36);
  EXPECT_EQ(state.Screen.Status().find(u"Error"), std::u16string::npos);
}

}  // namespace
}  // namespace wavetrace::serial
