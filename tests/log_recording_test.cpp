// Recording end to end over pseudo-terminals: RECORD on, data in, RECORD off;
// a device that refuses writes; a fast stream with "Never drop log data".
#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <random>
#include <thread>

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "program_fixture.h"

namespace wavetrace::log {
namespace {

class RecordingTest : public testing::ProgramFixture {
 protected:
  void SetUp() override {
    ProgramFixture::SetUp();
    ASSERT_TRUE(pty.Valid());
    state.Port.SelectedPort = core::Utf8ToWide(pty.SlavePath());
    state.Queue.SendCommand(core::cmd::kPlay);
    ASSERT_TRUE(PumpUntil([&] { return state.Screen.Status() == u"Port opened!  Send/Receive active..."; }));
  }
  void Record(const std::string& path) {
    state.Log.wszLogDir.clear();
    state.Log.wszLogFile = core::Utf8ToWide(path);
    state.Queue.SendCommand(core::cmd::kRecord);
  }
  std::string FileText(const std::string& path) { return platform::ReadWholeFile(path).value_or("<none>"); }
  // The receive thread fills the cache under the receive-data lock.
  uint32_t CachedBytes() {
    std::lock_guard lock(state.RxDataLock);
    return state.DataLogCacheCount;
  }
  bool WriteFailing() {
    std::lock_guard lock(state.RxDataLock);
    return state.LogWriteFailing;
  }

  platform::PtyPair pty;
  std::string logPath = folder.Path() + "/run.log.txt";
};

TEST_F(RecordingTest, RecordOnDataRecordOff) {
  state.Log.LOGtransmitdata = 1;
  core::PublishSettings(state);
  Record(logPath);
  EXPECT_TRUE(state.RecordFlag);
  EXPECT_TRUE(state.Screen.IsButtonPressed(core::cmd::kRecord));
  EXPECT_EQ(state.Screen.Status(), u"RECORD all data, activated.\r\n[" + core::Utf8ToWide(logPath) +
                                       u"]\r\n[Starting Size: 0 Bytes]");
  ASSERT_TRUE(pty.Write("OK"));
  ASSERT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"OK") != std::u16string::npos; }));
  state.Queue.SendCommand(core::cmd::kRecord);
  EXPECT_FALSE(state.RecordFlag);
  EXPECT_EQ(FileText(logPath), "\r\n,Rx,, OK");
  EXPECT_EQ(state.Screen.Status(), u"RECORD all data, deactivated.\r\n[LogFile Size: 10 Bytes]\r\n[" +
                                       core::Utf8ToWide(logPath) + u"]");
  // A second recording appends.
  Record(logPath);
  EXPECT_NE(state.Screen.Status().find(u"[Starting Size: 10 Bytes]"), std::u16string::npos);
}

TEST_F(RecordingTest, AFolderThatIsNotThereLeavesRecordOff) {
  Record(folder.Path() + "/missing/run.txt");
  EXPECT_FALSE(state.RecordFlag);
  EXPECT_EQ(state.Screen.Status().rfind(u"Failed to open Log File:\r\n", 0), 0U);
}

TEST_F(RecordingTest, AFullDeviceIsReportedOnceAndRecordingGoesOn) {
  Record("/dev/full");
  ASSERT_TRUE(state.RecordFlag);
  for (int flush = 0; flush < 2; ++flush) {
    ASSERT_TRUE(pty.Write("data"));
    ASSERT_TRUE(PumpUntil([&] { return CachedBytes() == 0 && WriteFailing(); }));
  }
  EXPECT_EQ(state.Screen.Status().rfind(u"Error writing to LogFile: /dev/full: Error code=28", 0), 0U);
  core::ShowStatus(state, u"");
  ASSERT_TRUE(pty.Write("more"));
  ASSERT_TRUE(PumpUntil([&] { return CachedBytes() == 0; }));
  EXPECT_EQ(state.Screen.Status(), u"") << "one report per run of failures";
  EXPECT_TRUE(state.RecordFlag);
}

TEST_F(RecordingTest, NeverDropKeepsAFastBinaryStreamWhole) {
  state.Log.NeverDropLogData = 1;
  core::PublishSettings(state);
  Record(logPath);
  ASSERT_TRUE(state.RecordFlag);
  std::string data(32u << 20, '\0');
  std::mt19937 random(7);
  for (size_t i = 0; i < data.size(); i += 4) {
    uint32_t word = random();
    // A quarter of the bytes are zero.
    for (size_t k = 0; k < 4; ++k) data[i + k] = static_cast<char>(k == 0 ? 0 : word >> (8 * k));
  }
  // The text view swaps LF CR pairs; the log holds the processed bytes.
  std::replace_if(
      data.begin(), data.end(), [](char c) { return c == '\n' || c == '\r'; }, '\v');
  std::thread device([&] { pty.Write(data); });
  bool whole = program.PumpUntil(
      [&] {
        auto size = platform::ReadWholeFile(logPath).value_or("").size() + CachedBytes();
        return size >= data.size();
      },
      std::chrono::seconds(60));
  device.join();
  state.Queue.SendCommand(core::cmd::kRecord);
  ASSERT_TRUE(whole);
  std::string logged = FileText(logPath);
  ASSERT_EQ(logged.size(), data.size());
  auto diff = std::mismatch(logged.begin(), logged.end(), data.begin());
  EXPECT_EQ(diff.first, logged.end())
      << "the log holds the stream byte for byte; first difference at " << (diff.first - logged.begin());
}

}  // namespace
}  // namespace wavetrace::log
