#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "app/button_page.h"
#include "app/transmit_options.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace wavetrace::ui {

// The transmit options: the repeat run (count and pause) on one tab, the
// transmit postamble and the two send switches on the next, the function
// buttons' strings and captions on the third ("Configure Button", offering
// choices in its drop-down). The sheet only shows and collects; Values()
// hands back what the pages hold.
class TransmitOptionsDialog : public QDialog {
  Q_OBJECT

 public:
  explicit TransmitOptionsDialog(const app::TransmitOptionValues& values,
                                 const std::vector<std::u16string>& buttonChoices = {},
                                 QWidget* parent = nullptr);

  [[nodiscard]] app::TransmitOptionValues Values() const;

  [[nodiscard]] QSpinBox* RepeatCountField() const { return repeatCount_; }
  [[nodiscard]] QSpinBox* RepeatDelayField() const { return repeatDelay_; }
  [[nodiscard]] QLineEdit* PostambleField() const { return postamble_; }
  // Its menu lists the named keys; choosing one appends the key's text.
  [[nodiscard]] QPushButton* AddKeyButton() const { return addKey_; }
  [[nodiscard]] QCheckBox* ClearReceiveBox() const { return clearReceive_; }
  [[nodiscard]] QCheckBox* WholeFileBox() const { return wholeFile_; }
  [[nodiscard]] QRadioButton* HardwareButtonChoice() const { return hardware_; }
  [[nodiscard]] QRadioButton* SoftwareButtonChoice() const { return software_; }
  [[nodiscard]] QSpinBox* ButtonNumberField() const { return buttonNumber_; }
  [[nodiscard]] QLabel* ButtonCounter() const { return buttonCounter_; }
  [[nodiscard]] QComboBox* ButtonStringField() const { return buttonString_; }
  [[nodiscard]] QLineEdit* ButtonCaptionField() const { return buttonCaption_; }

 private:
  QWidget* BuildRepeatPage(const app::TransmitOptionValues& values);
  QWidget* BuildFiltersPage(const app::TransmitOptionValues& values);
  QWidget* BuildButtonPage(const std::vector<std::u16string>& choices);
  // The chosen button's number, counter, string and caption.
  void ShowButton();
  void AddKey(size_t keyIndex);

  QSpinBox* repeatCount_ = nullptr;
  QSpinBox* repeatDelay_ = nullptr;
  QLineEdit* postamble_ = nullptr;
  QPushButton* addKey_ = nullptr;
  QCheckBox* clearReceive_ = nullptr;
  QCheckBox* wholeFile_ = nullptr;
  // The buttons' strings and captions; the Configure Button page writes
  // every edit into them.
  app::TransmitOptionValues buttons_;
  app::ButtonPage buttonPage_{buttons_};
  QRadioButton* hardware_ = nullptr;
  QRadioButton* software_ = nullptr;
  QSpinBox* buttonNumber_ = nullptr;
  QLabel* buttonCounter_ = nullptr;
  QComboBox* buttonString_ = nullptr;
  QLineEdit* buttonCaption_ = nullptr;
};

}  // namespace wavetrace::ui
