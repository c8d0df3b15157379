#include "ui/transmit_options_dialog.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <string>

#include "rx/postamble.h"

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

QLabel* Caption(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

TransmitOptionsDialog::TransmitOptionsDialog(const app::TransmitOptionValues& values, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(QStringLiteral("Transmit Options"));
  auto* layout = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->addTab(BuildRepeatPage(values), QStringLiteral("Repeat"));
  tabs->addTab(BuildFiltersPage(values), QStringLiteral("Filters"));
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
  return values;
}

}  // namespace wavetrace::ui
