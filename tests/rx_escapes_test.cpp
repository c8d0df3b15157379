#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/app_state.h"
#include "rx/bracket_escapes.h"
#include "rx/byte_search.h"

namespace wavetrace::rx {
namespace {

struct EscapeCase {
  const char* name;
  std::string text;
  int32_t radix;
  std::string expected;  // the bytes up to the returned length
};

// Parses a copy of the text in a buffer with room to spare, as the rule and
// postamble fields have, and checks what stays behind the new end.
std::string Parse(const std::string& text, int32_t radix, int32_t& length) {
  std::vector<uint8_t> buffer(text.begin(), text.end());
  buffer.resize(text.size() + 8, 0);
  length = core::ParseBracketEscapes(buffer, radix);
  for (size_t i = static_cast<size_t>(length); i < buffer.size(); ++i) {
    EXPECT_EQ(buffer[i], 0) << "stale byte behind the new end at " << i;
  }
  return std::string(buffer.begin(), buffer.begin() + length);
}

TEST(ParseBracketEscapesTest, TableOfEscapes) {
  using namespace std::string_literals;
  const std::vector<EscapeCase> cases = {
      {"plain text", "hello", 16, "hello"},
      {"empty", "", 16, ""},
      {"escape between text", "A[0D]B[", 16, "A\rB["},
      {"lower case digits", "[0d][0a]", 16, "\r\n"},
      {"the keys the program writes", "[0D][0A][09][1B]", 16, "\r\n\t\x1b"},
      {"one digit", "[7]", 16, "\x07"},
      {"stops at non-digit", "[1Z]", 16, "\x01"},
      {"zero read from non-zero text", "[0Z]", 16, "[0Z]"},
      {"single zero", "x[0]y", 16, "x\0y"s},
      {"double zero", "[00]", 16, "\0"s},
      {"three digits exceed hex", "[123]", 16, "[123]"},
      {"empty brackets", "[]", 16, "[]"},
      {"unterminated", "[0D", 16, "[0D"},
      {"unterminated after escape", "[41][42", 16, "A[42"},
      {"no digits at all", "[ZZ]", 16, "[ZZ]"},
      {"bracket inside", "[[1]", 16, "[[1]"},
      {"invalid skips to its close", "[XY][41]", 16, "[XY]A"},
      {"nested keeps inner", "[[0D]", 16, "[[0D]"},
      {"adjacent escapes", "[41][42][43]", 16, "ABC"},
      {"result looks like escape", "[5B]41]", 16, "[41]"},
      {"decimal 100", "[100]", 10, "d"},
      {"decimal 255", "[255]", 10, "\xff"},
      {"decimal 256 stays", "[256]", 10, "[256]"},
      {"decimal four digits", "[0065]", 10, "[0065]"},
      {"octal", "[101]", 8, "A"},
      {"octal 8 is no digit", "[8]", 8, "[8]"},
      {"binary eight digits", "[01000001]", 2, "A"},
      {"binary nine digits", "[001000001]", 2, "[001000001]"},
      {"binary 2 is no digit", "[2]", 2, "[2]"},
      {"sign is rejected", "[-1]", 16, "[-1]"},
      {"negative zero", "[-0]", 10, "[-0]"},
      {"plus sign reads", "[+7]", 10, "\x07"},
      {"leading blank reads", "[ 7]", 10, "\x07"},
      {"hex prefix without digit", "[0x]", 16, "[0x]"},
      {"radix out of range parses nothing", "[0D]", 1, "[0D]"},
      {"radix 37 parses nothing", "[0D]", 37, "[0D]"},
  };
  for (const auto& c : cases) {
    int32_t length = 0;
    EXPECT_EQ(Parse(c.text, c.radix, length), c.expected) << c.name;
    EXPECT_EQ(length, static_cast<int32_t>(c.expected.size())) << c.name;
  }
}

TEST(ParseBracketEscapesTest, LongLines) {
  struct Case {
    const char* name;
    std::string unit;      // repeated to make the line
    std::string expected;  // what each unit becomes
  };
  const Case cases[] = {
      {"escapes only", "[41]", "A"},
      {"escapes and invalid ones", "[41]x[ZZ][0D]", "Ax[ZZ]\r"},
      {"results that look like escapes", "[5B]41]", "[41]"},
      {"openings without a close", "[", "["},
  };
  for (const auto& c : cases) {
    std::string text, expected;
    for (int i = 0; i < (1 << 20) / static_cast<int>(c.unit.size()); ++i) {
      text += c.unit;
      expected += c.expected;
    }
    int32_t length = 0;
    EXPECT_EQ(Parse(text, 16, length), expected) << c.name;
  }
}

TEST(ParseBracketEscapesTest, StopsAtTheTerminator) {
  std::vector<uint8_t> text = {'[', '4', '1', ']', 0, '[', '4', '2', ']'};
  EXPECT_EQ(core::ParseBracketEscapes(text, 16), 1);
  EXPECT_EQ(text[0], 'A');
  // Beyond the terminator nothing is touched.
  EXPECT_EQ(std::string(text.begin() + 5, text.end()), "[42]");
}

TEST(ParseBracketEscapesTest, WorksWithoutTerminator) {
  std::vector<uint8_t> text = {'x', '[', '4', '1', ']'};
  EXPECT_EQ(core::ParseBracketEscapes(text, 16), 2);
  EXPECT_EQ(std::string(text.begin(), text.end()), std::string("xA\0\0\0", 5));
}

TEST(ParseBracketEscapesTest, RadixZeroFollowsTheView) {
  core::AppState state;
  const struct {
    int32_t base;
    std::string text;
    std::string expected;
  } cases[] = {
      {16, "[41]", "A"},
      {10, "[065]", "A"},
      {8, "[101]", "A"},
      {2, "[01000001]", "A"},
      // A radix the menu does not offer is read as hex.
      {7, "[41]", "A"},
      {0, "[41]", "A"},
  };
  for (const auto& c : cases) {
    state.Data.Base = c.base;
    std::string text = c.text;
    EXPECT_EQ(ParseBracketEscapes(state, text, 0), 1) << c.base;
    EXPECT_EQ(text, c.expected) << c.base;
  }
  // An explicit radix wins over Base.
  state.Data.Base = 10;
  std::string text = "[41]";
  ParseBracketEscapes(state, text, 16);
  EXPECT_EQ(text, "A");
}

TEST(FindBytesTest, BoundsAndDirections) {
  const std::string data = "abcabcab";
  const auto* bytes = reinterpret_cast<const uint8_t*>(data.data());
  const auto length = static_cast<int64_t>(data.size());
  const struct {
    const char* name;
    std::string pattern;
    int64_t start;
    bool forward;
    int64_t expected;
  } cases[] = {
      {"first forward", "abc", 0, true, 0},
      {"forward from inside", "abc", 1, true, 3},
      {"forward last possible", "ab", 6, true, 6},
      {"forward pattern too long for rest", "abc", 6, true, -1},
      {"start at length", "a", 8, true, -1},
      {"start beyond length", "a", 9, true, -1},
      {"negative start", "a", -1, true, -1},
      {"pattern longer than data", "abcabcabc", 0, true, -1},
      {"whole data", "abcabcab", 0, true, 0},
      {"absent", "abd", 0, true, -1},
      {"case sensitive", "ABC", 0, true, -1},
      {"empty pattern", "", 0, true, -1},
      {"backward highest", "ab", 0, false, 6},
      {"backward start counts from end", "ab", 2, false, 3},
      {"backward match needs room", "abc", 0, false, 3},
      {"backward from the far end", "a", 7, false, 0},
      {"backward start beyond", "a", 9, false, -1},
      {"backward absent", "x", 0, false, -1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FindBytes(bytes, length, reinterpret_cast<const uint8_t*>(c.pattern.data()),
                        static_cast<int64_t>(c.pattern.size()), c.start, c.forward),
              c.expected)
        << c.name;
  }
}

TEST(FindBytesTest, MatchesZeroBytes) {
  const uint8_t data[] = {1, 0, 2, 0, 0};
  const uint8_t pattern[] = {0, 0};
  EXPECT_EQ(FindBytes(data, 5, pattern, 2, 0, true), 3);
  EXPECT_EQ(FindBytes(data, 5, pattern, 1, 2, true), 3);
  EXPECT_EQ(FindBytes(data, 5, pattern, 1, 0, false), 4);
}

}  // namespace
}  // namespace wavetrace::rx
