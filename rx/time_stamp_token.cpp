#include "rx/time_stamp_token.h"

#include <algorithm>
#include <string>

#include "core/escape_parser.h"

namespace wavetrace::rx {

bool HasTimeStampToken(const core::SnRRule& rule) {
  return rule.ReplaceHasTimeStamp != 0;
}

int32_t BuildStampedReplacement(const core::SnRRule& rule, std::string_view stamp,
                                std::array<uint8_t, core::SnRRule::kBytes>& bytes) {
  const size_t limit = core::SnRRule::kBytes - 1;
  const auto& prepared = rule.ReplaceTextBytes;
  const std::string text(prepared.begin(), std::find(prepared.begin(), prepared.begin() + limit, uint8_t{0}));
  // Only the first token is replaced. The token is plain ASCII, so its place
  // in the bytes is its place in the text.
  std::string composed = text;
  const size_t at = text.find("{TIME_STAMP}");
  if (at != std::string::npos)
    composed = text.substr(0, at) + std::string(stamp) + text.substr(at + core::kTimeStampToken.size());
  composed.resize(std::min(composed.size(), limit));

  bytes.fill(0);
  std::copy(composed.begin(), composed.end(), bytes.begin());
  return core::ParseBracketEscapes(bytes, 16);
}

RuleReplacement::RuleReplacement(const core::SnRRule& rule, const core::TimeStampFormat& format,
                                 StampSource& stamps)
    : rule_(rule), format_(format), stamps_(stamps), stamped_(HasTimeStampToken(rule)) {}

void RuleReplacement::NextMatch() {
  if (stamped_) scratchLength_ = BuildStampedReplacement(rule_, stamps_.NextStamp(format_), scratch_);
}

}  // namespace wavetrace::rx
