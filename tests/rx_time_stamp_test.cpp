#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/search_replace.h"
#include "rx/time_stamp.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {
namespace {

using Stamp = std::array<uint8_t, core::LogSettings::kTimeStampBytes>;

std::string StampText(const Stamp& stamp) {
  return std::string(stamp.begin(), std::find(stamp.begin(), stamp.end(), uint8_t{0}));
}

platform::LocalTime At(int hour, int minute, int second) {
  platform::LocalTime time;
  time.Year = 2026;
  time.Month = 11;
  time.Day = 5;
  time.Hour = hour;
  time.Minute = minute;
  time.Second = second;
  return time;
}

TEST(FormatTimeStampTest, DateAndTimeFormats) {
  const struct {
    int32_t date;
    int32_t time;
    char delimiter;
    std::string expected;
  } cases[] = {
      {1, 6, ',', "05/11/2026,17:08:37"},
      {2, 6, ',', "11/05/2026,17:08:37"},
      {3, 5, ';', "2026/11/05;17:08"},
      {1, 5, '\t', "05/11/2026\t17:08"},
      {2, 6, ' ', "11/05/2026 17:08:37"},
      {4, 6, ',', "17:08:37"},
      {3, 7, ',', "2026/11/05"},
      {4, 7, ',', ""},
      // A value outside the tables is an empty part; the delimiter still
      // stands unless the other part is switched off.
      {0, 6, ',', ",17:08:37"},
      {1, 9, ',', "05/11/2026,"},
      {9, 7, ',', ""},
  };
  for (const auto& c : cases) {
    core::LogSettings log;
    log.DateFormat = c.date;
    log.TimeFormat = c.time;
    log.Delimiter = {static_cast<uint8_t>(c.delimiter), 0};
    Stamp stamp;
    stamp.fill(0xAA);
    FormatTimeStamp(log, At(17, 8, 37), stamp);
    EXPECT_EQ(StampText(stamp), c.expected) << c.date << " " << c.time;
    EXPECT_TRUE(std::all_of(stamp.begin() + static_cast<long>(c.expected.size()), stamp.end(), [](uint8_t b) {
      return b == 0;
    })) << "the stamp is zero-filled behind its text";
  }
}

TEST(FormatTimeStampTest, PadsSmallFieldsAndFitsLargeYears) {
  core::LogSettings log;
  platform::LocalTime time = At(1, 2, 3);
  time.Day = 4;
  time.Month = 5;
  time.Year = 987654321;
  Stamp stamp{};
  FormatTimeStamp(log, time, stamp);
  EXPECT_EQ(StampText(stamp), "04/05/987654321,01:02:03");
  EXPECT_EQ(stamp.back(), 0);
}

TEST(BuildTimeStampTest, SameSecondLeavesCurrentAndPreviousEqual) {
  core::AppState state;
  state.Log.DateFormat = 4;
  state.Log.TimeFormat = 6;
  BuildTimeStamp(state, At(17, 8, 37));
  BuildTimeStamp(state, At(17, 8, 37));
  EXPECT_EQ(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);

  BuildTimeStamp(state, At(17, 8, 38));
  EXPECT_NE(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);
  EXPECT_EQ(StampText(state.Log.PreviousTimeStamp), "17:08:37");
  EXPECT_EQ(StampText(state.Log.CurrentTimeStamp), "17:08:38");

  // With minutes only, the next second does not move the text.
  state.Log.TimeFormat = 5;
  BuildTimeStamp(state, At(17, 8, 39));
  BuildTimeStamp(state, At(17, 8, 40));
  EXPECT_EQ(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);
}

TEST(BuildTimeStampTest, ReadsTheClock) {
  core::AppState state;
  BuildTimeStamp(state);
  const std::string stamp = StampText(state.Log.CurrentTimeStamp);
  ASSERT_EQ(stamp.size(), 19u) << stamp;
  EXPECT_EQ(stamp[2], '/');
  EXPECT_EQ(stamp[10], ',');
  EXPECT_EQ(stamp[13], ':');
}

class StampedRuleTest : public ::testing::Test {
 protected:
  std::string Run(const std::u16string& replaceText, const std::string& input) {
    state_.Data.SnR_count = 1;
    core::SnRRule& rule = state_.Data.SnR[1];
    rule.wcszReplaceWith = replaceText;
    rule.SearchBytes = {'\n'};
    rule.SearchLength = 1;
    core::DataBlock block;
    EXPECT_EQ(core::AllocCharBuffer(state_, block.Buffer, static_cast<int64_t>(input.size())), 0);
    std::copy(input.begin(), input.end(), block.Buffer.Data());
    block.Length = static_cast<uint32_t>(input.size());
    EXPECT_TRUE(SearchAndReplace(state_, block));
    return std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length);
  }
  std::string Stamp() const { return StampText(state_.Log.CurrentTimeStamp); }

  core::AppState state_;
};

TEST_F(StampedRuleTest, TokenBecomesTheStampAtEachMatch) {
  state_.Log.DateFormat = 3;
  state_.Log.TimeFormat = 7;  // a date only, so two matches share the same text
  const std::string result = Run(u"T={TIME_STAMP};", "a\nb\n");
  EXPECT_EQ(result, "aT=" + Stamp() + ";bT=" + Stamp() + ";");
  EXPECT_EQ(Stamp().size(), 10u);
}

TEST_F(StampedRuleTest, OnlyTheFirstTokenIsReplaced) {
  const std::string result = Run(u"{TIME_STAMP}{TIME_STAMP}", "\n");
  EXPECT_EQ(result, Stamp() + "{TIME_STAMP}");
}

TEST_F(StampedRuleTest, EmptyStampLeavesTheRest) {
  state_.Log.DateFormat = 4;
  state_.Log.TimeFormat = 7;
  EXPECT_EQ(Run(u"<{TIME_STAMP}>", "x\ny"), "x<>y");
}

TEST_F(StampedRuleTest, EscapesAreParsedAfterTheStampIsIn) {
  state_.Log.DateFormat = 4;
  state_.Log.TimeFormat = 5;
  const std::string result = Run(u"[0D]{TIME_STAMP}[09]", "\n");
  EXPECT_EQ(result, "\r" + Stamp() + "\t");
}

TEST_F(StampedRuleTest, RebuiltReplacementIsCutAt41Bytes) {
  state_.Log.DateFormat = 1;
  state_.Log.TimeFormat = 6;
  const std::u16string text = std::u16string(29, u'x') + u"{TIME_STAMP}";
  const std::string result = Run(text, "\n");
  EXPECT_EQ(result, std::string(29, 'x') + Stamp().substr(0, 12));
  EXPECT_EQ(state_.Data.SnR[1].ReplaceLength, 41);
  EXPECT_EQ(state_.Data.SnR[1].ReplaceBytes[41], 0);
}

}  // namespace
}  // namespace wavetrace::rx
