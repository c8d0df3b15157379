#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace wavetrace::core {

// What the option pages' number fields hold, read and written back.

// The leading decimal digits, saturating at UINT32_MAX; no digits read as 0.
uint32_t LeadingDecimal(std::u16string_view text);
// The number in decimal digits.
std::u16string DecimalText(int64_t value);

}  // namespace wavetrace::core
