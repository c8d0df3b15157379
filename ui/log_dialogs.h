#pragma once

#include <QDialog>
#include <QWidget>
#include <array>

#include "core/app_state.h"
#include "log/log_page.h"

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace wavetrace::ui {

// The advanced logging sheet: the recording mode (all data, or a window every
// so many seconds), the delimiter and the date and time of the stamps. The
// recording mode and the date and time are stored as they are edited and put
// back on Cancel; the delimiter page is stored on OK only.
class AdvancedLoggingDialog : public QDialog {
  Q_OBJECT

 public:
  explicit AdvancedLoggingDialog(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] QCheckBox* RecordAllBox() const { return recordAll_; }
  [[nodiscard]] QGroupBox* RecordPartialGroup() const { return partial_; }
  [[nodiscard]] QSpinBox* IntervalField() const { return interval_; }
  [[nodiscard]] QSpinBox* DurationField() const { return duration_; }
  [[nodiscard]] QButtonGroup* Delimiters() const { return delimiters_; }
  [[nodiscard]] QCheckBox* RemoveCrLfBox() const { return removeCrLf_; }
  [[nodiscard]] QButtonGroup* DateFormats() const { return dateFormats_; }
  [[nodiscard]] QButtonGroup* TimeFormats() const { return timeFormats_; }

  void done(int result) override;

 private:
  QWidget* BuildRecordPage();
  QWidget* BuildDelimiterPage();
  QWidget* BuildDateTimePage();
  // Writes back what the rules rewrote, then follows the stored values.
  void FollowRecordFields(const log::RecordFieldTexts& rewrite);

  core::AppState& state_;
  core::LogSettings opened_;
  QCheckBox* recordAll_ = nullptr;
  QGroupBox* partial_ = nullptr;
  QSpinBox* interval_ = nullptr;
  QSpinBox* duration_ = nullptr;
  QButtonGroup* delimiters_ = nullptr;
  QCheckBox* removeCrLf_ = nullptr;
  QButtonGroup* dateFormats_ = nullptr;
  QButtonGroup* timeFormats_ = nullptr;
};

// The Logging page of the receive options: the log file's path ("Browse",
// "AutoName"), the three switches of the record layout, and "Advanced >>".
// The switches, "Browse" and "AutoName" store at once; a typed path is stored
// by Apply. Nothing can be changed while RECORD is on. The sheet puts the
// logging settings back on Cancel.
class LoggingPage : public QWidget {
  Q_OBJECT

 public:
  explicit LoggingPage(core::AppState& state, QWidget* parent = nullptr);

  // Stores the path field when it was edited.
  void Apply();

  [[nodiscard]] QLineEdit* PathField() const { return path_; }
  [[nodiscard]] QPushButton* BrowseButton() const { return browse_; }
  [[nodiscard]] QPushButton* AutoNameButton() const { return autoName_; }
  [[nodiscard]] QCheckBox* TimestampBox() const { return switches_[0]; }
  [[nodiscard]] QCheckBox* TransmitDataBox() const { return switches_[1]; }
  [[nodiscard]] QCheckBox* OverwriteBox() const { return switches_[2]; }
  [[nodiscard]] QPushButton* AdvancedButton() const { return advanced_; }

 private:
  void Browse();
  void ShowPath(const std::u16string& path);

  core::AppState& state_;
  QLineEdit* path_ = nullptr;
  QPushButton* browse_ = nullptr;
  QPushButton* autoName_ = nullptr;
  std::array<QCheckBox*, 3> switches_{};
  QPushButton* advanced_ = nullptr;
};

}  // namespace wavetrace::ui
