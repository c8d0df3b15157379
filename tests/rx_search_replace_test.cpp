#include <gtest/gtest.h>

#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/receive_pipeline.h"
#include "rx/search_replace.h"

namespace wavetrace::rx {
namespace {

// Stage 2 with the settings as the state holds them.
bool SearchAndReplace(core::AppState& state, core::DataBlock& block) {
  core::SharedAllocator memory(state);
  SharedStampSource stamps(state);
  return rx::SearchAndReplace(core::RxSettingsOf(state), memory, stamps, block);
}

using namespace std::string_literals;

enum Mode { kAll, kFirst, kLast };

void SetRule(core::SnRRule& rule, const std::string& search, const std::string& replace, Mode mode) {
  rule = core::SnRRule{};
  std::copy(search.begin(), search.end(), rule.SearchBytes.begin());
  std::copy(replace.begin(), replace.end(), rule.ReplaceBytes.begin());
  rule.SearchLength = static_cast<int32_t>(search.size());
  rule.ReplaceLength = static_cast<int32_t>(replace.size());
  rule.Rall = mode == kAll, rule.Rfo = mode == kFirst, rule.Rlo = mode == kLast;
}

core::DataBlock MakeBlock(core::AppState& state, const std::string& bytes) {
  core::DataBlock block;
  EXPECT_EQ(core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(bytes.size())), 0);
  std::copy(bytes.begin(), bytes.end(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(bytes.size());
  return block;
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
      {"growth, first only", "b", "XYZ", kFirst, "abcb", "aXYZcb\0"s},
      {"deletion skips the byte after", "a", "", kAll, "aaa", "aa"},
      {"same length", "ab", "cd", kAll, "abab", "cdcd\0"s},
      {"no match", "zz", "y", kAll, "abc", "abc\0"s},
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
    EXPECT_TRUE(SearchAndReplace(state, block)) << c.name;
    EXPECT_EQ(std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length + 1), c.expected) << c.name;
  }
}

TEST(SearchAndReplaceTest, RuleOrderCountAndDisable) {
  const struct {
    int32_t count, disable;
    std::string first, second, expected;
  } cases[] = {
      {2, 0, "a>b", "b>c", "cc"},  // rule 2 sees rule 1's output
      {2, 0, "b>c", "a>b", "bc"}, {1, 0, "a>b", "b>c", "bb"}, {0, 0, "a>b", "b>c", "ab"},
      {2, 1, "a>b", "b>c", "ab"}, {7, 0, "a>b", "b>c", "cc"},  // a damaged count never reaches past the slots
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.modeASCII = 0;
    state.Data.SnR_count = c.count;
    state.Data.DisableSnR = c.disable;
    SetRule(state.Data.SnR[1], c.first.substr(0, 1), c.first.substr(2), kAll);
    SetRule(state.Data.SnR[2], c.second.substr(0, 1), c.second.substr(2), kAll);
    core::DataBlock block = MakeBlock(state, "ab");
    ProcessReceivedData(state, core::RxSettingsOf(state), block);
    EXPECT_EQ(std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length), c.expected)
        << c.count << " " << c.disable << " " << c.first << " " << c.second;
  }
}

TEST(SearchAndReplaceTest, RunawayRulesStopAtABound) {
  const struct {
    std::string search, replace;
  } cases[] = {
      {"a", "aa"},     // grows by plain insertion: the size bound
      {"a", "ba\0"s},  // the zero cuts every copy: replaced one at a time, the work bound
  };
  for (const auto& c : cases) {
    core::AppState state;
    state.Data.SnR_count = 1;
    SetRule(state.Data.SnR[1], c.search, c.replace, kAll);
    core::DataBlock block = MakeBlock(state, "xa");
    EXPECT_FALSE(SearchAndReplace(state, block));
    // What was built is kept: a long block, still starting with the input's
    // untouched first byte and the first replacement.
    EXPECT_GT(block.Length, 10000u);
    EXPECT_LE(block.Length, static_cast<uint32_t>(kMaxReplaceBlockBytes));
    EXPECT_EQ(std::string(block.Buffer.Data(), block.Buffer.Data() + 2), "x" + c.replace.substr(0, 1));
  }
}

}  // namespace
}  // namespace wavetrace::rx
