// The receive stages alone and as the pipeline (escapes, byte search, radix
// view, filter, rules with their stamps, postamble, line-end swap) and the
// rule and postamble pages that prepare their settings.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/allocation.h"
#include "core/app_state.h"
#include "core/escape_parser.h"
#include "rx/byte_search.h"
#include "rx/line_end_swap.h"
#include "rx/nonprintable_filter.h"
#include "rx/postamble.h"
#include "rx/radix_view.h"
#include "rx/receive_pipeline.h"
#include "rx/replace_rules.h"
#include "rx/search_replace.h"
#include "rx/time_stamp.h"
#include "serial/tx_thread.h"

namespace wavetrace::rx {
namespace {

using namespace std::string_literals;

core::DataBlock MakeBlock(core::AppState& state, const std::string& bytes) {
  core::DataBlock block;
  EXPECT_EQ(core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(bytes.size())), 0);
  std::copy(bytes.begin(), bytes.end(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(bytes.size());
  return block;
}

// The block's bytes and `past` more behind its end.
std::string Text(const core::DataBlock& block, uint32_t past = 0) {
  return std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length + past);
}

// The pipeline and single stages with the settings as the state holds them.
uint32_t Process(core::AppState& state, core::DataBlock& block) {
  const uint32_t length = ProcessReceivedData(state, core::RxSettingsOf(state), block);
  EXPECT_EQ(length, block.Length);
  return length;
}

std::string Processed(core::AppState& state, const std::string& input) {
  core::DataBlock block = MakeBlock(state, input);
  Process(state, block);
  return Text(block);
}

enum Mode { kAll, kFirst, kLast };

void SetRule(core::SnRRule& rule, const std::string& search, const std::string& replace, Mode mode) {
  rule = core::SnRRule{};
  std::copy(search.begin(), search.end(), rule.SearchBytes.begin());
  std::copy(replace.begin(), replace.end(), rule.ReplaceBytes.begin());
  rule.SearchLength = static_cast<int32_t>(search.size());
  rule.ReplaceLength = static_cast<int32_t>(replace.size());
  rule.Rall = mode == kAll, rule.Rfo = mode == kFirst, rule.Rlo = mode == kLast;
}

// Parses a copy of the text in a buffer of its size, which ends the text
// unless a zero byte does, and checks that what the new end leaves free up to
// there is zero and the bytes beyond are not touched.
std::string Parse(const std::string& text, int32_t radix) {
  std::vector<uint8_t> buffer(text.begin(), text.end());
  const auto length = static_cast<size_t>(core::ParseBracketEscapes(buffer, radix));
  const size_t end = std::min(text.find('\0'), text.size());
  for (size_t i = length; i < buffer.size(); ++i) {
    EXPECT_EQ(buffer[i], i < end ? 0 : static_cast<uint8_t>(text[i]))
        << "byte " << i << " behind the new end";
  }
  return std::string(buffer.begin(), buffer.begin() + static_cast<long>(length));
}

TEST(ParseBracketEscapesTest, TableOfEscapes) {
  const struct {
    std::string text;
    int32_t radix;
    std::string expected;
  } cases[] = {
      {"hello", 16, "hello"},
      {"A[0D]B[", 16, "A\rB["},
      {"[0d][0a]", 16, "\r\n"},
      {"[7]", 16, "\x07"},
      // Reading stops at a non-digit, but a zero must be read from zeros only.
      {"[1Z]", 16, "\x01"},
      {"[0Z]", 16, "[0Z]"},
      {"x[0]y", 16, "x\0y"s},
      {"[41]\0[42]"s, 16, "A"},
      // Invalid escapes stay as written, and parsing goes on after them.
      {"[123]", 16, "[123]"},
      {"[]", 16, "[]"},
      {"[XY][41]", 16, "[XY]A"},
      {"[[0D]", 16, "[[0D]"},
      {"[5B]41]", 16, "[41]"},  // a result is never parsed again
      // Digits and their count per radix; outside 2..36 nothing is parsed.
      {"[255]", 10, "\xff"},
      {"[256]", 10, "[256]"},
      {"[0065]", 10, "[0065]"},
      {"[101]", 8, "A"},
      {"[8]", 8, "[8]"},
      {"[01000001]", 2, "A"},
      {"[001000001]", 2, "[001000001]"},
      {"[0D]", 1, "[0D]"},
      {"[0D]", 37, "[0D]"},
      // Signs and blanks as a number reader takes them.
      {"[-1]", 16, "[-1]"},
      {"[+7]", 10, "\x07"},
      {"[ 7]", 10, "\x07"},
  };
  for (const auto& c : cases) EXPECT_EQ(Parse(c.text, c.radix), c.expected) << c.text << " radix " << c.radix;
}

TEST(ParseBracketEscapesTest, LongLines) {
  const struct {
    std::string unit;      // repeated to make the line
    std::string expected;  // what each unit becomes
  } cases[] = {{"[41]x[ZZ][0D]", "Ax[ZZ]\r"}, {"[5B]41]", "[41]"}, {"[", "["}};
  for (const auto& c : cases) {
    std::string text, expected;
    for (int i = 0; i < (1 << 20) / static_cast<int>(c.unit.size()); ++i) {
      text += c.unit;
      expected += c.expected;
    }
    EXPECT_EQ(Parse(text, 16), expected) << c.unit;
  }
}

// The text to send has its escapes read in the view's radix; a radix the menu
// does not offer (7, 0) reads them as hex.
TEST(ParseBracketEscapesTest, TextToSendFollowsTheViewsRadix) {
  core::AppState state;
  const std::pair<int32_t, std::string> cases[] = {{16, "[41]"},      {10, "[065]"}, {8, "[101]"},
                                                   {2, "[01000001]"}, {7, "[41]"},   {0, "[41]"}};
  for (const auto& [base, escape] : cases) {
    state.Data.Base = base;
    core::DataBlock block = MakeBlock(state, escape);
    EXPECT_EQ(serial::PrepareTxData(state, core::TxSettingsOf(state), block, block.Length), 1u) << base;
    EXPECT_EQ(block.Buffer.Data()[0], 'A') << base;
  }
}

// The first and last match, a match at the end, none, an empty pattern and a
// search for zero as the rules meet them: SearchAndReplaceTest.RuleModes and
// SwapLfCrTest. Here the bounds and the starts those callers do not use.
TEST(FindBytesTest, BoundsAndDirections) {
  const std::string data = "abcabcab";
  const auto bytes = [](const std::string& text) { return reinterpret_cast<const uint8_t*>(text.data()); };
  const struct {
    std::string pattern;
    int64_t start;
    bool forward;
    int64_t expected;
  } cases[] = {
      {"abc", 6, true, -1},  // too long for the rest
      {"a", 9, true, -1},
      {"a", -1, true, -1},
      {"abcabcab", 0, true, 0},
      {"abd", 0, true, -1},
      {"ABC", 0, true, -1},
      // Backward: the start counts from the end, the highest match first.
      {"ab", 2, false, 3},
      {"a", 7, false, 0},
      {"b", 2, true, 4},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(
        FindBytes(bytes(data), std::ssize(data), bytes(c.pattern), std::ssize(c.pattern), c.start, c.forward),
        c.expected)
        << c.pattern << " from " << c.start << (c.forward ? " forward" : " backward");
  }
}

TEST(ConvertToRadixTest, WidthsAndBracketsForEveryRadix) {
  const struct {
    int32_t base;
    uint8_t byte;
    std::string bracketed;  // also the worst case a byte takes
  } cases[] = {
      {16, 0, "[00]"}, {16, 255, "[FF]"}, {10, 0, "[000]"},     {10, 255, "[255]"},
      {8, 0, "[000]"}, {8, 255, "[377]"}, {2, 0, "[00000000]"}, {2, 255, "[11111111]"},
  };
  core::AppState state;
  core::SharedAllocator memory(state);
  for (const auto& c : cases) {
    for (int32_t brackets : {0, 1}) {
      SCOPED_TRACE(::testing::Message() << c.base << " " << int{c.byte} << " brackets off " << brackets);
      state.Data.Base = c.base;
      state.Data.BinBrackets = brackets;
      core::DataBlock block = MakeBlock(state, std::string(1, static_cast<char>(c.byte)));
      const std::string expected = brackets ? c.bracketed.substr(1, c.bracketed.size() - 2) : c.bracketed;
      EXPECT_EQ(ConvertToRadix(core::RxSettingsOf(state), memory, block), expected.size());
      // The block has its worst-case size with the spare bytes zero.
      EXPECT_EQ(Text(block, 1), expected + '\0');
      EXPECT_EQ(block.Buffer.Size(), c.bracketed.size());
    }
  }
}

TEST(ConvertToRadixTest, NonCharsAndBasesTheMenuDoesNotOffer) {
  const struct {
    int32_t base, nonChars, brackets;
    std::string input, expected;
  } cases[] = {
      {16, 1, 1, "A\r", "A0D"},
      // The blank is converted on purpose; '!' and '~' are the edges that pass.
      {16, 1, 0, " !~\x7f", "[20]!~[7F]"},
      {16, 2, 0, "A", "[41]"},
      // Any other base renders as hex.
      {7, 0, 0, "\xff", "[FF]"},
  };
  core::AppState state;
  core::SharedAllocator memory(state);
  for (const auto& c : cases) {
    state.Data.Base = c.base;
    state.Data.NonChars = c.nonChars;
    state.Data.BinBrackets = c.brackets;
    core::DataBlock block = MakeBlock(state, c.input);
    ConvertToRadix(core::RxSettingsOf(state), memory, block);
    EXPECT_EQ(Text(block), c.expected) << c.base << " " << c.nonChars << c.brackets << c.input;
  }
}

TEST(FilterNonPrintableTest, KeepsOnlyPrintableBytes) {
  const std::pair<std::string, std::string> cases[] = {
      {"AB\r\nC", "ABC"}, {"\t x~\x7f\x1f", " x~"}, {"\x80\xff\0"s, ""}, {"plain", "plain"}};
  core::AppState state;
  core::SharedAllocator memory(state);
  for (const auto& [input, expected] : cases) {
    core::DataBlock block = MakeBlock(state, input);
    EXPECT_EQ(FilterNonPrintable(memory, block), expected.size());
    EXPECT_EQ(Text(block, 1), expected + '\0') << "the filtered block ends in a zero";
  }
}

TEST(SwapLfCrTest, TurnsLfCrIntoCrLf) {
  const std::pair<std::string, std::string> cases[] = {
      {"x\n\ry", "x\r\ny"},     {"\n\n\r", "\n\r\n"}, {"\n\r\r", "\r\r\n"},
      {"\n\r\n\r", "\r\n\r\n"}, {"\r\n", "\r\n"},
  };
  for (const auto& [input, expected] : cases) {
    std::string bytes = input;
    SwapLfCr(reinterpret_cast<uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()));
    EXPECT_EQ(bytes, expected) << "input size " << input.size();
  }
}

TEST(ProcessReceivedDataTest, StagesRunInOrderOnTheLengthTheBufferHolds) {
  core::AppState state;
  // Filter first: the CR LF never reaches the radix view. Radix before the
  // postamble: the postamble stays raw. Swap last: it sees the postamble.
  state.Data.FilterNP = 1;
  state.Data.modeBINARY = 1;
  state.Data.NonChars = 1;
  state.Data.PostambleBytesRX = {'\n', '\r'};
  state.Data.PostambleLengthRX = 2;
  EXPECT_EQ(Processed(state, "A \r\n"), "A[20]\r\n");
  // An empty block is not touched; a length beyond the buffer is cut to it.
  state.Data.FilterNP = state.Data.NonChars = 0;
  core::DataBlock block = MakeBlock(state, "ab");
  block.Length = 0;
  EXPECT_EQ(Process(state, block), 0u);
  EXPECT_EQ(Text(block, 2), "ab");
  block.Length = 1000;
  Process(state, block);
  EXPECT_EQ(Text(block), "[61][62]\r\n");
}

TEST(ProcessReceivedDataTest, FailedPostambleEndsThePipeline) {
  core::AppState state;
  state.Data.PostambleBytesRX = {'!'};
  state.Data.PostambleLengthRX = 1;
  // A block at the allocator's limit cannot take one more byte.
  core::DataBlock block;
  ASSERT_EQ(core::AllocCharBuffer(state, block.Buffer, core::kMaxAllocationBytes), 0);
  block.Length = static_cast<uint32_t>(core::kMaxAllocationBytes);
  block.Buffer.Data()[0] = '\n';
  block.Buffer.Data()[1] = '\r';
  EXPECT_EQ(Process(state, block), block.Buffer.Size());
  EXPECT_EQ(block.Buffer.Data()[0], '\n') << "the line-end swap ran after a failed postamble";
}

// The field as the page applies it (13 characters kept) or the loader reads it
// (all kept, 14 parsed), and what it then appends to a block.
TEST(PostambleTest, FieldAppliedOrLoadedAndAppended) {
  const struct {
    bool load;
    std::u16string field, kept;
    std::string input, block;
  } cases[] = {
      {false, u"[0D][0A]", u"[0D][0A]", "ok", "ok\r\n"},
      // A zero byte in the block ends the copy: the postamble lands on it,
      // the rest is zero, and the length still counts everything.
      {false, u"[0D]", u"[0D]", "AB\0C"s, "AB\r\0\0"s},
      // A zero byte in the postamble ends what is appended.
      {false, u"x[00]y", u"x[00]y", "A", "Ax\0\0"s},
      {false, u"[0D][0A][09]x", u"[0D][0A][09]x", "A", "A\r\n\tx"},
      {false, u"[0D][0A][09][1B]", u"[0D][0A][09][", "A", "A\r\n\t["},
      {true, u"[0D][0A][09][1B]", u"[0D][0A][09][1B]", "A", "A\r\n\t[1"},
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.PostambleLengthRX = 9;  // whatever a file said
    if (c.load) {
      state.Data.wcszPostambleKeysRX = c.field;
      ReparsePostambleRX(state.Data);
    } else {
      ApplyPostambleField(state.Data, c.field);
    }
    EXPECT_EQ(state.Data.wcszPostambleKeysRX, c.kept);
    EXPECT_EQ(Processed(state, c.input), c.block) << ::testing::PrintToString(c.block);
  }
}

TEST(PostambleTest, AddedKeysAndTheFieldLimit) {
  // Keys by name: the arrow keys arrive as their key codes. Add accepts up
  // to 16 characters while apply keeps 13, so a late key can be lost. The
  // other keys and a one-character key at the limit: the Qt test
  // TransmitOptions.PagesShowTheSettingsAddAppendsWhileTheFieldHasRoomCancelKeepsAndOkStores.
  const struct {
    size_t fieldLength;
    std::u16string_view key;
    bool added;
    std::string appliedTail;  // the bytes the key adds to a block
  } cases[] = {
      {0, u"Enter", true, "\r"}, {0, u"Comma", true, ","}, {0, u"Down", true, "("},
      {0, u"Right", true, "'"},  {0, u"Left", true, "%"},  {0, u"Up", true, "&"},
      {9, u"Enter", true, "\r"}, {12, u"Enter", true, ""}, {13, u"Enter", false, ""},
  };
  for (const auto& c : cases) {
    size_t index = 0;
    while (index < PostambleKeys().size() && PostambleKeys()[index].Name != c.key) ++index;
    ASSERT_LT(index, PostambleKeys().size()) << "no key named so";
    std::u16string field(c.fieldLength, u'a');
    EXPECT_EQ(AddPostambleKey(field, index), c.added) << c.fieldLength;
    EXPECT_EQ(field.size(), c.fieldLength + (c.added ? PostambleKeys()[index].Text.size() : 0));
    core::AppState state;
    ApplyPostambleField(state.Data, field);
    const std::string appended = std::string(std::min<size_t>(c.fieldLength, 13), 'a') + c.appliedTail;
    EXPECT_EQ(Processed(state, "A").substr(1, appended.size()), appended) << c.fieldLength;
  }
  std::u16string field;
  EXPECT_FALSE(AddPostambleKey(field, PostambleKeys().size()));
}

TEST(SearchAndReplaceTest, RuleModes) {
  // The expected text includes the byte just past the new end: a shrinking
  // replacement leaves the old byte there (the zeroing starts one past the
  // old end), a growing one a zero of the new block.
  const struct {
    const char* name;
    std::string search, replace;
    Mode mode;
    std::string input, expected;
  } cases[] = {
      {"CR LF to bar", "\r\n", "|", kAll, "a\r\nb\r\n", "a|b|\n"},
      {"last occurring", "ab", "X", kLast, "ababab", "ababXb"},
      {"first occurring", "ab", "X", kFirst, "ababab", "Xababb"},
      {"overlapping matches", "aa", "b", kAll, "aaa", "baa"},
      {"overlap through the replacement", "aa", "ab", kAll, "aaaa", "abab\0"s},
      {"growth", "b", "XYZ", kAll, "abcb", "aXYZcXYZ\0"s},
      {"deletion skips the byte after", "a", "", kAll, "aaa", "aa"},
      {"same length", "ab", "cd", kAll, "abab", "cdcd\0"s},
      {"last at the very end", "c", "", kLast, "abc", "abc"},
      {"zero in tail cuts a growing copy", "b", "XY", kAll, "ab\0cd"s, "aXY\0\0\0\0"s},
      {"zero in prefix cuts a growing copy", "d", "XY", kAll, "a\0cd"s, "aXY\0\0\0"s},
      {"zero in the replacement cuts it", "b", "X\0Y"s, kAll, "abc", "aXc\0\0\0"s},
      {"search for zero", "\0"s, "0", kAll, "a\0b\0"s, "a0b0\0"s},
      {"empty search matches nothing", "", "x", kAll, "ab", "ab\0"s},
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.SnR_count = 1;
    SetRule(state.Data.SnR[1], c.search, c.replace, c.mode);
    core::DataBlock block = MakeBlock(state, c.input);
    core::SharedAllocator memory(state);
    SharedStampSource stamps(state);
    EXPECT_TRUE(SearchAndReplace(core::RxSettingsOf(state), memory, stamps, block)) << c.name;
    EXPECT_EQ(Text(block, 1), c.expected) << c.name;
  }
}

TEST(SearchAndReplaceTest, RuleOrderCountAndDisable) {
  const struct {
    int32_t count, disable;
    std::string first, second, expected;
  } cases[] = {
      {2, 0, "ab", "bc", "cc"},  // rule 2 sees rule 1's output
      {1, 0, "ab", "bc", "bb"}, {0, 0, "ab", "bc", "ab"},
      {2, 1, "ab", "bc", "ab"}, {7, 0, "ab", "bc", "cc"},  // a damaged count never reaches past the slots
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.SnR_count = c.count;
    state.Data.DisableSnR = c.disable;
    SetRule(state.Data.SnR[1], c.first.substr(0, 1), c.first.substr(1), kAll);
    SetRule(state.Data.SnR[2], c.second.substr(0, 1), c.second.substr(1), kAll);
    EXPECT_EQ(Processed(state, "ab"), c.expected)
        << c.count << " " << c.disable << " " << c.first << " " << c.second;
  }
}

// A rule that feeds itself stops at a bound: the block keeps what was built
// and the pipeline ends there (neither the radix view nor the swap runs).
TEST(SearchAndReplaceTest, RunawayRulesStopAtABoundAndEndThePipeline) {
  const struct {
    std::string replace;
    bool sizeBound;
  } cases[] = {
      {"aa", true},      // grows by plain insertion: the size bound
      {"ba\0"s, false},  // the zero cuts every copy: replaced one at a time, the work bound
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.modeBINARY = 1;
    state.Data.SnR_count = 1;
    SetRule(state.Data.SnR[1], "a", c.replace, kAll);
    core::DataBlock block = MakeBlock(state, "\n\ra");
    const uint32_t length = Process(state, block);
    EXPECT_GT(length, 10000u);
    EXPECT_LE(length, static_cast<uint32_t>(kMaxReplaceBlockBytes));
    EXPECT_EQ(Text(block).substr(0, 3), "\n\r" + c.replace.substr(0, 1));
    if (c.sizeBound) {
      EXPECT_EQ(length, static_cast<uint32_t>(kMaxReplaceBlockBytes));
      EXPECT_EQ(block.Buffer.Data()[length - 1], 'a');
    }
  }
}

using Stamp = std::array<uint8_t, core::LogSettings::kTimeStampBytes>;

std::string StampText(const Stamp& stamp) {
  return std::string(stamp.begin(), std::find(stamp.begin(), stamp.end(), uint8_t{0}));
}

platform::LocalTime At(int second) {
  return {2026, 11, 4, 5, 17, 8, second, 45};
}

TEST(BuildTimeStampTest, DateAndTimeFormatsAndThePreviousStamp) {
  const struct {
    int32_t date, time;
    char delimiter;
    std::string expected;
  } cases[] = {
      {1, 6, ',', "05/11/2026,17:08:37"},
      {2, 6, ',', "11/05/2026,17:08:37"},
      {3, 5, ';', "2026/11/05;17:08"},
      {4, 6, ',', "17:08:37"},
      {3, 7, ',', "2026/11/05"},
      {1, 8, ',', "05/11/2026,17:08:37.045"},
      // A value outside the tables is an empty part; the delimiter still
      // stands unless the other part is switched off.
      {0, 6, ',', ",17:08:37"},
      {1, 9, ',', "05/11/2026,"},
  };
  // Each stamp is built over the one before, which it keeps as the previous stamp.
  core::AppState state;
  std::string previous;
  for (const auto& c : cases) {
    BuildTimeStamp(state, {c.date, c.time, static_cast<uint8_t>(c.delimiter)}, At(37));
    const Stamp& stamp = state.Log.CurrentTimeStamp;
    EXPECT_EQ(StampText(stamp), c.expected) << c.date << " " << c.time;
    EXPECT_TRUE(std::all_of(stamp.begin() + static_cast<long>(c.expected.size()), stamp.end(), [](uint8_t b) {
      return b == 0;
    })) << "the stamp is zero-filled behind its text";
    EXPECT_EQ(StampText(state.Log.PreviousTimeStamp), std::exchange(previous, c.expected));
  }
}

TEST(StampedRuleTest, TokenBecomesTheStampAtEachMatch) {
  // "@" in the expected text stands for the stamp built at the match. A built replacement is cut at 41
  // bytes; the blocks of the other rows are shorter than that.
  const struct {
    int32_t date, time;
    std::u16string replace;
    std::string input, expected;
  } cases[] = {
      {3, 7, u"T={TIME_STAMP};", "a\nb\n", "aT=@;bT=@;"},
      {1, 6, u"{TIME_STAMP}{TIME_STAMP}", "\n", "@{TIME_STAMP}"},  // only the first token
      {4, 5, u"[0D]{TIME_STAMP}[09]", "\n", "\r@\t"},              // escapes parsed after the stamp is in
      {1, 6, u"no token", "\n", "no token"},
      {1, 6, std::u16string(29, u'x') + u"{TIME_STAMP}", "\n", std::string(29, 'x') + "@"},
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Log.DateFormat = c.date;  // the date changes at most once a day
    state.Log.TimeFormat = c.time;
    ApplyRulePage(state.Data, {u"[0A]", c.replace});
    const std::string block = Processed(state, c.input);
    std::string expected;
    for (char ch : c.expected)
      expected += ch == '@' ? StampText(state.Log.CurrentTimeStamp) : std::string(1, ch);
    EXPECT_EQ(block, expected.substr(0, 41)) << c.expected;
  }
}

std::u16string Wide(const std::string& text) {
  return std::u16string(text.begin(), text.end());
}

// Plays a script of page actions, e.g. "add a>b/2 sel 1 c>d/0 rm", where a
// rule is search>replace/mode (0 all, 1 first, 2 last) and "-" an empty one.
void Play(core::DataSettings& data, const std::string& script) {
  std::istringstream in(script);
  const auto fields = [&in] {
    std::string rule;
    in >> rule;
    RuleFields f;
    const size_t arrow = rule.find('>');
    const size_t slash = rule.find('/');
    if (rule != "-") {
      f.SearchFor = Wide(rule.substr(0, arrow));
      f.ReplaceWith = Wide(rule.substr(arrow + 1, slash - arrow - 1));
    }
    const int mode = slash == std::string::npos ? 0 : rule[slash + 1] - '0';
    f.Rall = mode == 0, f.Rfo = mode == 1, f.Rlo = mode == 2;
    return f;
  };
  for (std::string op; in >> op;) {
    if (op == "add") AddRule(data, fields());
    if (op == "ins") InsertRule(data);
    if (op == "rm") RemoveRule(data);
    if (op == "apply") ApplyRulePage(data, fields());
    if (op == "sel") {
      int index = 0;
      in >> index;
      SelectRule(data, fields(), index);
    }
  }
}

// "search>replace/RallRfoRlo" for slots 1 and 2, then count and current.
std::string Show(const core::DataSettings& data) {
  std::string text;
  for (int i = 1; i <= 2; ++i) {
    const core::SnRRule& r = data.SnR[i];
    for (char16_t ch : r.wcszSearchFor + u">" + r.wcszReplaceWith) text += static_cast<char>(ch);
    text += "/" + std::to_string(r.Rall) + std::to_string(r.Rfo) + std::to_string(r.Rlo) + " ";
  }
  return text + std::to_string(data.SnR_count) + "@" + std::to_string(data.SnRCurrentRule);
}

// Whether Add and Insert are offered and OK's compacting through the sheet:
// ReceiveOptions.OpensWithTheSettingsStoresBoxesAtOnceCancelPutsBackOkApplies.
TEST(RulePageTest, ActionsOnTheRuleListAndApply) {
  const std::pair<std::string, std::string> cases[] = {
      {"add a>b/2", "a>b/001 >/100 2@2"},
      {"add a>b add c>d", "a>b/100 >/100 2@2"},  // full: the second Add changes nothing
      {"add a>b sel 1 c>d/1", "a>b/100 c>d/010 2@1"},
      {"add a>b sel 9 -", "a>b/100 >/100 2@2"},
      {"add a>b sel 1 c>d/2 rm", "c>d/001 >/100 1@1"},
      {"add a>b sel 1 c>d rm rm", ">/100 >/100 1@1"},  // the last slot stays
      {"add a>b sel 2 c>d rm", "a>b/100 >/100 1@1"},
      {"add a>b/1 sel 1 c>d rm ins", ">/100 c>d/100 2@1"},
      {"sel 1 a>b apply a>b ins sel 1 - apply -", "a>b/100 >/100 1@1"},
      {"add a>r sel 2 b>r apply b>r", "a>r/100 b>r/100 2@2"},
      {"add a>r sel 2 - apply -", "a>r/100 >/100 1@2"},
      {"apply -", ">/100 >/100 0@1"},
  };
  for (const auto& [script, expected] : cases) {
    core::DataSettings data;
    Play(data, script);
    EXPECT_EQ(Show(data), expected) << script;
  }
  core::DataSettings data;
  Play(data, "add a>b sel 1 a>b");
  EXPECT_EQ(RuleCaption(data), u"1 / 2");

  // Apply prepares the bytes of texts kept to 41 characters.
  ApplyRulePage(data, {u"[0D][0A]" + std::u16string(45, u'a'), u"[7C]"});
  const core::SnRRule& rule = data.SnR[1];
  EXPECT_EQ(rule.wcszSearchFor.size(), 41u);
  EXPECT_EQ(rule.SearchLength, 35);  // 41 characters, two escapes of 4 become 2 bytes
  EXPECT_EQ(std::string(rule.SearchBytes.begin(), rule.SearchBytes.begin() + 3), "\r\na");
  EXPECT_EQ(rule.SearchBytes[35], 0);
  EXPECT_EQ(rule.ReplaceLength, 1);
  EXPECT_EQ(rule.ReplaceBytes[0], '|');
}

}  // namespace
}  // namespace wavetrace::rx
