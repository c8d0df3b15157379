#pragma once

#include <QDialog>
#include <array>

#include "app/receive_options.h"
#include "core/app_state.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;

namespace wavetrace::ui {

class LoggingPage;
class RelayPage;

// The "Rx Options" sheet: Filters (the receive postamble and three filter
// boxes), Replace (the search-and-replace rules), Logging, Relay and
// Advanced (the receive delay). Its pages edit the live settings through
// app::ReceiveOptionsSheet: boxes and radio buttons store at once, Apply and
// OK re-read the postamble field and the rule on show, Cancel (or closing)
// puts back what the settings were when it opened or were last applied.
class ReceiveOptionsDialog : public QDialog {
  Q_OBJECT

 public:
  ReceiveOptionsDialog(core::AppState& state, app::RxOptionsPage startPage, QWidget* parent = nullptr);

  [[nodiscard]] QTabWidget* Tabs() const { return tabs_; }
  // Filters
  [[nodiscard]] QLineEdit* PostambleField() const { return postamble_; }
  [[nodiscard]] QComboBox* KeyList() const { return keys_; }
  [[nodiscard]] QPushButton* AddKeyButton() const { return addKey_; }
  [[nodiscard]] QPushButton* ClearPostambleButton() const { return clearPostamble_; }
  [[nodiscard]] QCheckBox* SwitchBox(app::RxSwitch which) const {
    return switches_[static_cast<size_t>(which)];
  }
  // Replace
  [[nodiscard]] QSpinBox* RuleNumber() const { return ruleNumber_; }
  [[nodiscard]] QLabel* RuleCounter() const { return ruleCounter_; }
  [[nodiscard]] QLineEdit* SearchField() const { return search_; }
  [[nodiscard]] QLineEdit* ReplaceField() const { return replace_; }
  // Ids 0, 1, 2: "Replace all", "Replace first occurring", "Replace last occurring".
  [[nodiscard]] QButtonGroup* RuleModes() const { return modes_; }
  [[nodiscard]] QPushButton* AddRuleButton() const { return addRule_; }
  [[nodiscard]] QPushButton* RemoveRuleButton() const { return removeRule_; }
  [[nodiscard]] QPushButton* InsertRuleButton() const { return insertRule_; }
  // Logging and Relay
  [[nodiscard]] LoggingPage* Logging() const { return logging_; }
  [[nodiscard]] RelayPage* Relay() const { return relay_; }
  // Advanced
  [[nodiscard]] QSpinBox* DelayField() const { return delay_; }

  void done(int result) override;

 private:
  QWidget* BuildFiltersPage();
  QWidget* BuildReplacePage();
  QWidget* BuildAdvancedPage();
  void Apply();
  // The current rule's texts, choice, number, counter and the buttons' states.
  void ShowRule();
  [[nodiscard]] rx::RuleFields RuleOnShow() const;

  core::AppState& state_;
  app::ReceiveOptionsSheet sheet_;
  QTabWidget* tabs_ = nullptr;
  QLineEdit* postamble_ = nullptr;
  QComboBox* keys_ = nullptr;
  QPushButton* addKey_ = nullptr;
  QPushButton* clearPostamble_ = nullptr;
  std::array<QCheckBox*, 4> switches_{};
  QSpinBox* ruleNumber_ = nullptr;
  QLabel* ruleCounter_ = nullptr;
  QLineEdit* search_ = nullptr;
  QLineEdit* replace_ = nullptr;
  QButtonGroup* modes_ = nullptr;
  QPushButton* addRule_ = nullptr;
  QPushButton* removeRule_ = nullptr;
  QPushButton* insertRule_ = nullptr;
  LoggingPage* logging_ = nullptr;
  RelayPage* relay_ = nullptr;
  QSpinBox* delay_ = nullptr;
};

}  // namespace wavetrace::ui
