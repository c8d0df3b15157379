#include "core/decimal_text.h"

#include <algorithm>

namespace wavetrace::core {

uint32_t LeadingDecimal(std::u16string_view text) {
  uint64_t value = 0;
  for (char16_t ch : text) {
    if (ch < u'0' || ch > u'9') break;
    value = std::min<uint64_t>(value * 10 + (ch - u'0'), UINT32_MAX);
  }
  return static_cast<uint32_t>(value);
}

std::u16string DecimalText(int64_t value) {
  std::string digits = std::to_string(value);
  return {digits.begin(), digits.end()};
}

}  // namespace wavetrace::core
