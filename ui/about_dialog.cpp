#include "ui/about_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace wavetrace::ui {
namespace {

QLabel* CenteredLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setAlignment(Qt::AlignCenter);
  label->setWordWrap(true);
  return label;
}

}  // namespace

AboutDialog::AboutDialog(std::u16string_view releaseLine, bool automationMode, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(QStringLiteral("About..."));
  // The scaled font of the main screen; the name is set larger from it.
  if (parent) setFont(parent->font());
  auto* layout = new QVBoxLayout(this);
  QLabel* name = CenteredLabel(QStringLiteral("Wavetrace Pro"), this);
  QFont bold = name->font();
  bold.setBold(true);
  if (bold.pixelSize() > 0) {
    bold.setPixelSize(bold.pixelSize() * 3 / 2);
  } else {
    bold.setPointSizeF(bold.pointSizeF() * 1.5);
  }
  name->setFont(bold);
  layout->addWidget(name);
  QLabel* release = CenteredLabel(QString::fromStdU16String(std::u16string(releaseLine)), this);
  release->setObjectName(QStringLiteral("releaseLine"));
  layout->addWidget(release);
  if (automationMode) {
    QLabel* warning = CenteredLabel(QStringLiteral("Warning: [ Automation Mode ]"), this);
    warning->setObjectName(QStringLiteral("automationWarning"));
    layout->addWidget(warning);
  }
  layout->addStretch(1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  layout->addWidget(buttons);
}

}  // namespace wavetrace::ui
