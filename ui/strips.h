#pragma once

#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <string>

#include "core/main_screen.h"
#include "core/messages.h"
#include "platform/serial_port.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;

namespace wavetrace::ui {

// The two strips below the receive window. Each shows what the model says of
// its controls (keyed by the strip's key plus the control's number) and
// reports a click as that key; it decides nothing itself.

// "Port Scan Mode": START, STOP and the "Tx" check box in a row under the
// title.
class PsmStrip : public QWidget {
  Q_OBJECT

 public:
  explicit PsmStrip(double scale, QWidget* parent = nullptr);

  void Refresh(const core::MainScreen& screen);
  [[nodiscard]] QPushButton* StartButton() const { return start_; }
  [[nodiscard]] QPushButton* StopButton() const { return stop_; }
  [[nodiscard]] QCheckBox* TxBox() const { return tx_; }

 signals:
  void StripCommand(int key);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int titleTop_;
  QPushButton* start_ = nullptr;
  QPushButton* stop_ = nullptr;
  QCheckBox* tx_ = nullptr;
};

// The software buttons: 1, 2, 3 in the first row, 4, 5, 6 in the second.
class SoftwareButtonStrip : public QWidget {
  Q_OBJECT

 public:
  using Labels = std::array<std::u16string, core::strip::kSoftwareButtonCount>;

  explicit SoftwareButtonStrip(double scale, QWidget* parent = nullptr);

  void Refresh(const core::MainScreen& screen, const Labels& labels);
  // number: 1 to 6.
  [[nodiscard]] QPushButton* Button(int number) const;

 signals:
  void StripCommand(int key);

 private:
  std::array<QPushButton*, core::strip::kSoftwareButtonCount> buttons_{};
};

// The port's modem lines as lamps and the driver's error counts, read from
// the port while the strip is shown, five times a second at most. "n/a"
// where the port cannot tell; nothing while no port is open.
class LineStatusStrip : public QWidget {
  Q_OBJECT

 public:
  // read: the open port's line status, or nothing while no port is open.
  using Reader = std::function<std::optional<platform::LineStatus>()>;
  explicit LineStatusStrip(QWidget* parent = nullptr);
  void SetReader(Reader read) { read_ = std::move(read); }
  [[nodiscard]] QString Text() const;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void Update();

  Reader read_;
  QLabel* label_ = nullptr;
  QTimer* timer_ = nullptr;
};

}  // namespace wavetrace::ui
