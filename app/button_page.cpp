#include "app/button_page.h"

#include <algorithm>

#include "core/messages.h"

namespace wavetrace::app {

using automation::ButtonKind;

std::vector<std::u16string> ButtonStringChoices(const std::vector<std::u16string>& history, bool screenOff) {
  std::vector<std::u16string> choices = history;
  for (std::u16string_view token : automation::kFunctionTokens) {
    if (token == automation::kFunctionTokens[0] && !screenOff) continue;
    choices.emplace_back(token);
  }
  return choices;
}

std::vector<std::u16string> ButtonStringChoices(const core::AppState& state) {
  return ButtonStringChoices(state.Screen.TxHistory(), !state.Screen.IsMenuItemGrey(core::cmd::kScreenOff));
}

int ButtonPage::Count() const {
  return kind_ == ButtonKind::kHardware ? static_cast<int>(values_.HardwareButtonData.size())
                                        : static_cast<int>(values_.SoftwareButtonData.size());
}

std::u16string ButtonPage::Counter() const {
  std::string text = " " + std::to_string(number_) + " / " + std::to_string(Count());
  return {text.begin(), text.end()};
}

void ButtonPage::SetKind(ButtonKind kind) {
  kind_ = kind;
  SetNumber(number_);
}

void ButtonPage::SetNumber(int number) {
  number_ = std::clamp(number, 1, Count());
}

const std::u16string& ButtonPage::String() const {
  return kind_ == ButtonKind::kHardware ? values_.HardwareButtonData[Index()]
                                        : values_.SoftwareButtonData[Index()];
}

void ButtonPage::SetString(std::u16string_view text) {
  std::u16string& target = kind_ == ButtonKind::kHardware ? values_.HardwareButtonData[Index()]
                                                          : values_.SoftwareButtonData[Index()];
  target = text.substr(0, kButtonStringChars);
}

const std::u16string& ButtonPage::Caption() const {
  return values_.SoftwareButtonCaption[Index()];
}

void ButtonPage::SetCaption(std::u16string_view text) {
  if (!CaptionEditable()) return;
  values_.SoftwareButtonCaption[Index()] = text.substr(0, kButtonCaptionChars);
}

}  // namespace wavetrace::app
