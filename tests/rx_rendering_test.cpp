#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/line_end_swap.h"
#include "rx/nonprintable_filter.h"
#include "rx/radix_view.h"
#include "rx/receive_pipeline.h"
#include "rx/search_replace.h"

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

std::string Text(const core::DataBlock& block) {
  return std::string(block.Buffer.Data(), block.Buffer.Data() + block.Length);
}

// The single stages with the settings as the state holds them.
uint32_t ConvertToRadix(core::AppState& state, core::DataBlock& block) {
  core::SharedAllocator memory(state);
  return rx::ConvertToRadix(core::RxSettingsOf(state), memory, block);
}

uint32_t FilterNonPrintable(core::AppState& state, core::DataBlock& block) {
  core::SharedAllocator memory(state);
  return rx::FilterNonPrintable(memory, block);
}

// The state every test starts from: every stage off.
void AllStagesOff(core::AppState& state) {
  state.Data.modeASCII = 0;
  state.Data.modeBINARY = 0;
  state.Data.FilterNP = 0;
  state.Data.SnR_count = 0;
  state.Data.PostambleLengthRX = 0;
}

TEST(ConvertToRadixTest, WidthsAndBracketsForEveryRadix) {
  const struct {
    int32_t base;
    uint8_t byte;
    std::string bracketed;
  } cases[] = {
      {16, 0, "[00]"},      {16, 13, "[0D]"},      {16, 65, "[41]"},      {16, 255, "[FF]"},
      {10, 0, "[000]"},     {10, 13, "[013]"},     {10, 65, "[065]"},     {10, 255, "[255]"},
      {8, 0, "[000]"},      {8, 13, "[015]"},      {8, 65, "[101]"},      {8, 255, "[377]"},
      {2, 0, "[00000000]"}, {2, 13, "[00001101]"}, {2, 65, "[01000001]"}, {2, 255, "[11111111]"},
  };
  core::AppState state;
  for (const auto& c : cases) {
    for (int32_t brackets : {0, 1}) {
      state.Data.Base = c.base;
      state.Data.BinBrackets = brackets;
      state.Data.NonChars = 0;
      core::DataBlock block = MakeBlock(state, std::string(1, static_cast<char>(c.byte)));
      const std::string expected = brackets ? c.bracketed.substr(1, c.bracketed.size() - 2) : c.bracketed;
      EXPECT_EQ(ConvertToRadix(state, block), expected.size()) << c.base << " " << int{c.byte};
      EXPECT_EQ(Text(block), expected) << c.base << " " << int{c.byte} << " brackets off " << brackets;
      // The block fits its worst-case size with the two spare bytes zero.
      EXPECT_EQ(block.Buffer.Size(), static_cast<size_t>(RadixBytesPerByte(c.base)));
      EXPECT_EQ(block.Buffer.Data()[block.Length], 0);
    }
  }
}

TEST(ConvertToRadixTest, NonCharsLetsVisibleCharactersPass) {
  const struct {
    int32_t nonChars;
    int32_t brackets;
    std::string input;
    std::string expected;
  } cases[] = {
      {0, 0, "A\r", "[41][0D]"},
      {1, 0, "A\r", "A[0D]"},
      {0, 1, "A\r", "410D"},
      {1, 1, "A\r", "A0D"},
      // The blank is converted on purpose; '!' and '~' are the edges that pass.
      {1, 0, " !~\x7f", "[20]!~[7F]"},
      {2, 0, "A", "[41]"},
  };
  core::AppState state;
  state.Data.Base = 16;
  for (const auto& c : cases) {
    state.Data.NonChars = c.nonChars;
    state.Data.BinBrackets = c.brackets;
    core::DataBlock block = MakeBlock(state, c.input);
    ConvertToRadix(state, block);
    EXPECT_EQ(Text(block), c.expected) << c.nonChars << c.brackets << c.input;
  }
}

TEST(ConvertToRadixTest, UnofferedBaseRendersAsHex) {
  core::AppState state;
  for (int32_t base : {0, 3, 7, 36, -5}) {
    state.Data.Base = base;
    core::DataBlock block = MakeBlock(state, "\xff");
    ConvertToRadix(state, block);
    EXPECT_EQ(Text(block), "[FF]") << base;
  }
}

TEST(FilterNonPrintableTest, KeepsOnlyPrintableBytes) {
  const struct {
    std::string input;
    std::string expected;
  } cases[] = {
      {"AB\r\nC", "ABC"},
      {"\t x~\x7f\x1f", " x~"},
      {"\x80\xff\0"s, ""},
      {"plain", "plain"},
  };
  core::AppState state;
  for (const auto& c : cases) {
    core::DataBlock block = MakeBlock(state, c.input);
    EXPECT_EQ(FilterNonPrintable(state, block), c.expected.size());
    EXPECT_EQ(Text(block), c.expected);
    EXPECT_EQ(block.Buffer.Data()[block.Length], 0) << "the filtered block ends in a zero";
  }
}

