#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "rx/replace_rules.h"

namespace wavetrace::app {

// The "Rx Options" sheet's pages, in tab order.
enum class RxOptionsPage { kFilters, kReplace, kLogging, kRelay, kAdvanced };
inline constexpr int kRxOptionsPageCount = 5;
// "Filters", "Replace", "Logging", "Relay", "Advanced".
std::u16string_view RxOptionsPageTitle(RxOptionsPage page);

// The sheet's check boxes, each stored the moment it is clicked: the three of
// the Filters page and "Disable Search and Replace" on the Replace page.
enum class RxSwitch { kBinBrackets, kNonChars, kFilterNP, kDisableSnR };
bool RxSwitchTicked(const core::DataSettings& data, RxSwitch which);

// "Delay Rx processing by:" on the Advanced page: four characters, 0 to 9999 ms.
inline constexpr int kDelayFieldChars = 4;
inline constexpr uint32_t kMaxRxDelay = 9999;
// The up-down control's position for a delay (the delay divided by 100).
int DelayUpDownPosition(uint32_t delay);
// The delay the up-down arrows give: the position moved by steps, times 100,
// held to 0..9999.
uint32_t SteppedDelay(uint32_t delay, int steps);

// The receive options sheet: its pages edit the live settings, and it keeps a
// backup of the data and logging settings, taken when it opens, for Cancel.
// Every store publishes the settings, so the receive thread uses a change
// from its next block on. A page takes no notification before it is ready
// (filled with the settings), so filling its controls stores nothing.
class ReceiveOptionsSheet {
 public:
  explicit ReceiveOptionsSheet(core::AppState& state);

  void SetPageReady(RxOptionsPage page);
  [[nodiscard]] bool PageReady(RxOptionsPage page) const;

  void StoreSwitch(RxSwitch which, bool ticked);

  // The Replace page: the rule list's operations on the live list (rx/
  // replace_rules), each published. The choice radios store into the rule
  // on show at once.
  void StoreRuleMode(const rx::RuleFields& mode);
  void SelectRule(const rx::RuleFields& fields, int32_t index);
  bool AddRule(const rx::RuleFields& fields);
  void RemoveRule();
  bool InsertRule();

  // The delay field edited: its leading digits as the delay (none read as
  // 0, which switches the delay off). A value above 9999 stores 0 and
  // returns the field's new text, "0".
  std::optional<std::u16string> EditDelayField(std::u16string_view text);

  // Apply (also OK): the Filters page re-reads and re-parses the postamble
  // field, the Replace page stores the rule on show, compacts and prepares
  // the rules; then the backup becomes the live settings.
  void Apply(std::u16string_view postambleField, const rx::RuleFields& ruleOnShow);
  // Cancel, or closing the sheet any other way: the backup comes back.
  void Cancel();

 private:
  [[nodiscard]] bool Ready(RxOptionsPage page) const { return ready_[static_cast<size_t>(page)] != 0; }

  core::AppState& state_;
  core::DataSettings dataBackup_;
  core::LogSettings logBackup_;
  std::array<uint8_t, kRxOptionsPageCount> ready_{};
};

}  // namespace wavetrace::app
