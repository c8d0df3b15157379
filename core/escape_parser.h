#pragma once

#include <cstdint>
#include <span>

namespace wavetrace::core {

// The longest digit string an escape may hold in a radix: 8 for 2, 3 for 8
// and 10, 2 for any other.
int32_t MaxEscapeDigits(int32_t radix);

// Replaces bracket escapes such as "[0D]" by the byte they name, in place.
// The text is the zero-terminated byte string at the start of `text` (all of
// it when it holds no zero). An escape is valid when it has 1 to
// MaxEscapeDigits(radix) characters, reads as a number below 256 in the radix
// (reading stops at the first non-digit, so "[1Z]" is 1 in hex) and is not a
// zero read from anything but zeros ("[0Z]" is left as written). Invalid
// escapes stay as written. Bytes freed at the end are zeroed. "[00]" yields a
// zero byte, which ends the text for every consumer of terminated strings.
// A radix outside 2..36 parses nothing. Returns the new text length.
int32_t ParseBracketEscapes(std::span<uint8_t> text, int32_t radix);

}  // namespace wavetrace::core
