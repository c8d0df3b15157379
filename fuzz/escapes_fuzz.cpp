// Feeds arbitrary text to the bracket-escape parser in every radix and checks
// what the parser promises: it never lengthens the text, it leaves text
// without "[" alone, and it zeroes what it frees.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/escape_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int32_t radix = static_cast<int8_t>(data[0]) % 40;
  std::vector<uint8_t> text(data + 1, data + size);
  const auto before = text;
  const auto terminator = std::find(before.begin(), before.end(), uint8_t{0});
  const auto originalLength = static_cast<int32_t>(terminator - before.begin());

  const int32_t length = wavetrace::core::ParseBracketEscapes(text, radix);
  if (length < 0 || length > originalLength) std::abort();
  if (!std::equal(text.begin() + originalLength, text.end(), before.begin() + originalLength)) std::abort();
  for (int32_t i = length; i < originalLength; ++i) {
    if (text[static_cast<size_t>(i)] != 0) std::abort();
  }
  if (std::find(before.begin(), terminator, uint8_t{'['}) == terminator && text != before) std::abort();
  return 0;
}
