#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "core/prepared_settings.h"

namespace wavetrace::rx {

// Characters the Replace page's edit fields accept.
inline constexpr size_t kRuleFieldChars = 40;

// A slot in its fresh state: empty texts, Rall 1.
void ClearRule(core::SnRRule& rule);

// Closes gaps: each rule 1..SnR_count whose search text is empty takes the
// next later non-empty slot (texts and choice flags), which is then cleared.
void CompactRules(core::DataSettings& data);

// What the Replace page edits for the current rule.
struct RuleFields {
  std::u16string SearchFor;
  std::u16string ReplaceWith;
  int32_t Rall = 1;
  int32_t Rfo = 0;
  int32_t Rlo = 0;
};

// The rule page's operations on the live rule list; the page itself only
// shows RuleFieldsOf(current) and the caption, and calls these.
RuleFields RuleFieldsOf(const core::DataSettings& data, int32_t index);
// Stores the fields into the current rule (texts cut to 41 characters).
void StoreRuleFields(core::DataSettings& data, const RuleFields& fields);
// "%d / %d" of the current index and SnR_count.
std::u16string RuleCaption(const core::DataSettings& data);
// "Add" and "Insert" are available while fewer than two rules exist.
bool CanAddRule(const core::DataSettings& data);

// Moving to another rule: stores the fields, then makes index (clamped to
// 1..SnR_count) current.
void SelectRule(core::DataSettings& data, const RuleFields& fields, int32_t index);
// "Add": stores the fields (the rule on show counts as in use from then on),
// appends a fresh rule and makes it current.
// Returns false, changing nothing, when the list is full.
bool AddRule(core::DataSettings& data, const RuleFields& fields);
// "Remove": drops the current rule, moving later ones down and clearing the
// last slot. SnR_count drops by one but never below one through this button.
void RemoveRule(core::DataSettings& data);
// "Insert": moves the current and later rules up one and clears the current
// slot. Returns false, changing nothing, when the list is full.
bool InsertRule(core::DataSettings& data);
// The page's apply: stores the fields, compacts, recounts SnR_count as the
// highest slot with a search text, and prepares the rules.
void ApplyRulePage(core::DataSettings& data, const RuleFields& fields);

}  // namespace wavetrace::rx
