#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/app_state.h"

namespace wavetrace::rx {

// The radix the numeric view and radix-0 escapes use: Base when it is one of
// the four the menu offers (2, 8, 10, 16), otherwise 16. A configuration file
// may hold any number, and the numeric view is sized for those four only.
int32_t EffectiveBase(const core::DataSettings& data);

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

// As above; a radix of 0 means the view's radix (EffectiveBase). The transmit
// path passes 0; option pages, rule preparation and the configuration loader
// pass 16.
int32_t ParseBracketEscapes(const core::AppState& state, std::span<uint8_t> text, int32_t radix);

// Convenience for callers that hold the text as a string: parses the part up
// to the first zero byte and shrinks the string to the returned length.
int32_t ParseBracketEscapes(const core::AppState& state, std::string& text, int32_t radix);

}  // namespace wavetrace::rx
