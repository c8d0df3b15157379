#pragma once

#include <QIcon>
#include <QObject>

class QSystemTrayIcon;

namespace wavetrace::ui {

// The tray state of the model: 0 none, 1 idle, 2 active.
inline constexpr int kTrayNone = 0;
inline constexpr int kTrayIdle = 1;
inline constexpr int kTrayActive = 2;

// The two tray pictures, drawn here so that no image files need installing.
QIcon MakeTrayIcon(bool active);

// The one tray icon, when the desktop has a tray.
class TrayIcon : public QObject {
  Q_OBJECT

 public:
  explicit TrayIcon(QObject* parent = nullptr);

  void SetState(int state, const QString& toolTip);
  [[nodiscard]] int State() const { return state_; }

 signals:
  void LeftClicked();

 private:
  QSystemTrayIcon* icon_ = nullptr;
  QIcon idle_;
  QIcon active_;
  int state_ = kTrayNone;
};

}  // namespace wavetrace::ui
