#pragma once

#include <QLabel>
#include <QString>
#include <string_view>

class QCheckBox;
class QDialog;
class QDialogButtonBox;
class QWidget;

namespace wavetrace::ui {

// The pieces every option page and dialog is made of.

QString ToQString(std::u16string_view text);

// A caption in plain text that wraps to the page's width.
QLabel* Caption(const QString& text, QWidget* parent);

// OK and Cancel, wired to the dialog's accept and reject.
QDialogButtonBox* OkCancel(QDialog* dialog);

// The caption of a check box, wrapped: a 240 pixel screen is narrower than the
// longer captions. A tap on it ticks the box, as on the box's own text.
class CheckBoxCaption : public QLabel {
 public:
  CheckBoxCaption(const QString& text, QCheckBox* box, QWidget* parent);

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QCheckBox* box_;
};

}  // namespace wavetrace::ui
