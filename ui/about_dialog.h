#pragma once

#include <QDialog>
#include <string_view>

namespace wavetrace::ui {

// The About screen: program name, release line and, while a script runs
// the program, the automation warning.
class AboutDialog : public QDialog {
  Q_OBJECT

 public:
  AboutDialog(std::u16string_view releaseLine, bool automationMode, QWidget* parent = nullptr);
};

}  // namespace wavetrace::ui
