#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/replace_rules.h"
#include "rx/search_replace.h"
#include "rx/time_stamp.h"
#include "rx/time_stamp_token.h"

namespace wavetrace::rx {
namespace {

// Stage 2 with the settings as the state holds them.
bool SearchAndReplace(core::AppState& state, core::DataBlock& block) {
  core::SharedAllocator memory(state);
  SharedStampSource stamps(state);
  return rx::SearchAndReplace(core::RxSettingsOf(state), memory, stamps, block);
}

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
  time.Milliseconds = 45;
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
      {1, 8, ',', "05/11/2026,17:08:37.045"},
      // A value outside the tables is an empty part; the delimiter still
      // stands unless the other part is switched off.
      {0, 6, ',', ",17:08:37"},
      {1, 9, ',', "05/11/2026,"},
      {9, 7, ',', ""},
  };
  for (const auto& c : cases) {
    const core::TimeStampFormat format{c.date, c.time, static_cast<uint8_t>(c.delimiter)};
    Stamp stamp;
    stamp.fill(0xAA);
    FormatTimeStamp(format, At(17, 8, 37), stamp);
    EXPECT_EQ(StampText(stamp), c.expected) << c.date << " " << c.time;
    EXPECT_TRUE(std::all_of(stamp.begin() + static_cast<long>(c.expected.size()), stamp.end(), [](uint8_t b) {
      return b == 0;
    })) << "the stamp is zero-filled behind its text";
  }
}

TEST(BuildTimeStampTest, SameSecondLeavesCurrentAndPreviousEqual) {
  core::AppState state;
  core::TimeStampFormat format{4, 6, ','};
  BuildTimeStamp(state, format, At(17, 8, 37));
  BuildTimeStamp(state, format, At(17, 8, 37));
  EXPECT_EQ(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);

  BuildTimeStamp(state, format, At(17, 8, 38));
  EXPECT_NE(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);
  EXPECT_EQ(StampText(state.Log.PreviousTimeStamp), "17:08:37");
  EXPECT_EQ(StampText(state.Log.CurrentTimeStamp), "17:08:38");

  // With minutes only, the next second does not move the text.
  format.TimeFormat = 5;
  BuildTimeStamp(state, format, At(17, 8, 39));
  BuildTimeStamp(state, format, At(17, 8, 40));
  EXPECT_EQ(state.Log.CurrentTimeStamp, state.Log.PreviousTimeStamp);
}

TEST(StampedRuleTest, TokenBecomesTheStampAtEachMatch) {
  // "@" in the expected text stands for the stamp built at the match.
  const struct {
    int32_t date, time;
    std::u16string replace;
    std::string input, expected;
  } cases[] = {
      {3, 7, u"T={TIME_STAMP};", "a\nb\n", "aT=@;bT=@;"},
      {1, 6, u"{TIME_STAMP}{TIME_STAMP}", "\n", "@{TIME_STAMP}"},  // only the first token
      {4, 7, u"<{TIME_STAMP}>", "x\ny", "x<>y"},
      {4, 5, u"[0D]{TIME_STAMP}[09]", "\n", "\r@\t"},  // escapes parsed after the stamp is in
      {1, 6, u"no token", "\n", "no token"},
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Log.DateFormat = c.date;  // the date changes at most once a day
    state.Log.TimeFormat = c.time;
    state.Data.SnR_count = 1;
    core::SnRRule& rule = state.Data.SnR[1];
    rule.wcszSearchFor = u"[0A]";
    rule.wcszReplaceWith = c.replace;
    PrepareRule(rule);
    core::DataBlock block;
    ASSERT_EQ(core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(c.input.size())), 0);
    std::copy(c.input.begin(), c.input.end(), block.Buffer.Data());
    block.Length = static_cast<uint32_t>(c.input.size());
    EXPECT_TRUE(SearchAndReplace(state, block));
    std::string expected;
    for (char ch : c.expected)
      expected += ch == '@' ? StampText(state.Log.CurrentTimeStamp) : std::string(1, ch);
    EXPECT_EQ(std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length), expected)
        << std::string(c.expected);
  }
}

TEST(StampedRuleTest, BuiltReplacementIsCutAt41Bytes) {
  core::SnRRule rule;
  rule.wcszReplaceWith = std::u16string(29, u'x') + u"{TIME_STAMP}";
  PrepareRule(rule);
  EXPECT_TRUE(HasTimeStampToken(rule));
  const std::string stamp = "05/11/2026,17:08:37";
  std::array<uint8_t, core::SnRRule::kBytes> bytes;
  bytes.fill(0xAA);
  EXPECT_EQ(BuildStampedReplacement(rule, stamp, bytes), 41);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), std::string(29, 'x') + stamp.substr(0, 12) + '\0');
}

}  // namespace
}  // namespace wavetrace::rx
