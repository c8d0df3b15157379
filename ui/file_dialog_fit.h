#pragma once

class QFileDialog;
class QWidget;

namespace wavetrace::ui {

// Makes dialog Qt's own file dialog rather than the desktop's, with window's
// font, at most window's size: a 240x320 panel needs both. On a panel too
// narrow for it, the list of places, the detail columns, the tool buttons
// other than "up" and a type filter with a single entry give their room to
// the file list. Set the name filters first.
void FitFileDialog(QFileDialog& dialog, const QWidget& window);

}  // namespace wavetrace::ui
