// Log records, file names and paths, size texts, the interval recorder and the
// rules of the Logging page and its advanced sheet;
// then recording end to end over pseudo-terminals: RECORD on, data in, RECORD
// off; a device that refuses writes; a fast stream with "Never drop log data".
#include <gtest/gtest.h>

#include <mutex>
#include <optional>
#include <random>
#include <thread>
#include <vector>

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "log/interval_recording.h"
#include "log/log_names.h"
#include "log/log_page.h"
#include "log/log_record.h"
#include "log/record_command.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "program_fixture.h"

namespace wavetrace::log {
namespace {

TEST(LogRecordTest, ReceiveAndTransmitLayouts) {
  struct Case {
    const char* name;
    RecordFormat format;
    StampPair stamps;
    std::string received, transmitted;
  };
  const Case cases[] = {
      // Only hh:mm:ss continues a line.
      {"stamp only, hh:mm", {1, 0, 0, 5, ','}, {"17:08", "17:08"}, "\r\n17:08, OK", "\r\n17:08,Tx,OK"},
      {"tags with a comma", {0, 1, 0, 5, ','}, {"17:08", "17:08"}, "\r\n,Rx,, OK", "\r\n,Tx,OK"},
      {"tags with a tab", {1, 1, 0, 5, '\t'}, {"17:08", ""}, "\r\n17:08\tRx\t\t OK", "\r\n17:08\tTx\tOK"},
      {"no line break", {1, 1, 1, 5, ','}, {"17:08", ""}, "17:08,Rx,, OK", "17:08,Tx,OK"},
      // hh:mm:ss within one second: the line goes on, the tag is repeated.
      {"same second", {1, 1, 0, 6, ','}, {"17:08:37", "17:08:37"}, ",Rx,OK", "\r\n,Tx,OK"},
      {"same second, no tag", {1, 0, 0, 6, ','}, {"17:08:37", "17:08:37"}, "OK", "\r\n,Tx,OK"},
      {"next second", {1, 0, 0, 6, ','}, {"17:08:38", "17:08:37"}, "\r\n17:08:38, OK", "\r\n17:08:38,Tx,OK"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ReceiveRecord(c.format, c.stamps, "OK"), c.received);
    EXPECT_EQ(TransmitRecord(c.format, c.stamps, "OK"), c.transmitted);
  }
  // Zero bytes in the data stay in the record.
  EXPECT_EQ(ReceiveRecord({1, 0, 0, 5, ','}, {"x", ""}, std::string_view("A\0B", 3)),
            std::string("\r\nx, A\0B", 8));
}

TEST(LogNamesTest, AutomaticNamesFollowTheDateFormat) {
  platform::LocalTime now{2026, 11, 4, 5, 17, 8, 37, 0};
  const std::pair<int, const char16_t*> cases[] = {
      {1, u"05-11-2026-t1708.log.txt"}, {2, u"11-05-2026-t1708.log.txt"}, {3, u"2026-11-05-t1708.log.txt"}};
  for (auto [format, name] : cases) {
    core::LogSettings log;
    log.DateFormat = format;
    AutoNameLogFile(log, now);
    EXPECT_EQ(log.wszLogFile, name) << format;
  }
}

TEST(LogNamesTest, SizeTextsUseDecimalUnits) {
  const std::pair<uint64_t, const char16_t*> cases[] = {
      {0, u"[Starting Size: 0 Bytes]"},         {9999, u"[Starting Size: 9999 Bytes]"},
      {10000, u"[Starting Size: 10.00 KB]"},    {12000, u"[Starting Size: 12.00 KB]"},
      {999999, u"[Starting Size: 1000.00 KB]"}, {1000000, u"[Starting Size: 1.00 MB]"}};
  for (auto [size, text] : cases) EXPECT_EQ(SizeText(u"Starting Size", size), text) << size;
}

// A clock that moves only when the recorder sleeps, and notes each change of
// the log-open flag with its time.
class FakeClock final : public IntervalClock {
 public:
  FakeClock(core::AppState& state, uint32_t start, uint32_t endAt)
      : state_(state), now_(start), end_(endAt) {}
  uint32_t Ticks() override { return now_; }
  bool Sleep(int ms) override {
    if (state_.LogOpen != open_) {
      open_ = state_.LogOpen;
      changes.push_back({now_ - start_, open_});
    }
    now_ += static_cast<uint32_t>(ms);
    if (recordOffAt && now_ - start_ >= *recordOffAt) state_.RecordFlag = false;
    return now_ - start_ < end_;
  }
  using Change = std::pair<uint32_t, bool>;  // the time and the new flag
  std::vector<Change> changes;
  std::optional<uint32_t> recordOffAt;

