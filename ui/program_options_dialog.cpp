#include "ui/program_options_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace wavetrace::ui {
namespace {

QCheckBox* AddOption(QVBoxLayout* layout, const char* caption, uint32_t value, QWidget* parent) {
  auto* box = new QCheckBox(QString::fromLatin1(caption), parent);
  box->setChecked(value == 1);
  layout->addWidget(box);
  return box;
}

uint32_t Value(const QCheckBox* box) {
  return box->isChecked() ? 1 : 0;
}

}  // namespace

ProgramOptionsDialog::ProgramOptionsDialog(const ProgramOptionValues& values, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(QStringLiteral("Options"));
  auto* layout = new QVBoxLayout(this);
  defaultCfg_ = AddOption(layout, "Ignore loading Default Config", values.DEFAULTcfg, this);
  multiInst_ = AddOption(layout, "Allow running multiple instances", values.MULTIinst, this);
  hwButtons_ = AddOption(layout, "Acquire hardware buttons", values.AcquireHWbuttons, this);
  disableIcon_ = AddOption(layout, "Disable icon on Start bar", values.DisableIcon, this);
  auto* layoutRow = new QFormLayout;
  layout_ = new QComboBox(this);
  layout_->setObjectName(QStringLiteral("windowLayout"));
  layout_->addItems({QStringLiteral("Automatic"), QStringLiteral("Compact"), QStringLiteral("Desktop")});
  layout_->setCurrentIndex(static_cast<int>(values.Layout));
  layoutRow->addRow(QStringLiteral("Window layout"), layout_);
  layout->addLayout(layoutRow);
  auto* note = new QLabel(
      QStringLiteral("* Wavetrace Pro needs to restart\n  for these features to take effect."), this);
  note->setTextFormat(Qt::PlainText);
  layout->addWidget(note);
  layout->addStretch(1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

ProgramOptionValues ProgramOptionsDialog::Values() const {
  ProgramOptionValues values;
  values.DEFAULTcfg = Value(defaultCfg_);
  values.MULTIinst = Value(multiInst_);
  values.AcquireHWbuttons = Value(hwButtons_);
  values.DisableIcon = Value(disableIcon_);
  values.Layout = static_cast<app::WindowLayout>(layout_->currentIndex());
  return values;
}

}  // namespace wavetrace::ui
