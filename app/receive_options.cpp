#include "app/receive_options.h"

#include <algorithm>

#include "core/published_settings.h"
#include "log/log_page.h"
#include "rx/postamble.h"

namespace wavetrace::app {
namespace {

constexpr std::array<std::u16string_view, kRxOptionsPageCount> kPageTitles = {
    u"Filters", u"Replace", u"Logging", u"Relay", u"Advanced"};

constexpr int kDelayStep = 100;

template <typename Data>
auto& SwitchField(Data& data, RxSwitch which) {
  switch (which) {
    case RxSwitch::kBinBrackets:
      return data.BinBrackets;
    case RxSwitch::kNonChars:
      return data.NonChars;
    case RxSwitch::kFilterNP:
      return data.FilterNP;
    case RxSwitch::kDisableSnR:
      break;
  }
  return data.DisableSnR;
}

RxOptionsPage PageOf(RxSwitch which) {
  return which == RxSwitch::kDisableSnR ? RxOptionsPage::kReplace : RxOptionsPage::kFilters;
}

}  // namespace

std::u16string_view RxOptionsPageTitle(RxOptionsPage page) {
  return kPageTitles[static_cast<size_t>(page)];
}

bool RxSwitchTicked(const core::DataSettings& data, RxSwitch which) {
  return SwitchField(data, which) == 1;
}

int DelayUpDownPosition(uint32_t delay) {
  return static_cast<int>(delay / kDelayStep);
}

uint32_t SteppedDelay(uint32_t delay, int steps) {
  // Position 100 is the first past 9900: it gives the largest delay.
  const int position =
      std::clamp(DelayUpDownPosition(delay) + steps, 0, static_cast<int>(kMaxRxDelay + 1) / kDelayStep);
  return std::min<uint32_t>(static_cast<uint32_t>(position * kDelayStep), kMaxRxDelay);
}

ReceiveOptionsSheet::ReceiveOptionsSheet(core::AppState& state)
    : state_(state), dataBackup_(state.Data), logBackup_(log::LogSettingsBackup(state)) {}

void ReceiveOptionsSheet::SetPageReady(RxOptionsPage page) {
  ready_[static_cast<size_t>(page)] = 1;
}

bool ReceiveOptionsSheet::PageReady(RxOptionsPage page) const {
  return Ready(page);
}

void ReceiveOptionsSheet::StoreSwitch(RxSwitch which, bool ticked) {
  if (!Ready(PageOf(which))) return;
  SwitchField(state_.Data, which) = ticked ? 1 : 0;
  core::PublishSettings(state_);
}

void ReceiveOptionsSheet::StoreRuleMode(const rx::RuleFields& mode) {
  if (!Ready(RxOptionsPage::kReplace)) return;
  core::SnRRule& rule =
      state_.Data.SnR[std::clamp(state_.Data.SnRCurrentRule, 1, core::DataSettings::kMaxSnRRules)];
  rule.Rall = mode.Rall;
  rule.Rfo = mode.Rfo;
  rule.Rlo = mode.Rlo;
  core::PublishSettings(state_);
}

void ReceiveOptionsSheet::SelectRule(const rx::RuleFields& fields, int32_t index) {
  if (!Ready(RxOptionsPage::kReplace)) return;
  rx::SelectRule(state_.Data, fields, index);
  core::PublishSettings(state_);
}

bool ReceiveOptionsSheet::AddRule(const rx::RuleFields& fields) {
  if (!Ready(RxOptionsPage::kReplace) || !rx::AddRule(state_.Data, fields)) return false;
  core::PublishSettings(state_);
  return true;
}

void ReceiveOptionsSheet::RemoveRule() {
  if (!Ready(RxOptionsPage::kReplace)) return;
  rx::RemoveRule(state_.Data);
  core::PublishSettings(state_);
}

bool ReceiveOptionsSheet::InsertRule() {
  if (!Ready(RxOptionsPage::kReplace) || !rx::InsertRule(state_.Data)) return false;
  core::PublishSettings(state_);
  return true;
}

std::optional<std::u16string> ReceiveOptionsSheet::EditDelayField(std::u16string_view text) {
  if (!Ready(RxOptionsPage::kAdvanced)) return std::nullopt;
  uint64_t value = 0;
  for (char16_t ch : text) {
    if (ch < u'0' || ch > u'9') break;
    value = std::min<uint64_t>(value * 10 + static_cast<uint64_t>(ch - u'0'), UINT32_MAX);
  }
  std::optional<std::u16string> rewrite;
  if (value > kMaxRxDelay) {
    value = 0;
    rewrite = u"0";
  }
  state_.Data.RxDelayReadThread = static_cast<uint32_t>(value);
  core::PublishSettings(state_);
  return rewrite;
}

void ReceiveOptionsSheet::Apply(std::u16string_view postambleField, const rx::RuleFields& ruleOnShow) {
  if (Ready(RxOptionsPage::kFilters)) rx::ApplyPostambleField(state_.Data, postambleField);
  if (Ready(RxOptionsPage::kReplace)) rx::ApplyRulePage(state_.Data, ruleOnShow);
  core::PublishSettings(state_);
  dataBackup_ = state_.Data;
  logBackup_ = log::LogSettingsBackup(state_);
}

void ReceiveOptionsSheet::Cancel() {
  state_.Data = dataBackup_;
  // Publishes both blocks at once.
  log::RestoreLogSettings(state_, logBackup_);
}

}  // namespace wavetrace::app
