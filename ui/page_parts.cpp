#include "ui/page_parts.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QMouseEvent>

namespace wavetrace::ui {

QString ToQString(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

QLabel* Caption(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

QDialogButtonBox* OkCancel(QDialog* dialog) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return buttons;
}

CheckBoxCaption::CheckBoxCaption(const QString& text, QCheckBox* box, QWidget* parent)
    : QLabel(text, parent), box_(box) {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  box->setAccessibleName(text);
}

void CheckBoxCaption::mouseReleaseEvent(QMouseEvent* event) {
  if (box_->isEnabled() && rect().contains(event->position().toPoint())) box_->click();
}

}  // namespace wavetrace::ui
