#pragma once

#include <QDialog>
#include <cstdint>

#include "app/window_placement.h"

class QCheckBox;
class QComboBox;

namespace wavetrace::ui {

// The four program options as the page edits them, and the window's layout
// (kept in the window file, not the registry).
struct ProgramOptionValues {
  uint32_t DEFAULTcfg = 0;
  uint32_t MULTIinst = 0;
  uint32_t AcquireHWbuttons = 0;
  uint32_t DisableIcon = 0;
  app::WindowLayout Layout = app::WindowLayout::kAutomatic;
};

// The Program Options page: four check boxes, the window layout and the note
// that they count from the next start. OK hands the values back through
// Values().
class ProgramOptionsDialog : public QDialog {
  Q_OBJECT

 public:
  explicit ProgramOptionsDialog(const ProgramOptionValues& values, QWidget* parent = nullptr);

  [[nodiscard]] ProgramOptionValues Values() const;
  [[nodiscard]] QCheckBox* IgnoreDefaultConfig() const { return defaultCfg_; }
  [[nodiscard]] QCheckBox* MultipleInstances() const { return multiInst_; }
  [[nodiscard]] QCheckBox* HardwareButtons() const { return hwButtons_; }
  [[nodiscard]] QCheckBox* DisableIcon() const { return disableIcon_; }
  // "Automatic", "Compact", "Desktop", in the order of app::WindowLayout.
  [[nodiscard]] QComboBox* LayoutField() const { return layout_; }

 private:
  QCheckBox* defaultCfg_ = nullptr;
  QCheckBox* multiInst_ = nullptr;
  QCheckBox* hwButtons_ = nullptr;
  QCheckBox* disableIcon_ = nullptr;
  QComboBox* layout_ = nullptr;
};

}  // namespace wavetrace::ui
