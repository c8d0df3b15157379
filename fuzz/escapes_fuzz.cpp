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
  // An escape left as written is skipped whole; a replaced one is not read again.
  for (size_t open = 0; open < text.size(); ++open) {
    if (text[open] != '[') continue;
    const auto close = std::find(text.begin() + static_cast<long>(open), text.end(), uint8_t{']'});
    if (close == text.end()) break;
    const auto closeAt = static_cast<size_t>(close - text.begin());
    const int value = OneEscape(text.data() + open + 1, closeAt - open - 1, radix);
    if (value < 0) {
      open = closeAt;
      continue;
    }
    text[open] = static_cast<uint8_t>(value);
    text.erase(text.begin() + static_cast<long>(open) + 1, close + 1);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int32_t radix = static_cast<int8_t>(data[0]) % 40;
  std::vector<uint8_t> text(data + 1, data + size);
  const std::vector<uint8_t> expected = Reference(text, radix);
  const int32_t length = wavetrace::core::ParseBracketEscapes(text, radix);
  if (length < 0 || static_cast<size_t>(length) > text.size()) std::abort();
  if (!std::equal(text.begin(), text.begin() + length, expected.begin(), expected.end())) std::abort();
  return 0;
}
