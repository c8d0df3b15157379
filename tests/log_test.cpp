// Log records, file names and paths, size texts and the interval recorder.
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "core/code_page.h"
#include "log/interval_recording.h"
#include "log/log_names.h"
#include "log/log_record.h"
#include "log/record_command.h"

namespace wavetrace::log {
namespace {

TEST(LogRecordTest, ReceiveAndTransmitLayouts) {
  struct Case {
    const char* name;
    RecordFormat format;
    StampPair stamps;
    std::string received;
    std::string transmitted;
  };
  const Case cases[] = {
      {"stamp only, hh:mm",
       {1, 0, 0, 5, ','},
       {"05/11/2026,17:08", ""},
       "\r\n05/11/2026,17:08, OK",
       "\r\n05/11/2026,17:08,Tx,OK"},
      {"tags with a comma", {0, 1, 0, 5, ','}, {"17:08", "17:08"}, "\r\n,Rx,, OK", "\r\n,Tx,OK"},
      {"tags with a tab", {1, 1, 0, 5, '\t'}, {"17:08", ""}, "\r\n17:08\tRx\t\t OK", "\r\n17:08\tTx\tOK"},
      {"tags with a semicolon", {1, 1, 0, 5, ';'}, {"17:08", ""}, "\r\n17:08;Rx;; OK", "\r\n17:08;Tx;OK"},
      {"tags with a blank", {1, 1, 0, 5, ' '}, {"17:08", ""}, "\r\n17:08 Rx   OK", "\r\n17:08 Tx OK"},
      {"no line break", {1, 1, 1, 5, ','}, {"17:08", ""}, "17:08,Rx,, OK", "17:08,Tx,OK"},
      // hh:mm:ss within one second: the line goes on, the tag is repeated.
      {"same second", {1, 1, 0, 6, ','}, {"17:08:37", "17:08:37"}, ",Rx,OK", "\r\n,Tx,OK"},
      {"same second, no tag", {1, 0, 0, 6, ','}, {"17:08:37", "17:08:37"}, "OK", "\r\n,Tx,OK"},
      {"next second", {1, 0, 0, 6, ','}, {"17:08:38", "17:08:37"}, "\r\n17:08:38, OK", "\r\n17:08:38,Tx,OK"},
      // Milliseconds never continue a line.
      {"milliseconds",
       {1, 0, 0, 8, ','},
       {"17:08:37.120", "17:08:37.120"},
       "\r\n17:08:37.120, OK",
       "\r\n17:08:37.120,Tx,OK"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ReceiveRecord(c.format, c.stamps, "OK"), c.received);
    EXPECT_EQ(TransmitRecord(c.format, c.stamps, "OK"), c.transmitted);
  }
  EXPECT_FALSE(ReceiveRecordIsFramed({0, 0, 1, 6, ','}));
  EXPECT_TRUE(ReceiveRecordIsFramed({0, 1, 0, 6, ','}));
  // Zero bytes in the data stay in the record.
  EXPECT_EQ(ReceiveRecord({1, 0, 0, 5, ','}, {"x", ""}, std::string_view("A\0B", 3)),
            std::string("\r\nx, A\0B", 8));
}

TEST(LogNamesTest, AutomaticNamesFollowTheDateFormat) {
  platform::LocalTime now{2026, 11, 4, 5, 17, 8, 37, 0};
  const std::pair<int, const char16_t*> cases[] = {{1, u"05-11-2026-t1708.log.txt"},
                                                   {2, u"11-05-2026-t1708.log.txt"},
                                                   {3, u"2026-11-05-t1708.log.txt"},
                                                   {4, u"05-11-2026-t1708.log.txt"}};
  for (auto [format, name] : cases) {
    core::LogSettings log;
    log.DateFormat = format;
    AutoNameLogFile(log, now);
    EXPECT_EQ(log.wszLogFile, name) << format;
  }
}

TEST(LogNamesTest, SplitLogPath) {
  std::u16string docs = DocumentsDir();
  ASSERT_EQ(docs.back(), u'/');
  struct Case {
    std::u16string path, dir, file;
  };
  const Case cases[] = {
      {u"/var/log/run.csv", u"/var/log/", u"run.csv"},
      {u"run.csv", docs, u"run.csv"},
      {u"/a/b/c/", u"/a/b/c/", u""},  // an automatic name follows
      {u"rel/dir/x.txt", u"rel/dir/", u"x.txt"},
  };
  for (const Case& c : cases) {
    core::LogSettings log;
    SplitLogPath(log, c.path);
    EXPECT_EQ(log.wszLogDir, c.dir);
    if (c.file.empty()) {
      EXPECT_NE(log.wszLogFile.find(u".log.txt"), std::u16string::npos);
    } else {
      EXPECT_EQ(log.wszLogFile, c.file);
    }
    EXPECT_EQ(LogPath(log), log.wszLogDir + log.wszLogFile);
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
  struct Change {
    uint32_t at;
    bool open;
    bool operator==(const Change&) const = default;
  };
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
    std::vector<FakeClock::Change> changes;
  };
  const Case cases[] = {
      {"one second in ten", 10, 1, 0, {{10000, true}, {11000, false}, {20000, true}, {21000, false}}},
      {"across the wrap", 10, 1, 0xFFFFF000u, {{10000, true}, {11000, false}, {20000, true}, {21000, false}}},
      // Equal interval and duration: the flag is clear only for an instant.
      {"continuous", 3, 3, 0, {{3000, true}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    core::AppState state;
    state.Log.RecordALL = 0;
    state.Log.RecordInterval = c.interval;
    state.Log.RecordDuration = c.duration;
    core::PublishSettings(state);
    state.RecordFlag = true;
    state.PortOpen = true;
    FakeClock clock(state, c.start, 25000);
    LogIntervalThread(state, clock);
    EXPECT_EQ(clock.changes, c.changes);
  }
}

TEST(IntervalRecordingTest, RecordOffEndsTheWaitAndRecordAllLeavesTheFlagAlone) {
  core::AppState state;
  state.Log.RecordALL = 0;
  core::PublishSettings(state);
  state.RecordFlag = true;
  state.PortOpen = true;
  FakeClock clock(state, 0, 60000);
  clock.recordOffAt = 10500;  // within the first window
  LogIntervalThread(state, clock);
  EXPECT_EQ(clock.changes, (std::vector<FakeClock::Change>{{10000, true}, {10500, false}}));
  EXPECT_FALSE(state.LogOpen);

  core::AppState all;  // RecordALL 1: RECORD itself opened the log
  all.RecordFlag = true;
  all.PortOpen = true;
  all.LogOpen = true;
  FakeClock idle(all, 0, 5000);
  LogIntervalThread(all, idle);
  EXPECT_TRUE(all.LogOpen);
}

}  // namespace
}  // namespace wavetrace::log
