#include "core/prepared_settings.h"

#include <algorithm>
#include <span>
#include <string>

#include "core/code_page.h"
#include "core/escape_parser.h"

namespace wavetrace::core {
namespace {

// Zeroes bytes, writes at most maxChars characters of text there in the code
// page (a terminator always fits) and parses escapes in radix 16.
int32_t TextToEscapedBytes(std::u16string_view text, size_t maxChars, std::span<uint8_t> bytes) {
  std::fill(bytes.begin(), bytes.end(), uint8_t{0});
  const std::string narrow = WideToBytes(text.substr(0, std::min(maxChars, bytes.size() - 1)));
  std::copy(narrow.begin(), narrow.end(), bytes.begin());
  return ParseBracketEscapes(bytes, 16);
}

}  // namespace

int32_t ParsePostambleText(std::u16string_view text, size_t maxBytes,
                           std::array<uint8_t, DataSettings::kPostambleChars>& bytes) {
  return TextToEscapedBytes(text, maxBytes, bytes);
}

int32_t ActiveRuleCount(int32_t snrCount) {
  return std::clamp(snrCount, 0, DataSettings::kMaxSnRRules);
}

void PrepareRule(SnRRule& rule) {
  rule.SearchLength = TextToEscapedBytes(rule.wcszSearchFor, kRuleTextChars, rule.SearchBytes);
  rule.ReplaceLength = TextToEscapedBytes(rule.wcszReplaceWith, kRuleTextChars, rule.ReplaceBytes);
  const std::u16string_view replaceText = std::u16string_view(rule.wcszReplaceWith).substr(0, kRuleTextChars);
  const std::string narrow = WideToBytes(replaceText);
  rule.ReplaceTextBytes.fill(0);
  std::copy(narrow.begin(), narrow.end(), rule.ReplaceTextBytes.begin());
  rule.ReplaceHasTimeStamp = replaceText.find(kTimeStampToken) != std::u16string_view::npos;
}

void PrepareRules(DataSettings& data) {
  for (int32_t i = 1; i <= ActiveRuleCount(data.SnR_count); ++i)
    PrepareRule(data.SnR[static_cast<size_t>(i)]);
}

}  // namespace wavetrace::core
