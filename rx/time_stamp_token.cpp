#include "rx/time_stamp_token.h"

#include <algorithm>
#include <mutex>
#include <string>

#include "core/escape_parser.h"
#include "rx/time_stamp.h"

namespace wavetrace::rx {

bool HasTimeStampToken(const core::SnRRule& rule) {
  return rule.ReplaceHasTimeStamp != 0;
}

void RebuildStampedReplacement(core::AppState& state, core::SnRRule& rule) {
  std::string stamp;
  {
    std::lock_guard lock(state.RxDataLock);
    BuildTimeStamp(state);
    const auto& current = state.Log.CurrentTimeStamp;
    stamp.assign(current.begin(), std::find(current.begin(), current.end(), uint8_t{0}));
  }
  const size_t limit = core::SnRRule::kBytes - 1;
  const auto& prepared = rule.ReplaceTextBytes;
  const std::string text(prepared.begin(), std::find(prepared.begin(), prepared.begin() + limit, uint8_t{0}));
  // Only the first token is replaced. The token is plain ASCII, so its place
  // in the bytes is its place in the text.
  std::string composed = text;
  const size_t at = text.find("{TIME_STAMP}");
  if (at != std::string::npos)
    composed = text.substr(0, at) + stamp + text.substr(at + core::kTimeStampToken.size());
  composed.resize(std::min(composed.size(), limit));

  rule.ReplaceBytes.fill(0);
  std::copy(composed.begin(), composed.end(), rule.ReplaceBytes.begin());
  rule.ReplaceLength = core::ParseBracketEscapes(rule.ReplaceBytes, 16);
}

}  // namespace wavetrace::rx