TEST(SwapLfCrTest, TurnsLfCrIntoCrLf) {
  const struct {
    std::string input;
    std::string expected;
  } cases[] = {
      {"x\n\ry", "x\r\ny"},
      {"\n\n\r", "\n\r\n"},
      {"\n\r\r", "\r\r\n"},
      {"\n\r\n\r", "\r\n\r\n"},
      {"\r\n", "\r\n"},
      {"\n", "\n"},
      {"", ""},
  };
  for (const auto& c : cases) {
    std::string bytes = c.input;
    SwapLfCr(reinterpret_cast<uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()));
    EXPECT_EQ(bytes, c.expected) << "input size " << c.input.size();
  }
}

TEST(ProcessReceivedDataTest, StagesRunInOrder) {
  core::AppState state;
  AllStagesOff(state);
  // Filter first: the CR LF never reaches the radix view. Radix before the
  // postamble: the postamble stays raw. Swap last: it sees the postamble.
  state.Data.FilterNP = 1;
  state.Data.modeBINARY = 1;
  state.Data.Base = 16;
  state.Data.NonChars = 1;
  state.Data.PostambleBytesRX = {'\n', '\r'};
  state.Data.PostambleLengthRX = 2;
  state.Data.modeASCII = 1;
  core::DataBlock block = MakeBlock(state, "A \r\n");
  EXPECT_EQ(ProcessReceivedData(state, core::RxSettingsOf(state), block), 7u);
  EXPECT_EQ(Text(block), "A[20]\r\n");
}

TEST(ProcessReceivedDataTest, EmptyBlockIsNotTouched) {
  core::AppState state;
  state.Data.PostambleBytesRX = {'!'};
  state.Data.PostambleLengthRX = 1;
  core::DataBlock block = MakeBlock(state, "xyz");
  block.Length = 0;
  EXPECT_EQ(ProcessReceivedData(state, core::RxSettingsOf(state), block), 0u);
  EXPECT_EQ(std::string(block.Buffer.Data(), block.Buffer.Data() + 3), "xyz");
}

TEST(ProcessReceivedDataTest, LengthBeyondTheBufferIsCut) {
  core::AppState state;
  AllStagesOff(state);
  state.Data.modeBINARY = 1;
  core::DataBlock block = MakeBlock(state, "ab");
  block.Length = 1000;
  EXPECT_EQ(ProcessReceivedData(state, core::RxSettingsOf(state), block), 8u);
  EXPECT_EQ(Text(block), "[61][62]");
}

TEST(ProcessReceivedDataTest, FailedPostambleEndsThePipeline) {
  core::AppState state;
  AllStagesOff(state);
  state.Data.modeASCII = 1;
  state.Data.PostambleBytesRX = {'!'};
  state.Data.PostambleLengthRX = 1;
  // A block at the allocator's limit cannot take one more byte.
  core::DataBlock block;
  ASSERT_EQ(core::AllocCharBuffer(state, block.Buffer, core::kMaxAllocationBytes), 0);
  block.Length = static_cast<uint32_t>(core::kMaxAllocationBytes);
  block.Buffer.Data()[0] = '\n';
  block.Buffer.Data()[1] = '\r';
  EXPECT_EQ(ProcessReceivedData(state, core::RxSettingsOf(state), block), block.Buffer.Size());
  EXPECT_EQ(block.Buffer.Data()[0], '\n') << "the line-end swap ran after a failed postamble";
}

TEST(ProcessReceivedDataTest, RunawayRuleStopsAtTheBoundAndEndsThePipeline) {
  core::AppState state;
  AllStagesOff(state);
  state.Data.modeASCII = 1;
  state.Data.modeBINARY = 1;
  state.Data.SnR_count = 1;
  core::SnRRule& rule = state.Data.SnR[1];
  rule.SearchBytes = {'a'};
  rule.SearchLength = 1;
  rule.ReplaceBytes = {'a', 'a'};
  rule.ReplaceLength = 2;
  core::DataBlock block = MakeBlock(state, "\n\ra");
  const uint32_t length = ProcessReceivedData(state, core::RxSettingsOf(state), block);
  EXPECT_EQ(length, static_cast<uint32_t>(kMaxReplaceBlockBytes));
  // Neither the radix view nor the swap ran on what the rule built.
  EXPECT_EQ(block.Buffer.Data()[0], '\n');
  EXPECT_EQ(block.Buffer.Data()[1], '\r');
  EXPECT_EQ(block.Buffer.Data()[length - 1], 'a');
}

}  // namespace
}  // namespace wavetrace::rx
