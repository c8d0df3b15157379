#include <gtest/gtest.h>

#include "core/code_page.h"

namespace wavetrace::core {
namespace {

using namespace std::string_literals;

TEST(CodePage, EveryByteSurvivesTheRoundTripAndCharactersOutsideBecomeQuestionMarks) {
  std::string all;
  for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
  // Every byte comes back, so distinct bytes give distinct characters.
  EXPECT_EQ(WideToBytes(BytesToWide(all)), all);
  // Known characters; the round trip gives the way back.
  const char16_t known[] = {0, u'A', 0x20AC, 0x81, 0x8D, 0x8F, 0x90, 0x9D, 0x0178, 0xA0, 0xE9, 0xFF};
  EXPECT_EQ(BytesToWide("\x00\x41\x80\x81\x8D\x8F\x90\x9D\x9F\xA0\xE9\xFF"s), std::u16string(known, 12));
  EXPECT_EQ(WideToBytes(u"a\u4e2db\u0100\u20ac"), std::string("a?b?\x80"));
}

TEST(Utf8, RoundTripsIncludingSurrogatePairs) {
  std::u16string text = u"caf\u00e9 \u20ac \U0001F600 /tmp/x";
  EXPECT_EQ(Utf8ToWide(WideToUtf8(text)), text);
  EXPECT_EQ(WideToUtf8(u"\u00e9"), "\xC3\xA9");
  // Broken sequences become replacement characters instead of being lost.
  EXPECT_EQ(Utf8ToWide("a\xC3"), u"a\uFFFD");
  EXPECT_EQ(Utf8ToWide("\xFF"s + "b"), u"\uFFFDb");
}

}  // namespace
}  // namespace wavetrace::core
