#include "core/escape_parser.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace wavetrace::core {
namespace {

bool IsSpace(uint8_t c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

int DigitValue(uint8_t c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'z') return c - 'a' + 10;
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  return 99;
}

// Reads a number the way the C library's unsigned conversion does in the "C"
// locale (leading blanks, a sign, "0x" before hex digits, then digits up to
// the first non-digit), without depending on the process locale. A negative
// number comes back as a huge value, exactly like the library's wrap-around.
uint64_t ReadUnsigned(const uint8_t* digits, int32_t radix) {
  const uint8_t* p = digits;
  while (IsSpace(*p)) ++p;
  bool negative = false;
  if (*p == '+' || *p == '-') negative = (*p++ == '-');
  if (radix == 16 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X') && DigitValue(p[2]) < 16) p += 2;
  uint64_t value = 0;
  for (int d = DigitValue(*p); d < radix; d = DigitValue(*++p)) value = value * radix + d;
  return negative ? uint64_t{0} - value : value;
}

// The byte an escape's k characters stand for, or -1 when it is not valid.
int EscapeValue(const uint8_t* chars, int32_t k, int32_t radix) {
  if (k < 1 || k > MaxEscapeDigits(radix)) return -1;
  std::array<uint8_t, 16> scratch{};
  std::memcpy(scratch.data(), chars, static_cast<size_t>(k));
  if (std::memchr(scratch.data(), '[', static_cast<size_t>(k))) return -1;
  const uint64_t value = ReadUnsigned(scratch.data(), radix);
  if (value == 0 && !std::all_of(chars, chars + k, [](uint8_t c) { return c == '0'; })) return -1;
  return value < 256 ? static_cast<int>(value) : -1;
}

}  // namespace

int32_t MaxEscapeDigits(int32_t radix) {
  if (radix == 2) return 8;
  if (radix == 8 || radix == 10) return 3;
  return 2;
}

int32_t ParseBracketEscapes(std::span<uint8_t> text, int32_t radix) {
  uint8_t* const data = text.data();
  const auto terminator = std::find(text.begin(), text.end(), uint8_t{0});
  const size_t length = static_cast<size_t>(terminator - text.begin());
  if (radix < 2 || radix > 36) return static_cast<int32_t>(length);

  // One pass: the text read so far, with its escapes replaced, is
  // data[0, to); what is still to read is data[from, length) as written. Each
  // byte is looked at and moved once, so a long line of escapes takes time
  // in proportion to its length.
  size_t from = 0;
  size_t to = 0;
  auto keep = [&](size_t end) {
    if (to != from) std::memmove(data + to, data + from, end - from);
    to += end - from;
    from = end;
  };
  while (from < length) {
    const auto* open = static_cast<const uint8_t*>(std::memchr(data + from, '[', length - from));
    if (!open) break;
    const size_t openAt = static_cast<size_t>(open - data);
    const auto* close = static_cast<const uint8_t*>(std::memchr(data + openAt + 1, ']', length - openAt - 1));
    if (!close) break;  // no "[" further on has a "]" after it either
    const size_t closeAt = static_cast<size_t>(close - data);
    const int value = EscapeValue(data + openAt + 1, static_cast<int32_t>(closeAt - openAt - 1), radix);
    if (value < 0) {
      keep(closeAt);  // left as written; the search goes on from its "]"
      continue;
    }
    keep(openAt);
    data[to++] = static_cast<uint8_t>(value);
    from = closeAt + 1;
  }
  keep(length);
  if (to < length) std::memset(data + to, 0, length - to);
  return static_cast<int32_t>(to);
}

}  // namespace wavetrace::core
