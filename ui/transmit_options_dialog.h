#pragma once

#include <QDialog>

#include "app/transmit_options.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace wavetrace::ui {

// The transmit options: the repeat run (count and pause) on one tab, the
// transmit postamble and the two send switches on the other. The sheet only
// shows and collects; Values() hands back what the pages hold.
class TransmitOptionsDialog : public QDialog {
  Q_OBJECT

 public:
  explicit TransmitOptionsDialog(const app::TransmitOptionValues& values, QWidget* parent = nullptr);

  [[nodiscard]] app::TransmitOptionValues Values() const;

  [[nodiscard]] QSpinBox* RepeatCountField() const { return repeatCount_; }
  [[nodiscard]] QSpinBox* RepeatDelayField() const { return repeatDelay_; }
  [[nodiscard]] QLineEdit* PostambleField() const { return postamble_; }
  // Its menu lists the named keys; choosing one appends the key's text.
  [[nodiscard]] QPushButton* AddKeyButton() const { return addKey_; }
  [[nodiscard]] QCheckBox* ClearReceiveBox() const { return clearReceive_; }
  [[nodiscard]] QCheckBox* WholeFileBox() const { return wholeFile_; }

 private:
  QWidget* BuildRepeatPage(const app::TransmitOptionValues& values);
  QWidget* BuildFiltersPage(const app::TransmitOptionValues& values);
  void AddKey(size_t keyIndex);

  QSpinBox* repeatCount_ = nullptr;
  QSpinBox* repeatDelay_ = nullptr;
  QLineEdit* postamble_ = nullptr;
  QPushButton* addKey_ = nullptr;
  QCheckBox* clearReceive_ = nullptr;
  QCheckBox* wholeFile_ = nullptr;
};

}  // namespace wavetrace::ui
