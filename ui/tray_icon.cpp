#include "ui/tray_icon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <algorithm>

namespace wavetrace::ui {

QIcon MakeTrayIcon(bool active) {
  QIcon icon;
  for (int size : {16, 22, 32, 48}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(active ? QColor(0x1E, 0x8C, 0x3C) : QColor(0x6E, 0x6E, 0x6E));
    double corner = size / 6.0;
    painter.drawRoundedRect(QRectF(0, 0, size, size), corner, corner);
    // A square wave: the line of a serial port.
    QPainterPath wave;
    double low = size * 0.7;
    double high = size * 0.3;
    double step = size / 5.0;
    wave.moveTo(size * 0.1, low);
    wave.lineTo(step, low);
    wave.lineTo(step, high);
    wave.lineTo(2 * step, high);
    wave.lineTo(2 * step, low);
    wave.lineTo(3 * step, low);
    wave.lineTo(3 * step, high);
    wave.lineTo(4 * step, high);
    wave.lineTo(4 * step, low);
    wave.lineTo(size * 0.9, low);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, std::max(1.0, size / 12.0)));
    painter.drawPath(wave);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

TrayIcon::TrayIcon(QObject* parent)
    : QObject(parent),
      icon_(new QSystemTrayIcon(this)),
      idle_(MakeTrayIcon(false)),
      active_(MakeTrayIcon(true)) {
  connect(icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::Trigger) emit LeftClicked();
  });
}

void TrayIcon::SetState(int state, const QString& toolTip) {
  icon_->setToolTip(toolTip);
  if (state == state_) return;
  state_ = state;
  if (state == kTrayNone) {
    icon_->hide();
    return;
  }
  icon_->setIcon(state == kTrayActive ? active_ : idle_);
  icon_->show();
}

}  // namespace wavetrace::ui
