#include "ui/transmit_options_dialog.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <string>

#include "rx/postamble.h"
#include "ui/page_parts.h"

namespace wavetrace::ui {
namespace {

// Wide enough for any count or pause anyone types; the fields are plain
// numbers, so the pages need no validation of their own.
constexpr int kLargestNumber = 9999999;

QSpinBox* NumberField(uint32_t value, QWidget* parent) {
  auto* field = new QSpinBox(parent);
  // A larger value from a configuration file is shown as it is, so that OK
  // without an edit keeps it.
  int shown = static_cast<int>(std::min<uint32_t>(value, std::numeric_limits<int>::max()));
  field->setRange(0, std::max(kLargestNumber, shown));
  field->setValue(shown);
  return field;
}

}  // namespace

TransmitOptionsDialog::TransmitOptionsDialog(const app::TransmitOptionValues& values,
                                             const std::vector<std::u16string>& buttonChoices,
                                             QWidget* parent)
    : QDialog(parent), buttons_(values) {
  setWindowTitle(QStringLiteral("Transmit Options"));
  auto* layout = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->addTab(BuildRepeatPage(values), QStringLiteral("Repeat"));
  tabs->addTab(BuildFiltersPage(values), QStringLiteral("Filters"));
  tabs->addTab(BuildButtonPage(buttonChoices), QStringLiteral("Configure Button"));
  layout->addWidget(tabs, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

QWidget* TransmitOptionsDialog::BuildRepeatPage(const app::TransmitOptionValues& values) {
  auto* page = new QWidget(this);
  // Captions above the fields: side by side they do not fit a 240 pixel width.
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Sends in a repeat run (0 = without end)"), page));
  repeatCount_ = NumberField(values.TxRepeatNum, page);
  repeatCount_->setObjectName(QStringLiteral("repeatCount"));
  repeatCount_->setSpecialValueText(QStringLiteral("0 (without end)"));
  layout->addWidget(repeatCount_);
  layout->addWidget(Caption(QStringLiteral("Pause after each send"), page));
  repeatDelay_ = NumberField(values.TxRepeatDelay, page);
  repeatDelay_->setObjectName(QStringLiteral("repeatDelay"));
  repeatDelay_->setSuffix(QStringLiteral(" ms"));
  layout->addWidget(repeatDelay_);
  layout->addStretch(1);
  return page;
}

QWidget* TransmitOptionsDialog::BuildFiltersPage(const app::TransmitOptionValues& values) {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Postamble (e.g. [0D][0A])"), page));

  auto* row = new QHBoxLayout;
  postamble_ = new QLineEdit(page);
  postamble_->setObjectName(QStringLiteral("postamble"));
  postamble_->setMaxLength(static_cast<int>(rx::kPostambleFieldChars));
  postamble_->setText(QString::fromStdU16String(values.PostambleKeysTX));
  row->addWidget(postamble_, 1);
  addKey_ = new QPushButton(QStringLiteral("Add..."), page);
  addKey_->setObjectName(QStringLiteral("addPostambleKey"));
  auto* keys = new QMenu(addKey_);
  const auto named = rx::PostambleKeys();
  for (size_t i = 0; i < named.size(); ++i) {
    QAction* action = keys->addAction(QString::fromStdU16String(std::u16string(named[i].Name)));
    connect(action, &QAction::triggered, this, [this, i] { AddKey(i); });
  }
  addKey_->setMenu(keys);
  row->addWidget(addKey_);
  layout->addLayout(row);

  clearReceive_ = new QCheckBox(QStringLiteral("Clear receive window on send"), page);
  clearReceive_->setObjectName(QStringLiteral("clearReceiveOnSend"));
  clearReceive_->setChecked(values.TxClrRCVEtxt != 0);
  layout->addWidget(clearReceive_);

  wholeFile_ = new QCheckBox(QStringLiteral("Send the whole file"), page);
  wholeFile_->setObjectName(QStringLiteral("sendWholeFile"));
  wholeFile_->setChecked(values.TxSendWholeFile != 0);
  layout->addWidget(wholeFile_);
  QLabel* hint =
      Caption(QStringLiteral("Without it, a file between one and two chunks long loses its tail."), page);
  hint->setObjectName(QStringLiteral("wholeFileHint"));
  layout->addWidget(hint);
  layout->addStretch(1);
  return page;
}

QWidget* TransmitOptionsDialog::BuildButtonPage(const std::vector<std::u16string>& choices) {
  using automation::ButtonKind;
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  auto* type = new QGroupBox(QStringLiteral("Button Type"), page);
  auto* typeRow = new QHBoxLayout(type);
  hardware_ = new QRadioButton(QStringLiteral("Hardware"), type);
  hardware_->setObjectName(QStringLiteral("hardwareButton"));
  software_ = new QRadioButton(QStringLiteral("Software"), type);
  software_->setObjectName(QStringLiteral("softwareButton"));
  hardware_->setChecked(true);
  typeRow->addWidget(hardware_);
  typeRow->addWidget(software_);
  layout->addWidget(type);

  auto* numberRow = new QHBoxLayout;
  buttonNumber_ = new QSpinBox(page);
  buttonNumber_->setObjectName(QStringLiteral("buttonNumber"));
  numberRow->addWidget(buttonNumber_);
  buttonCounter_ = new QLabel(page);
  buttonCounter_->setObjectName(QStringLiteral("buttonCounter"));
  numberRow->addWidget(buttonCounter_, 1);
  layout->addLayout(numberRow);

  layout->addWidget(Caption(QStringLiteral("Enter transmit string or function:"), page));
  buttonString_ = new QComboBox(page);
  buttonString_->setObjectName(QStringLiteral("buttonString"));
  buttonString_->setEditable(true);
  buttonString_->setInsertPolicy(QComboBox::NoInsert);
  buttonString_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  buttonString_->setMinimumContentsLength(8);
  buttonString_->lineEdit()->setMaxLength(static_cast<int>(app::kButtonStringChars));
  for (const std::u16string& choice : choices) buttonString_->addItem(QString::fromStdU16String(choice));
  layout->addWidget(buttonString_);

  layout->addWidget(Caption(QStringLiteral("Software button caption:"), page));
  buttonCaption_ = new QLineEdit(page);
  buttonCaption_->setObjectName(QStringLiteral("buttonCaption"));
  buttonCaption_->setMaxLength(static_cast<int>(app::kButtonCaptionChars));
  layout->addWidget(buttonCaption_);
  layout->addStretch(1);

  connect(software_, &QRadioButton::toggled, this, [this](bool software) {
    buttonPage_.SetKind(software ? ButtonKind::kSoftware : ButtonKind::kHardware);
    ShowButton();
  });
  connect(buttonNumber_, &QSpinBox::valueChanged, this, [this](int number) {
    buttonPage_.SetNumber(number);
    ShowButton();
  });
  connect(buttonString_, &QComboBox::editTextChanged, this,
          [this](const QString& text) { buttonPage_.SetString(text.toStdU16String()); });
  connect(buttonCaption_, &QLineEdit::textChanged, this,
          [this](const QString& text) { buttonPage_.SetCaption(text.toStdU16String()); });
  ShowButton();
  return page;
}

void TransmitOptionsDialog::ShowButton() {
  QSignalBlocker numberBlocker(buttonNumber_);
  QSignalBlocker stringBlocker(buttonString_);
  QSignalBlocker captionBlocker(buttonCaption_);
  buttonNumber_->setRange(1, buttonPage_.Count());
  buttonNumber_->setValue(buttonPage_.Number());
  buttonCounter_->setText(QString::fromStdU16String(buttonPage_.Counter()));
  buttonString_->setCurrentIndex(-1);
  buttonString_->setEditText(QString::fromStdU16String(buttonPage_.String()));
  buttonCaption_->setText(QString::fromStdU16String(buttonPage_.Caption()));
  buttonCaption_->setEnabled(buttonPage_.CaptionEditable());
}

void TransmitOptionsDialog::AddKey(size_t keyIndex) {
  std::u16string field = postamble_->text().toStdU16String();
  // The rule decides whether the key still fits; a refused key is a beep.
  if (!rx::AddPostambleKey(field, keyIndex)) {
    QApplication::beep();
    return;
  }
  postamble_->setText(QString::fromStdU16String(field));
  postamble_->setFocus(Qt::OtherFocusReason);
}

app::TransmitOptionValues TransmitOptionsDialog::Values() const {
  app::TransmitOptionValues values;
  values.TxRepeatNum = static_cast<uint32_t>(repeatCount_->value());
  values.TxRepeatDelay = static_cast<uint32_t>(repeatDelay_->value());
  values.PostambleKeysTX = postamble_->text().toStdU16String();
  values.TxClrRCVEtxt = clearReceive_->isChecked() ? 1 : 0;
  values.TxSendWholeFile = wholeFile_->isChecked() ? 1 : 0;
  values.HardwareButtonData = buttons_.HardwareButtonData;
  values.SoftwareButtonData = buttons_.SoftwareButtonData;
  values.SoftwareButtonCaption = buttons_.SoftwareButtonCaption;
  return values;
}

}  // namespace wavetrace::ui
