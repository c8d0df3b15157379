#pragma once

#include <cstdint>
#include <string>

#include "core/app_state.h"
#include "rx/replace_rules.h"

namespace wavetrace::app {

// What the receive options sheet edits on its Filters page.
struct ReceiveOptionValues {
  int32_t FilterNP = 0;            // 1: only printable bytes are kept
  int32_t NonChars = 0;            // 1: the numeric view lets visible characters pass
  int32_t BinBrackets = 0;         // 1: numbers without "[" "]"
  int32_t DisableSnR = 0;          // 1: the search-and-replace rules are switched off
  std::u16string PostambleKeysRX;  // the postamble field, in escape notation
};

ReceiveOptionValues ReceiveOptionsOf(const core::AppState& state);
// Stores the Filters page's values (the postamble as ApplyPostambleField
// keeps it) and publishes them to the receive thread.
void ApplyReceiveOptions(core::AppState& state, const ReceiveOptionValues& values);
// The Replace page's apply (rx::ApplyRulePage), published to the receive thread.
void ApplyReplacePage(core::AppState& state, const rx::RuleFields& fields);

}  // namespace wavetrace::app
