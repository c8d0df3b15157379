#include "rx/replace_rules.h"

#include <algorithm>
#include <string>

#include "core/code_page.h"
#include "core/prepared_settings.h"

namespace wavetrace::rx {
namespace {

constexpr int32_t kMaxRules = core::DataSettings::kMaxSnRRules;

void MoveRuleInto(core::SnRRule& to, core::SnRRule& from) {
  to.wcszSearchFor = std::move(from.wcszSearchFor);
  to.wcszReplaceWith = std::move(from.wcszReplaceWith);
  to.Rall = from.Rall;
  to.Rfo = from.Rfo;
  to.Rlo = from.Rlo;
  ClearRule(from);
}

int32_t CurrentIndex(const core::DataSettings& data) {
  return std::clamp(data.SnRCurrentRule, 1, kMaxRules);
}

}  // namespace

void ClearRule(core::SnRRule& rule) {
  rule = core::SnRRule{};
}

void CompactRules(core::DataSettings& data) {
  for (int32_t i = 1; i <= core::ActiveRuleCount(data.SnR_count); ++i) {
    if (!data.SnR[i].wcszSearchFor.empty()) continue;
    for (int32_t later = i + 1; later <= kMaxRules; ++later) {
      if (!data.SnR[later].wcszSearchFor.empty()) {
        MoveRuleInto(data.SnR[i], data.SnR[later]);
        break;
      }
    }
  }
}

RuleFields RuleFieldsOf(const core::DataSettings& data, int32_t index) {
  const core::SnRRule& rule = data.SnR[std::clamp(index, 1, kMaxRules)];
  RuleFields fields;
  fields.SearchFor = rule.wcszSearchFor;
  fields.ReplaceWith = rule.wcszReplaceWith;
  fields.Rall = rule.Rall;
  fields.Rfo = rule.Rfo;
  fields.Rlo = rule.Rlo;
  return fields;
}

void StoreRuleFields(core::DataSettings& data, const RuleFields& fields) {
  core::SnRRule& rule = data.SnR[CurrentIndex(data)];
  rule.wcszSearchFor = fields.SearchFor.substr(0, core::kRuleTextChars);
  rule.wcszReplaceWith = fields.ReplaceWith.substr(0, core::kRuleTextChars);
  rule.Rall = fields.Rall;
  rule.Rfo = fields.Rfo;
  rule.Rlo = fields.Rlo;
}

std::u16string RuleCaption(const core::DataSettings& data) {
  const std::string text = std::to_string(data.SnRCurrentRule) + " / " + std::to_string(data.SnR_count);
  return core::BytesToWide(text);
}

bool CanAddRule(const core::DataSettings& data) {
  return data.SnR_count < kMaxRules;
}

void SelectRule(core::DataSettings& data, const RuleFields& fields, int32_t index) {
  StoreRuleFields(data, fields);
  data.SnRCurrentRule = std::clamp(index, 1, std::max(1, core::ActiveRuleCount(data.SnR_count)));
}

bool AddRule(core::DataSettings& data, const RuleFields& fields) {
  if (!CanAddRule(data)) return false;
  StoreRuleFields(data, fields);
  // The rule being edited counts as in use even before the first apply.
  data.SnR_count = std::max(core::ActiveRuleCount(data.SnR_count), CurrentIndex(data));
  if (data.SnR_count >= kMaxRules) return true;
  data.SnR_count += 1;
  ClearRule(data.SnR[data.SnR_count]);
  data.SnRCurrentRule = data.SnR_count;
  return true;
}

void RemoveRule(core::DataSettings& data) {
  for (int32_t i = CurrentIndex(data); i < kMaxRules; ++i) MoveRuleInto(data.SnR[i], data.SnR[i + 1]);
  ClearRule(data.SnR[kMaxRules]);
  // The list keeps one slot through this button, deliberately: removing the
  // only rule leaves an empty rule 1 rather than no rule at all.
  if (data.SnR_count > 1) data.SnR_count = core::ActiveRuleCount(data.SnR_count) - 1;
  data.SnRCurrentRule =
      std::clamp(data.SnRCurrentRule, 1, std::max(1, core::ActiveRuleCount(data.SnR_count)));
}

bool InsertRule(core::DataSettings& data) {
  if (!CanAddRule(data)) return false;
  const int32_t current = CurrentIndex(data);
  for (int32_t i = kMaxRules; i > current; --i) MoveRuleInto(data.SnR[i], data.SnR[i - 1]);
  ClearRule(data.SnR[current]);
  data.SnR_count = std::max(core::ActiveRuleCount(data.SnR_count) + 1, current);
  return true;
}

void ApplyRulePage(core::DataSettings& data, const RuleFields& fields) {
  StoreRuleFields(data, fields);
  CompactRules(data);
  data.SnR_count = 0;
  for (int32_t i = kMaxRules; i >= 1; --i) {
    if (!data.SnR[i].wcszSearchFor.empty()) {
      data.SnR_count = i;
      break;
    }
  }
  PrepareRules(data);
}

}  // namespace wavetrace::rx
