#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/transmit_options.h"
#include "automation/function_buttons.h"

namespace wavetrace::app {

// "Enter transmit string or function:" takes 510 characters, "Software
// button caption:" 9.
inline constexpr size_t kButtonStringChars = 510;
inline constexpr size_t kButtonCaptionChars = 9;

// What the string field's drop-down offers: the transmit field's history in
// its order, then the function tokens; "{SCREEN_OFF}" only while the
// display can be switched off.
std::vector<std::u16string> ButtonStringChoices(const std::vector<std::u16string>& history, bool screenOff);
// The same from the main screen (history, and whether "ScreenOff" is grey).
std::vector<std::u16string> ButtonStringChoices(const core::AppState& state);

// The Configure Button page over the transmit options sheet's values: which
// button it shows, and every edit written straight into that button's
// string or caption. It opens on hardware button 1.
class ButtonPage {
 public:
  explicit ButtonPage(TransmitOptionValues& values) : values_(values) {}

  [[nodiscard]] automation::ButtonKind Kind() const { return kind_; }
  [[nodiscard]] int Number() const { return number_; }
  // How many buttons the kind has: 4 hardware, 6 software.
  [[nodiscard]] int Count() const;
  // " n / 4" or " n / 6".
  [[nodiscard]] std::u16string Counter() const;
  // Another kind keeps the number while the kind has it, else its last.
  void SetKind(automation::ButtonKind kind);
  // Held to 1..Count().
  void SetNumber(int number);

  // The chosen button's string.
  [[nodiscard]] const std::u16string& String() const;
  void SetString(std::u16string_view text);

  // The caption field shows software button Number()'s caption (so on
  // opening software button 1's) and takes edits for software buttons only.
  [[nodiscard]] bool CaptionEditable() const { return kind_ == automation::ButtonKind::kSoftware; }
  [[nodiscard]] const std::u16string& Caption() const;
  void SetCaption(std::u16string_view text);

 private:
  [[nodiscard]] size_t Index() const { return static_cast<size_t>(number_ - 1); }

  TransmitOptionValues& values_;
  automation::ButtonKind kind_ = automation::ButtonKind::kHardware;
  int number_ = 1;
};

}  // namespace wavetrace::app
