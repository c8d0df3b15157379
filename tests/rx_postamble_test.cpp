#include <gtest/gtest.h>

#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/postamble.h"
#include "rx/receive_pipeline.h"

namespace wavetrace::rx {
namespace {

using namespace std::string_literals;

std::string ParsedBytes(const core::DataSettings& data) {
  return std::string(data.PostambleBytesRX.begin(), data.PostambleBytesRX.begin() + data.PostambleLengthRX);
}

// Runs only stage 4 through the pipeline and returns the block with the
// bytes behind its end up to its buffer's size.
std::string AppendTo(core::AppState& state, const std::string& input, uint32_t& length) {
  state.Data.modeASCII = 0;
  state.Data.modeBINARY = 0;
  core::DataBlock block;
  EXPECT_EQ(core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(input.size())), 0);
  std::copy(input.begin(), input.end(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(input.size());
  length = ProcessReceivedData(state, block);
  EXPECT_EQ(length, block.Length);
  return std::string(block.Buffer.Data(), block.Buffer.Data() + block.Buffer.Size());
}

TEST(PostambleTest, FieldAppliedAndAppended) {
  const struct {
    std::u16string field;
    std::string input;
    std::string expectedBytes;
    std::string expectedBlock;  // the whole new buffer
  } cases[] = {
      {u"[0D][0A]", "ok", "\r\n", "ok\r\n"},
      {u",", "1", ",", "1,"},
      {u"", "abc", "", "abc"},
      // A zero byte in the block ends the copy: the postamble lands on it,
      // the rest is zero, and the length still counts everything.
      {u"[0D]", "AB\0C"s, "\r", "AB\r\0\0"s},
      // A zero byte in the postamble ends what is appended.
      {u"x[00]y", "A", "x\0y"s, "Ax\0\0"s},
  };
  for (const auto& c : cases) {
    core::AppState state;
    ApplyPostambleField(state.Data, c.field);
    EXPECT_EQ(ParsedBytes(state.Data), c.expectedBytes);
    uint32_t length = 0;
    EXPECT_EQ(AppendTo(state, c.input, length), c.expectedBlock);
    EXPECT_EQ(length, c.input.size() + c.expectedBytes.size());
  }
}

TEST(PostambleTest, ApplyReadsBackAtMost13Characters) {
  const struct {
    std::u16string field;
    std::u16string keptText;
    std::string bytes;
  } cases[] = {
      {u"[0D][0A][09]x", u"[0D][0A][09]x", "\r\n\tx"},
      {u"[0D][0A][09][1B]", u"[0D][0A][09][", "\r\n\t["},
      {u"abcdefghijklmnop", u"abcdefghijklm", "abcdefghijklm"},
  };
  for (const auto& c : cases) {
    core::DataSettings data;
    ApplyPostambleField(data, c.field);
    EXPECT_EQ(data.wcszPostambleKeysRX, c.keptText);
    EXPECT_EQ(ParsedBytes(data), c.bytes);
  }
}

TEST(PostambleTest, LoaderRebuildsFrom14Bytes) {
  core::DataSettings data;
  data.wcszPostambleKeysRX = u"[0D][0A][09][1B]";
  data.PostambleLengthRX = 9;  // whatever the file said
  ReparsePostambleRX(data);
  EXPECT_EQ(ParsedBytes(data), "\r\n\t[1");
  EXPECT_EQ(data.PostambleLengthRX, 5);
}

TEST(PostambleTest, NamedKeys) {
  const std::pair<std::u16string_view, std::u16string_view> expected[] = {
      {u"Enter", u"[0D]"}, {u"LineFeed", u"[0A]"}, {u"Comma", u","}, {u"Tab", u"[09]"}, {u"Down", u"[28]"},
      {u"Right", u"[27]"}, {u"Left", u"[25]"},     {u"Up", u"[26]"}, {u"Esc", u"[1B]"},
  };
  ASSERT_EQ(PostambleKeys().size(), std::size(expected));
  for (size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(PostambleKeys()[i].Name, expected[i].first);
    EXPECT_EQ(PostambleKeys()[i].Text, expected[i].second);
  }
  // The arrow keys arrive as their key codes.
  core::DataSettings data;
  ApplyPostambleField(data, u"[28][27][25]");
  EXPECT_EQ(ParsedBytes(data), "('%");
  ApplyPostambleField(data, u"[26]");
  EXPECT_EQ(ParsedBytes(data), "&");
}

TEST(PostambleTest, AddKeepsTheFieldBelow17Characters) {
  const struct {
    size_t fieldLength;
    size_t key;
    bool added;
  } cases[] = {
      {0, 0, true}, {12, 0, true}, {13, 0, false}, {15, 2, true}, {16, 2, false}, {0, 9, false},
  };
  for (const auto& c : cases) {
    std::u16string field(c.fieldLength, u'a');
    const std::u16string before = field;
    EXPECT_EQ(AddPostambleKey(field, c.key), c.added) << c.fieldLength << " " << c.key;
    if (c.added) {
      EXPECT_EQ(field, before + std::u16string(PostambleKeys()[c.key].Text));
    } else {
      EXPECT_EQ(field, before);
    }
  }
}

}  // namespace
}  // namespace wavetrace::rx
