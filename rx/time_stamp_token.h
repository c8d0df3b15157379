#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/prepared_settings.h"
#include "core/settings.h"
#include "rx/time_stamp.h"

namespace wavetrace::rx {

// Whether the rule's prepared replacement carries the token.
bool HasTimeStampToken(const core::SnRRule& rule);

// Builds a stamped rule's replacement bytes from its prepared replacement
// text (PrepareRule) with the first token replaced by the stamp (a second
// token stays as written), then parses escapes in radix 16. The composition
// is cut at 41 bytes so it fits the 42-byte field. Returns the length.
int32_t BuildStampedReplacement(const core::SnRRule& rule, std::string_view stamp,
                                std::array<uint8_t, core::SnRRule::kBytes>& bytes);

// The bytes a rule puts in place of each match. A plain rule's are its
// prepared bytes; a stamped rule's are built afresh with a new stamp at each
// match, here and not in the rule, which belongs to the published settings
// and is shared with every other block.
class RuleReplacement {
 public:
  RuleReplacement(const core::SnRRule& rule, const core::TimeStampFormat& format, StampSource& stamps);

  // Called at each match before the bytes are used: a stamped rule takes
  // the next stamp.
  void NextMatch();
  [[nodiscard]] bool Stamped() const { return stamped_; }
  [[nodiscard]] const uint8_t* Bytes() const {
    return stamped_ ? scratch_.data() : rule_.ReplaceBytes.data();
  }
  [[nodiscard]] int32_t Length() const { return stamped_ ? scratchLength_ : rule_.ReplaceLength; }

 private:
  const core::SnRRule& rule_;
  const core::TimeStampFormat& format_;
  StampSource& stamps_;
  bool stamped_;
  std::array<uint8_t, core::SnRRule::kBytes> scratch_{};
  int32_t scratchLength_ = 0;
};

}  // namespace wavetrace::rx
