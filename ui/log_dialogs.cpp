#include "ui/log_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <functional>
#include <span>

#include "log/log_names.h"
#include "ui/file_dialog_fit.h"
#include "ui/main_window_widget.h"
#include "ui/page_parts.h"

namespace wavetrace::ui {
namespace {

// A seconds field whose typed text reaches the page's rules, also when the
// spin box itself would not take it as a value (below its minimum).
class SecondsField : public QSpinBox {
 public:
  SecondsField(int value, int maximum, QWidget* parent) : QSpinBox(parent) {
    setRange(1, maximum);
    setValue(value);
    lineEdit()->setMaxLength(log::kRecordFieldChars);
  }
  using QAbstractSpinBox::lineEdit;
};

// Radio buttons for choices, in a group whose ids are the choices' values.
template <typename Choice>
QButtonGroup* RadioGroup(std::span<const Choice> choices, int checked, QLayout* layout, QWidget* parent,
                         const std::function<int(const Choice&, size_t)>& id) {
  auto* group = new QButtonGroup(parent);
  for (size_t i = 0; i < choices.size(); ++i) {
    auto* radio = new QRadioButton(ToQString(choices[i].Caption), parent);
    group->addButton(radio, id(choices[i], i));
    layout->addWidget(radio);
  }
  if (QAbstractButton* radio = group->button(checked)) radio->setChecked(true);
  return group;
}

// The main window (or the outermost window there is): sheets opened from a
// page are no larger than it.
}  // namespace

AdvancedLoggingDialog::AdvancedLoggingDialog(core::AppState& state, QWidget* parent)
    : QDialog(parent), state_(state), opened_(log::LogSettingsBackup(state)) {
  setWindowTitle(QStringLiteral("Advanced Logging"));
  auto* layout = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->addTab(BuildRecordPage(), QStringLiteral("Record"));
  tabs->addTab(BuildDelimiterPage(), QStringLiteral("Delimiter"));
  tabs->addTab(BuildDateTimePage(), QStringLiteral("Date/Time"));
  layout->addWidget(tabs, 1);
  layout->addWidget(OkCancel(this));
}

QWidget* AdvancedLoggingDialog::BuildRecordPage() {
  const core::LogSettings& settings = state_.Log;
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  recordAll_ = new QCheckBox(QStringLiteral("Record all data"), page);
  recordAll_->setObjectName(QStringLiteral("recordAll"));
  recordAll_->setChecked(settings.RecordALL != 0);
  layout->addWidget(recordAll_);

  partial_ = new QGroupBox(QStringLiteral("Record partial"), page);
  auto* grid = new QGridLayout(partial_);
  auto* interval =
      new SecondsField(settings.RecordInterval, static_cast<int>(log::kRecordIntervalMaximum), partial_);
  auto* duration = new SecondsField(settings.RecordDuration, settings.RecordInterval, partial_);
  interval_ = interval;
  duration_ = duration;
  interval_->setObjectName(QStringLiteral("recordInterval"));
  duration_->setObjectName(QStringLiteral("recordDuration"));
  const std::pair<const char*, QSpinBox*> rows[] = {{"Record every:", interval_},
                                                    {"Record duration:", duration_}};
  // Captions above the fields: side by side they do not fit a 240 pixel width.
  for (int row = 0; row < 2; ++row) {
    grid->addWidget(Caption(QString::fromLatin1(rows[row].first), partial_), 2 * row, 0, 1, 2);
    grid->addWidget(rows[row].second, 2 * row + 1, 0);
    grid->addWidget(Caption(QStringLiteral("second(s)"), partial_), 2 * row + 1, 1);
  }
  layout->addWidget(partial_);
  layout->addStretch(1);
  partial_->setEnabled(log::RecordPartialEnabled(settings));

  connect(recordAll_, &QCheckBox::clicked, this, [this](bool ticked) {
    log::StoreRecordAll(state_, ticked);
    partial_->setEnabled(log::RecordPartialEnabled(state_.Log));
  });
  // Arrows and accepted text come as values, any typed text as text.
  connect(interval_, &QSpinBox::valueChanged, this, [this](int value) {
    FollowRecordFields(log::EditRecordInterval(state_, QString::number(value).toStdU16String()));
  });
  connect(interval->lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
    FollowRecordFields(log::EditRecordInterval(state_, text.toStdU16String()));
  });
  connect(duration_, &QSpinBox::valueChanged, this, [this](int value) {
    FollowRecordFields(log::EditRecordDuration(state_, QString::number(value).toStdU16String()));
  });
  connect(duration->lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
    FollowRecordFields(log::EditRecordDuration(state_, text.toStdU16String()));
  });
  return page;
}

