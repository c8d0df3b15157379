#include "ui/file_dialog_fit.h"

#include <QFileDialog>
#include <vector>

namespace wavetrace::ui {

void FitFileDialog(QFileDialog& dialog, const QFont& font, QSize room) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFont(font);
  if (dialog.minimumSizeHint().width() > room.width()) {
    dialog.setViewMode(QFileDialog::List);
    std::vector<const char*> parts = {"sidebar",         "backButton",     "forwardButton",
                                      "newFolderButton", "listModeButton", "detailModeButton"};
    if (dialog.nameFilters().size() <= 1) parts.insert(parts.end(), {"fileTypeLabel", "fileTypeCombo"});
    for (const char* name : parts) {
      if (auto* part = dialog.findChild<QWidget*>(QLatin1String(name))) part->hide();
    }
  }
  dialog.resize(dialog.sizeHint().boundedTo(room));
}

}  // namespace wavetrace::ui