 private:
  core::AppState& state_;
  uint32_t now_;
  uint32_t start_ = now_;
  uint32_t end_;
  bool open_ = false;
};

TEST(IntervalRecordingTest, WindowsOnTheClock) {
  struct Case {
    const char* name;
    int interval, duration;
    uint32_t start;  // the tick count's wrap must not matter
    std::optional<uint32_t> recordOffAt;
    std::vector<FakeClock::Change> changes;
    bool recordAll = false;
  };
  const std::vector<FakeClock::Change> twoWindows = {
      {10000, true}, {11000, false}, {20000, true}, {21000, false}};
  const Case cases[] = {
      {"one second in ten", 10, 1, 0, {}, twoWindows},
      {"across the wrap", 10, 1, 0xFFFFF000u, {}, twoWindows},
      // Equal interval and duration: the flag is clear only for an instant.
      {"continuous", 3, 3, 0, {}, {{3000, true}}},
      // RECORD off ends the wait and closes the log at once.
      {"RECORD off within a window", 10, 1, 0, 10500, {{10000, true}, {10500, false}}},
      // RECORD itself opened the log: the flag stays as it is.
      {"RECORD all data", 10, 1, 0, {}, {{0, true}}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    core::AppState state;
    state.Log.RecordALL = c.recordAll ? 1 : 0;
    state.LogOpen = c.recordAll;
    state.Log.RecordInterval = c.interval;
    state.Log.RecordDuration = c.duration;
    core::PublishSettings(state);
    state.RecordFlag = true;
    state.PortOpen = true;
    FakeClock clock(state, c.start, 25000);
    clock.recordOffAt = c.recordOffAt;
    LogIntervalThread(state, clock);
    EXPECT_EQ(clock.changes, c.changes);
  }
}

// The check boxes, the page's lock while recording and Cancel putting the
// keys back are tested through the page itself (tests/qt/log_dialogs_test).
TEST(LoggingPageTest, PathFieldAutoNameAndTheStampsCancelKeeps) {
  core::AppState state;
  const core::LogSettings opened = LogSettingsBackup(state);
  // The field holds 127 characters; what is typed beyond them is not read.
  std::u16string longPath = u"/" + std::u16string(130, u'd') + u"/run.txt";
  EXPECT_EQ(StoreLogPath(state, longPath), longPath.substr(0, kLogPathFieldChars));
  // A bare name goes to the documents folder (a folder and a name: tests/qt/log_dialogs_test).
  EXPECT_EQ(StoreLogPath(state, u"run.csv"), DocumentsDir() + u"run.csv");
  // A folder alone, and any path by "AutoName", keep the folder and name the file by the date.
  for (auto [store, typed] :
       {std::pair{&StoreLogPath, u"/srv/logs/"}, {&AutoNameLogPath, u"/srv/logs/old.txt"}}) {
    std::u16string named = store(state, typed);
    EXPECT_EQ(named, u"/srv/logs/" + state.Log.wszLogFile);
    EXPECT_TRUE(named.ends_with(u".log.txt")) << core::WideToUtf8(named);
  }
  EXPECT_TRUE(core::SettingsArePublished(state));
  // Cancel leaves the stamps the threads keep.
  state.Log.CurrentTimeStamp[0] = '7';
  RestoreLogSettings(state, opened);
  EXPECT_EQ(state.Log.CurrentTimeStamp[0], '7');
}

TEST(LoggingPageTest, IntervalAndDurationFields) {
  enum Field { kInterval, kDuration };
  struct Case {
    int32_t interval, duration;
    Field field;
    std::u16string text;
    int32_t storedInterval, storedDuration;
    std::optional<std::u16string> intervalText, durationText;
  };
  // The second row: a lower interval lowers the duration.
  const Case cases[] = {
      {10, 1, kInterval, u"0", 10, 1, u"10", {}},         {5, 5, kInterval, u"3", 3, 3, {}, u"3"},
      {10, 4, kInterval, u"12345", 9999, 4, u"9999", {}}, {10, 4, kDuration, u"0", 10, 4, {}, u"4"},
      {10, 4, kDuration, u"12", 10, 10, {}, u"10"},       {10, 4, kDuration, u"7", 10, 7, {}, {}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(core::WideToUtf8(c.text) + (c.field == kInterval ? " in the interval" : " in the duration"));
    core::AppState state;
    state.Log.RecordInterval = c.interval;
    state.Log.RecordDuration = c.duration;
    core::PublishSettings(state);
    RecordFieldTexts rewrite =
        c.field == kInterval ? EditRecordInterval(state, c.text) : EditRecordDuration(state, c.text);
    EXPECT_EQ(state.Log.RecordInterval, c.storedInterval);
    EXPECT_EQ(state.Log.RecordDuration, c.storedDuration);
    EXPECT_EQ(rewrite.Interval, c.intervalText);
    EXPECT_EQ(rewrite.Duration, c.durationText);
    EXPECT_TRUE(core::SettingsArePublished(state));
  }
}

TEST(LoggingPageTest, DelimiterPageStoresItsStagedValues) {
  struct Case {
    uint8_t delimiter;
    std::optional<size_t> shown;
    std::optional<uint8_t> staged;
    uint8_t stored;
  };
  // The last row: no radio checked, the delimiter stays.
  const Case cases[] = {{',', 0, '\t', '\t'}, {' ', 3, ',', ','}, {'|', {}, {}, '|'}};
  for (const Case& c : cases) {
    core::AppState state;
    state.Log.Delimiter = {c.delimiter, 0};
    EXPECT_EQ(DelimiterChoiceOf(c.delimiter), c.shown) << c.delimiter;
    ApplyDelimiterPage(state, c.staged, true);
    EXPECT_EQ(state.Log.Delimiter[0], c.stored);
    EXPECT_EQ(state.PublishedRx.Load()->Stamp.Delimiter, c.stored);
  }
}

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
  std::string FileText(const std::string& path) { return platform::ReadWholeFile(path).value_or(""); }
  // The receive thread keeps the log cache's fields under the receive-data lock.
  template <typename Field>
  Field Locked(const Field& field) {
    std::lock_guard lock(state.RxDataLock);
    return field;
  }

  platform::PtyPair pty;
  std::string logPath = folder.Path() + "/run.log.txt";
};

TEST_F(RecordingTest, RecordOnDataRecordOff) {
  // A folder that is not there leaves RECORD off (the next RECORD turns it on).
  Record(folder.Path() + "/missing/run.txt");
  EXPECT_EQ(state.Screen.Status().rfind(u"Failed to open Log File:\r\n", 0), 0U);
  state.Log.LOGtransmitdata = 1;
  core::PublishSettings(state);
  Record(logPath);
  EXPECT_TRUE(state.Screen.IsButtonPressed(core::cmd::kRecord));
  EXPECT_EQ(state.Screen.Status(), u"RECORD all data, activated.\r\n[" + core::Utf8ToWide(logPath) +
                                       u"]\r\n[Starting Size: 0 Bytes]");
  ASSERT_TRUE(pty.Write("OK"));
  ASSERT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"OK") != std::u16string::npos; }));
  state.Queue.SendCommand(core::cmd::kRecord);
  EXPECT_EQ(FileText(logPath), "\r\n,Rx,, OK");
  EXPECT_EQ(state.Screen.Status(), u"RECORD all data, deactivated.\r\n[LogFile Size: 10 Bytes]\r\n[" +
                                       core::Utf8ToWide(logPath) + u"]");
  // A second recording appends.
  Record(logPath);
  EXPECT_NE(state.Screen.Status().find(u"[Starting Size: 10 Bytes]"), std::u16string::npos);
}

