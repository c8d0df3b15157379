#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "app/reference_screens.h"

class QListWidget;
class QSvgRenderer;

namespace wavetrace::ui {

// The ASCII chart: the 256 rows in a list without a border, in the
// fixed-pitch font on white.
class AsciiChartDialog : public QDialog {
  Q_OBJECT

 public:
  explicit AsciiChartDialog(const std::vector<std::u16string>& rows, QWidget* parent = nullptr);

  [[nodiscard]] QListWidget* List() const { return list_; }

 private:
  QListWidget* list_ = nullptr;
};

// The serial port pinouts (DE-9 and DB-25 of an RS-232 terminal), drawn from
// SVG at whatever size the screen has: the portrait picture while the
// screen's layout is narrower than 241 pixels, the landscape one otherwise.
class PinoutsDialog : public QDialog {
  Q_OBJECT

 public:
  // scale: the main screen's magnification of its 240x320 layout.
  explicit PinoutsDialog(double scale, QWidget* parent = nullptr);
  ~PinoutsDialog() override;

  // False when a picture could not be read.
  [[nodiscard]] bool PicturesLoaded() const;
  [[nodiscard]] app::PinoutPicture PictureShown() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double scale_;
  QSvgRenderer* portrait_ = nullptr;
  QSvgRenderer* landscape_ = nullptr;
};

}  // namespace wavetrace::ui
