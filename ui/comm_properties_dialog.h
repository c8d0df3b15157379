#pragma once

#include <QDialog>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "app/port_scan_page.h"
#include "core/settings.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QSpinBox;

namespace wavetrace::ui {

// The communication properties: the port (a slot of the port table or a
// device path), the line setting, the flow flags and port scan mode on four
// small tabs. OK is refused with a box while the baud rate is not a positive
// number; WriteValues then puts what the port pages hold into a settings
// block, and PortScan() is the Port Scan page's copy with every edit in it.
class CommPropertiesDialog : public QDialog {
  Q_OBJECT

 public:
  CommPropertiesDialog(const core::PortSettings& port,
                       const std::array<std::string, core::kPortSlots>& devicePaths,
                       const app::PortScanPage& scan = {}, QWidget* parent = nullptr);

  // The baud rate typed or chosen; empty when it is not a positive number.
  [[nodiscard]] std::optional<uint32_t> Baud() const;
  // Writes the pages into edited; what a page does not hold stays as it is.
  void WriteValues(core::PortSettings& edited) const;
  [[nodiscard]] const app::PortScanPage& PortScan() const { return scan_; }

  [[nodiscard]] QListWidget* PortList() const { return portList_; }
  [[nodiscard]] QLineEdit* DevicePathField() const { return devicePath_; }
  [[nodiscard]] QComboBox* BaudField() const { return baud_; }
  [[nodiscard]] QComboBox* DataBitsField() const { return dataBits_; }
  [[nodiscard]] QComboBox* ParityField() const { return parity_; }
  [[nodiscard]] QComboBox* StopBitsField() const { return stopBits_; }
  [[nodiscard]] QCheckBox* ReopenBox() const { return reopen_; }
  [[nodiscard]] QCheckBox* XonBox() const { return xon_; }
  [[nodiscard]] QCheckBox* CtsFlowBox() const { return ctsFlow_; }
  [[nodiscard]] QCheckBox* RtsBox() const { return rts_; }
  [[nodiscard]] QCheckBox* DtrBox() const { return dtr_; }
  [[nodiscard]] QCheckBox* PsmEnableBox() const { return psmEnable_; }
  [[nodiscard]] QGroupBox* RotateGroup() const { return rotateGroup_; }
  // "baud", "data bits", "parity", "stop bits".
  [[nodiscard]] const std::array<QCheckBox*, 4>& RotateBoxes() const { return rotate_; }
  [[nodiscard]] QSpinBox* ScanIntervalField() const { return scanInterval_; }

 public slots:
  void accept() override;

 private:
  QWidget* BuildPortPage(const core::PortSettings& port,
                         const std::array<std::string, core::kPortSlots>& devicePaths);
  QWidget* BuildLinePage(const core::PortSettings& port);
  QWidget* BuildFlowPage(const core::PortSettings& port);
  QWidget* BuildPortScanPage();
  void ShowPortScanEnabling();
  [[nodiscard]] std::u16string ChosenPort() const;

  QListWidget* portList_ = nullptr;
  QLineEdit* devicePath_ = nullptr;
  QComboBox* baud_ = nullptr;
  QComboBox* dataBits_ = nullptr;
  QComboBox* parity_ = nullptr;
  QComboBox* stopBits_ = nullptr;
  QCheckBox* reopen_ = nullptr;
  QCheckBox* xon_ = nullptr;
  QCheckBox* ctsFlow_ = nullptr;
  QCheckBox* rts_ = nullptr;
  QCheckBox* dtr_ = nullptr;
  app::PortScanPage scan_;
  QCheckBox* psmEnable_ = nullptr;
  QGroupBox* rotateGroup_ = nullptr;
  std::array<QCheckBox*, 4> rotate_{};
  QWidget* intervalRow_ = nullptr;
  QSpinBox* scanInterval_ = nullptr;
};

}  // namespace wavetrace::ui
