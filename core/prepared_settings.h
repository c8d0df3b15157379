#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/settings.h"

namespace wavetrace::core {

// The settings' byte forms that the workers read: the texts an option page or
// a configuration file holds, converted to the code page and escape-parsed.
// Both the option pages and the configuration loader rebuild them here.

// Characters of postamble text a configuration file's value yields.
inline constexpr size_t kPostambleLoadBytes = 14;
// Characters the rule texts keep (42 slots with the terminator).
inline constexpr size_t kRuleTextChars = SnRRule::kTextChars - 1;
inline constexpr std::u16string_view kTimeStampToken = u"{TIME_STAMP}";

// Converts at most maxBytes characters of text to the code page into the
// zeroed postamble bytes and parses escapes in radix 16. Returns the length.
int32_t ParsePostambleText(std::u16string_view text, size_t maxBytes,
                           std::array<uint8_t, DataSettings::kPostambleChars>& bytes);

// The rules in use, 0..2, whatever SnR_count holds (a configuration file may
// carry any number; the slots stop at 2).
int32_t ActiveRuleCount(int32_t snrCount);

// Rebuilds one rule's byte fields from its texts: both zeroed, each text
// converted to at most 41 bytes and escape-parsed in radix 16; also the
// unparsed replacement and its {TIME_STAMP} flag. The receive thread reads
// only what this prepares, so a changed text takes effect when prepared.
void PrepareRule(SnRRule& rule);
// PrepareRule for rules 1..SnR_count (the Replace page's apply and the loader).
void PrepareRules(DataSettings& data);

}  // namespace wavetrace::core