void AdvancedLoggingDialog::FollowRecordFields(const log::RecordFieldTexts& rewrite) {
  // A rewritten field shows the stored value again, and the duration's range
  // follows the interval.
  if (rewrite.Interval) interval_->setValue(state_.Log.RecordInterval);
  duration_->setMaximum(state_.Log.RecordInterval);
  if (rewrite.Duration) duration_->setValue(state_.Log.RecordDuration);
}

QWidget* AdvancedLoggingDialog::BuildDelimiterPage() {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Delimiter type:"), page));
  // Staged: the buttons hold the choice until OK.
  std::optional<size_t> current = log::DelimiterChoiceOf(state_.Log.Delimiter[0]);
  delimiters_ = RadioGroup<log::DelimiterChoice>(
      log::DelimiterChoices(), current ? static_cast<int>(*current) : -1, layout, page,
      [](const log::DelimiterChoice&, size_t index) { return static_cast<int>(index); });
  removeCrLf_ = new QCheckBox(page);
  removeCrLf_->setObjectName(QStringLiteral("removeCrLf"));
  removeCrLf_->setChecked(state_.Log.TSremoveCRLF != 0);
  auto* removeRow = new QHBoxLayout;
  removeRow->addWidget(removeCrLf_, 0, Qt::AlignTop);
  removeRow->addWidget(
      new CheckBoxCaption(QStringLiteral("Remove newline (CR/LF) addition from timestamp logging"),
                          removeCrLf_, page),
      1);
  layout->addLayout(removeRow);
  layout->addStretch(1);
  return page;
}

QWidget* AdvancedLoggingDialog::BuildDateTimePage() {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Configure date/timestamp format."), page));
  // One group above the other: side by side they do not fit a 240 pixel width.
  auto byValue = [](const log::FormatChoice& choice, size_t) { return static_cast<int>(choice.Value); };
  auto* date = new QGroupBox(QStringLiteral("Date"), page);
  dateFormats_ = RadioGroup<log::FormatChoice>(log::DateFormatChoices(), state_.Log.DateFormat,
                                               new QVBoxLayout(date), date, byValue);
  auto* time = new QGroupBox(QStringLiteral("Time"), page);
  timeFormats_ = RadioGroup<log::FormatChoice>(log::TimeFormatChoices(), state_.Log.TimeFormat,
                                               new QVBoxLayout(time), time, byValue);
  layout->addWidget(date);
  layout->addWidget(time);
  layout->addStretch(1);
  connect(dateFormats_, &QButtonGroup::idClicked, this,
          [this](int value) { log::StoreDateFormat(state_, value); });
  connect(timeFormats_, &QButtonGroup::idClicked, this,
          [this](int value) { log::StoreTimeFormat(state_, value); });
  return page;
}

void AdvancedLoggingDialog::done(int result) {
  if (result == QDialog::Accepted) {
    int checked = delimiters_->checkedId();
    std::optional<uint8_t> delimiter;
    if (checked >= 0) delimiter = log::DelimiterChoices()[static_cast<size_t>(checked)].Delimiter;
    log::ApplyDelimiterPage(state_, delimiter, removeCrLf_->isChecked());
  } else {
    log::RestoreLogSettings(state_, opened_);
  }
  QDialog::done(result);
}

