#include <gtest/gtest.h>

#include "core/code_page.h"

namespace wavetrace::core {
namespace {

TEST(CodePage, EveryByteSurvivesTheRoundTrip) {
  std::string all;
  for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
  std::u16string wide = BytesToWide(all);
  ASSERT_EQ(wide.size(), 256u);
  EXPECT_EQ(WideToBytes(wide), all);
  // Distinct bytes give distinct characters: the mapping is a bijection.
  std::u16string sorted = wide;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
}

TEST(CodePage, KnownCharacters) {
  struct Case {
    uint8_t byte;
    char16_t wide;
  };
  for (const Case& c : {Case{0x00, 0x0000}, Case{0x41, u'A'}, Case{0x80, 0x20AC}, Case{0x81, 0x0081},
                        Case{0x8D, 0x008D}, Case{0x8F, 0x008F}, Case{0x90, 0x0090}, Case{0x9D, 0x009D},
                        Case{0x9F, 0x0178}, Case{0xA0, 0x00A0}, Case{0xE9, 0x00E9}, Case{0xFF, 0x00FF}}) {
    EXPECT_EQ(ByteToWide(c.byte), c.wide) << int(c.byte);
    EXPECT_EQ(WideToByte(c.wide), c.byte) << int(c.byte);
  }
}

TEST(CodePage, CharactersOutsideBecomeQuestionMarks) {
  EXPECT_EQ(WideToByte(0x0100), -1);
  EXPECT_EQ(WideToBytes(u"a\u4e2db\u20ac"), std::string("a?b\x80"));
}

TEST(Utf8, RoundTripsIncludingSurrogatePairs) {
  std::u16string text = u"caf\u00e9 \u20ac \U0001F600 /tmp/x";
  EXPECT_EQ(Utf8ToWide(WideToUtf8(text)), text);
  EXPECT_EQ(WideToUtf8(u"\u00e9"), "\xC3\xA9");
  // Broken sequences become replacement characters instead of being lost.
  EXPECT_EQ(Utf8ToWide("a\xC3"), u"a\uFFFD");
  EXPECT_EQ(Utf8ToWide("\xFF"
                       "b"),
            u"\uFFFDb");
}

}  // namespace
}  // namespace wavetrace::core
