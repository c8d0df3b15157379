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
  length = ProcessReceivedData(state, core::RxSettingsOf(state), block);
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

TEST(PostambleTest, AddedKeysAndTheFieldLimit) {
  // Keys by name: the arrow keys arrive as their key codes. Add accepts up
  // to 16 characters while apply keeps 13, so a late key can be lost.
  const struct {
    size_t fieldLength;
    std::u16string_view key;
    bool added;
    std::string appliedTail;  // the parsed bytes the key adds
  } cases[] = {
      {0, u"Enter", true, "\r"}, {0, u"LineFeed", true, "\n"}, {0, u"Comma", true, ","},
      {0, u"Tab", true, "\t"},   {0, u"Down", true, "("},      {0, u"Right", true, "'"},
      {0, u"Left", true, "%"},   {0, u"Up", true, "&"},        {0, u"Esc", true, "\x1b"},
      {9, u"Enter", true, "\r"}, {12, u"Enter", true, ""},     {13, u"Enter", false, ""},
      {15, u"Comma", true, ""},  {16, u"Comma", false, ""},
  };
  for (const auto& c : cases) {
    size_t index = 0;
    while (index < PostambleKeys().size() && PostambleKeys()[index].Name != c.key) ++index;
    ASSERT_LT(index, PostambleKeys().size()) << "no key named so";
    std::u16string field(c.fieldLength, u'a');
    EXPECT_EQ(AddPostambleKey(field, index), c.added) << c.fieldLength;
    EXPECT_EQ(field.size(), c.fieldLength + (c.added ? PostambleKeys()[index].Text.size() : 0));
    core::DataSettings data;
    ApplyPostambleField(data, field);
    const std::string kept(std::min<size_t>(c.fieldLength, kPostambleApplyChars), 'a');
    EXPECT_EQ(ParsedBytes(data).substr(0, kept.size() + c.appliedTail.size()), kept + c.appliedTail)
        << c.fieldLength;
  }
  std::u16string field;
  EXPECT_FALSE(AddPostambleKey(field, PostambleKeys().size()));
}

}  // namespace
}  // namespace wavetrace::rx