LoggingPage::LoggingPage(core::AppState& state, QWidget* parent) : QWidget(parent), state_(state) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Caption(QStringLiteral("Log data to the following file:"), this));
  path_ = new QLineEdit(this);
  path_->setObjectName(QStringLiteral("logPath"));
  path_->setMaxLength(static_cast<int>(log::kLogPathFieldChars));
  ShowPath(log::LogPath(state.Log));
  layout->addWidget(path_);
  auto* fileRow = new QHBoxLayout;
  browse_ = new QPushButton(QStringLiteral("Browse"), this);
  autoName_ = new QPushButton(QStringLiteral("AutoName"), this);
  fileRow->addWidget(browse_);
  fileRow->addWidget(autoName_);
  layout->addLayout(fileRow);

  const std::pair<log::LogSwitch, const char*> switches[] = {
      {log::LogSwitch::Timestamp, "Timestamp"},
      {log::LogSwitch::TransmitData, "Transmit Data"},
      {log::LogSwitch::Overwrite, "Overwrite log file"}};
  for (size_t i = 0; i < switches_.size(); ++i) {
    auto [which, caption] = switches[i];
    auto* box = new QCheckBox(QString::fromLatin1(caption), this);
    box->setChecked(log::LogSwitchTicked(state.Log, which));
    connect(box, &QCheckBox::clicked, this,
            [this, which](bool ticked) { log::StoreLogSwitch(state_, which, ticked); });
    layout->addWidget(box);
    switches_[i] = box;
  }
  advanced_ = new QPushButton(QStringLiteral("Advanced >>"), this);
  auto* advancedRow = new QHBoxLayout;
  advancedRow->addStretch(1);
  advancedRow->addWidget(advanced_);
  layout->addLayout(advancedRow);
  layout->addStretch(1);

  const bool enabled = log::LoggingPageEnabled(state);
  for (QWidget* control : {static_cast<QWidget*>(path_), static_cast<QWidget*>(browse_),
                           static_cast<QWidget*>(autoName_), static_cast<QWidget*>(advanced_)}) {
    control->setEnabled(enabled);
  }
  for (QCheckBox* box : switches_) box->setEnabled(enabled);

  connect(browse_, &QPushButton::clicked, this, &LoggingPage::Browse);
  connect(autoName_, &QPushButton::clicked, this,
          [this] { ShowPath(log::AutoNameLogPath(state_, path_->text().toStdU16String())); });
  connect(advanced_, &QPushButton::clicked, this, [this] {
    AdvancedLoggingDialog sheet(state_, this);
    sheet.setFont(font());
    sheet.resize(sheet.sizeHint().boundedTo(DialogRoom(*this)));
    sheet.exec();
  });
}

void LoggingPage::ShowPath(const std::u16string& path) {
  // Clears the field's modified flag: only a path typed since is stored.
  path_->setText(ToQString(path));
}

void LoggingPage::Browse() {
  QFileDialog dialog(this, QStringLiteral("Open Log File"));
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setNameFilters({QStringLiteral("All Log Files (*.Log.Txt)"), QStringLiteral("All CSV Files (*.CSV)"),
                         QStringLiteral("All TXT Files (*.TXT)"), QStringLiteral("All Files (*.*)")});
  // "*.*" would leave out the names without a dot, which are common here:
  // the last filter shows every file.
  connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString& filter) {
    auto* files = dialog.findChild<QFileSystemModel*>();
    if (files && filter == dialog.nameFilters().back()) files->setNameFilters({QStringLiteral("*")});
  });
  const QFileInfo current(path_->text());
  dialog.setDirectory(current.absolutePath());
  dialog.selectFile(current.fileName());
  FitFileDialog(dialog, font(), DialogRoom(*this));
  if (dialog.exec() != QDialog::Accepted) return;
  const QStringList chosen = dialog.selectedFiles();
  if (chosen.isEmpty() || chosen.front().isEmpty()) return;
  ShowPath(log::StoreLogPath(state_, chosen.front().toStdU16String()));
}

void LoggingPage::Apply() {
  if (path_->isModified()) ShowPath(log::StoreLogPath(state_, path_->text().toStdU16String()));
}

}  // namespace wavetrace::ui
