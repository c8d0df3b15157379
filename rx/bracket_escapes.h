#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/app_state.h"
#include "core/escape_parser.h"

namespace wavetrace::rx {

// The radix the numeric view and radix-0 escapes use: Base when it is one of
// the four the menu offers (2, 8, 10, 16), otherwise 16. A configuration file
// may hold any number, and the numeric view is sized for those four only.
int32_t EffectiveBase(int32_t base);

// core::ParseBracketEscapes with a radix of 0 meaning the view's radix (EffectiveBase). The transmit
// path passes 0; option pages, rule preparation and the configuration loader
// pass 16.
int32_t ParseBracketEscapes(const core::AppState& state, std::span<uint8_t> text, int32_t radix);

// Convenience for callers that hold the text as a string: parses the part up
// to the first zero byte and shrinks the string to the returned length.
int32_t ParseBracketEscapes(const core::AppState& state, std::string& text, int32_t radix);

}  // namespace wavetrace::rx
