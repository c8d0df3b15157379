#include "ui/strips.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "app/line_control.h"
#include "ui/screen_scale.h"

namespace wavetrace::ui {
namespace {

using namespace core::strip;

// Pixel sizes on the 240x320 screen, scaled with the window.
constexpr int kTitleTop = 5;
constexpr int kButtonHeight = 24;
constexpr int kSpacing = 2;

QPushButton* StripButton(const QString& caption, double scale, QWidget* parent) {
  auto* button = new QPushButton(caption, parent);
  button->setMinimumHeight(Scaled(scale, kButtonHeight));
  button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  return button;
}

}  // namespace

PsmStrip::PsmStrip(double scale, QWidget* parent) : QWidget(parent), titleTop_(Scaled(scale, kTitleTop)) {
  setObjectName(QStringLiteral("psmStrip"));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* row = new QHBoxLayout(this);
  int spacing = Scaled(scale, kSpacing);
  // The title is painted above the row.
  row->setContentsMargins(spacing, titleTop_ + fontMetrics().height() + spacing, spacing, spacing);
  row->setSpacing(spacing);
  start_ = StripButton(QStringLiteral("START"), scale, this);
  start_->setObjectName(QStringLiteral("psmStart"));
  stop_ = StripButton(QStringLiteral("STOP"), scale, this);
  stop_->setObjectName(QStringLiteral("psmStop"));
  tx_ = new QCheckBox(QStringLiteral("Tx"), this);
  tx_->setObjectName(QStringLiteral("psmTx"));
  row->addWidget(start_, 1);
  row->addWidget(stop_, 1);
  row->addWidget(tx_, 1);
  connect(start_, &QPushButton::clicked, this, [this] { emit StripCommand(kPsmStrip + kPsmStart); });
  connect(stop_, &QPushButton::clicked, this, [this] { emit StripCommand(kPsmStrip + kPsmStop); });
  connect(tx_, &QCheckBox::clicked, this, [this] {
    // The check is the model's: undo Qt's own toggle until the model says.
    tx_->setChecked(!tx_->isChecked());
    emit StripCommand(kPsmStrip + kPsmTx);
  });
}

void PsmStrip::Refresh(const core::MainScreen& screen) {
  start_->setEnabled(screen.IsButtonEnabled(kPsmStrip + kPsmStart));
  stop_->setEnabled(screen.IsButtonEnabled(kPsmStrip + kPsmStop));
  tx_->setEnabled(screen.IsButtonEnabled(kPsmStrip + kPsmTx));
  tx_->setChecked(screen.IsButtonPressed(kPsmStrip + kPsmTx));
  setVisible(screen.StripShown(kPsmStrip));
}

void PsmStrip::paintEvent(QPaintEvent* event) {
  QWidget::paintEvent(event);
  QPainter painter(this);
  QRect line(0, titleTop_, width(), fontMetrics().height());
  painter.drawText(line, Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine,
                   QStringLiteral("Port Scan Mode"));
}

SoftwareButtonStrip::SoftwareButtonStrip(double scale, QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("softwareButtonStrip"));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* grid = new QGridLayout(this);
  int spacing = Scaled(scale, kSpacing);
  grid->setContentsMargins(spacing, spacing, spacing, spacing);
  grid->setSpacing(spacing);
  constexpr int kColumns = 3;
  for (int i = 0; i < kSoftwareButtonCount; ++i) {
    auto* button = StripButton(QString(), scale, this);
    button->setObjectName(QStringLiteral("softwareButton%1").arg(i + 1));
    int key = kSoftwareStrip + kFirstSoftwareButton + i;
    connect(button, &QPushButton::clicked, this, [this, key] { emit StripCommand(key); });
    grid->addWidget(button, i / kColumns, i % kColumns);
    buttons_[static_cast<size_t>(i)] = button;
  }
}

void SoftwareButtonStrip::Refresh(const core::MainScreen& screen, const Labels& labels) {
  for (size_t i = 0; i < buttons_.size(); ++i) {
    buttons_[i]->setText(QString::fromStdU16String(labels[i]));
    buttons_[i]->setEnabled(
        screen.IsButtonEnabled(kSoftwareStrip + kFirstSoftwareButton + static_cast<int>(i)));
  }
  setVisible(screen.StripShown(kSoftwareStrip));
}

QPushButton* SoftwareButtonStrip::Button(int number) const {
  if (number < 1 || number > kSoftwareButtonCount) return nullptr;
  return buttons_[static_cast<size_t>(number - 1)];
}

LineStatusStrip::LineStatusStrip(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("lineStatusStrip"));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(2, 2, 2, 2);
  label_ = new QLabel(this);
  label_->setWordWrap(true);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  row->addWidget(label_);
  timer_ = new QTimer(this);
  timer_->setInterval(200);
  connect(timer_, &QTimer::timeout, this, &LineStatusStrip::Update);
}

QString LineStatusStrip::Text() const {
  return label_->text();
}

void LineStatusStrip::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Update();
  timer_->start();
}

void LineStatusStrip::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  timer_->stop();
}

void LineStatusStrip::Update() {
  std::optional<platform::LineStatus> status = read_ ? read_() : std::nullopt;
  QString text = status ? QString::fromStdU16String(app::LineStatusText(*status))
                        : QStringLiteral("Line status: no port open");
  if (text != label_->text()) label_->setText(text);
}

}  // namespace wavetrace::ui
