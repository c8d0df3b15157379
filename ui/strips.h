#pragma once

#include <QWidget>
#include <array>
#include <string>

#include "core/main_screen.h"
#include "core/messages.h"

class QCheckBox;
class QPushButton;

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

}  // namespace wavetrace::ui
