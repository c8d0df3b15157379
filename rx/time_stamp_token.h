#pragma once

#include <string_view>

#include "core/app_state.h"
#include "core/prepared_settings.h"

namespace wavetrace::rx {

// Whether the rule's prepared replacement carries the token.
bool HasTimeStampToken(const core::SnRRule& rule);

// Refreshes the stamp and rebuilds the rule's replacement bytes from its
// prepared replacement text (PrepareRule) with the first token replaced by
// the current stamp (a second token stays as written), then parses escapes in
// radix 16 and sets ReplaceLength. The composition is cut at 41 bytes so it
// fits the 42-byte field.
void RebuildStampedReplacement(core::AppState& state, core::SnRRule& rule);

}  // namespace wavetrace::rx
