#pragma once

class QFileDialog;
class QFont;
class QSize;

namespace wavetrace::ui {

// Makes dialog Qt's own file dialog rather than the desktop's, with the
// window's font, at most room in size: a 240x320 panel needs both, and the
// program's other dialogs look the same. Where room is too narrow for it,
// the list of places, the detail columns, the tool buttons other than "up"
// and a type filter with a single entry give their room to the file list.
// Set the name filters first.
void FitFileDialog(QFileDialog& dialog, const QFont& font, QSize room);

}  // namespace wavetrace::ui