TEST_F(RecordingTest, AFullDeviceIsReportedOnceAndRecordingGoesOn) {
  Record("/dev/full");
  ASSERT_TRUE(state.RecordFlag);
  ASSERT_TRUE(pty.Write("data"));
  ASSERT_TRUE(
      PumpUntil([&] { return Locked(state.DataLogCacheCount) == 0 && Locked(state.LogWriteFailing); }));
  EXPECT_EQ(state.Screen.Status().rfind(u"Error writing to LogFile: /dev/full: Error code=28", 0), 0U);
  core::ShowStatus(state, u"");
  ASSERT_TRUE(pty.Write("more"));
  // The log takes a block before the window shows it.
  ASSERT_TRUE(PumpUntil([&] {
    return state.Screen.RxText().find(u"more") != std::u16string::npos &&
           Locked(state.DataLogCacheCount) == 0;
  }));
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
  for (char& byte : data) {
    // A quarter of the bytes are zero. No CR or LF: the text view swaps LF
    // CR pairs, and the log holds the processed bytes.
    byte = static_cast<char>(random() % 4 == 0 ? 0 : random());
    if (byte == '\n' || byte == '\r') byte = '\v';
  }
  std::thread device([&] { pty.Write(data); });
  bool whole = program.PumpUntil(
      [&] { return FileText(logPath).size() + Locked(state.DataLogCacheCount) >= data.size(); },
      std::chrono::seconds(60));
  device.join();
  state.Queue.SendCommand(core::cmd::kRecord);
  ASSERT_TRUE(whole);
  std::string logged = FileText(logPath);
  ASSERT_EQ(logged.size(), data.size());
  EXPECT_TRUE(logged == data) << "the log holds the stream byte for byte";
}

}  // namespace
}  // namespace wavetrace::log
