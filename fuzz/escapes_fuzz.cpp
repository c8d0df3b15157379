// Feeds arbitrary text to the bracket-escape parser in every radix and
// compares it with a plain reference: the escapes replaced one at a time,
// each replacement moving the rest of the text down, the way the parser's
// rules read. The reference asks the parser only what one escape by itself
// stands for. (That it zeroes what it frees and leaves the bytes behind the
// terminator alone: ParseBracketEscapesTest.TheTextEndsAtItsTerminatorOrTheBuffer.)
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/escape_parser.h"

namespace {

// The byte "[" chars "]" stands for alone, or -1 when it stays as written.
int OneEscape(const uint8_t* chars, size_t count, int32_t radix) {
  std::vector<uint8_t> escape(count + 2);
  escape.front() = '[';
  std::memcpy(escape.data() + 1, chars, count);
  escape.back() = ']';
  if (std::find(escape.begin(), escape.end(), uint8_t{0}) != escape.end()) return -1;
  if (wavetrace::core::ParseBracketEscapes(escape, radix) != 1) return -1;
  return escape[0];
}

std::vector<uint8_t> Reference(std::vector<uint8_t> text, int32_t radix) {
  text.erase(std::find(text.begin(), text.end(), uint8_t{0}), text.end());
  if (radix < 2 || radix > 36) return text;
  size_t from = 0;
  while (from < text.size()) {
    auto open = std::find(text.begin() + static_cast<long>(from), text.end(), uint8_t{'['});
    if (open == text.end()) break;
    auto close = std::find(open + 1, text.end(), uint8_t{']'});
    const auto openAt = static_cast<size_t>(open - text.begin());
    if (close == text.end()) {
      from = openAt + 1;
      continue;
    }
    const auto closeAt = static_cast<size_t>(close - text.begin());
    const int value = OneEscape(text.data() + openAt + 1, closeAt - openAt - 1, radix);
    if (value < 0) {
      from = closeAt;
      continue;
    }
    text[openAt] = static_cast<uint8_t>(value);
    text.erase(open + 1, close + 1);
    from = openAt + 1;
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int32_t radix = static_cast<int8_t>(data[0]) % 40;
  std::vector<uint8_t> text(data + 1, data + size);
  const auto before = text;
  const auto terminator = std::find(before.begin(), before.end(), uint8_t{0});
  const auto originalLength = static_cast<int32_t>(terminator - before.begin());

  const int32_t length = wavetrace::core::ParseBracketEscapes(text, radix);
  if (length < 0 || length > originalLength) std::abort();
  const std::vector<uint8_t> expected = Reference(before, radix);
  if (!std::equal(text.begin(), text.begin() + length, expected.begin(), expected.end())) std::abort();
  return 0;
}
