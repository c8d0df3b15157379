#pragma once

#include <QDialog>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "core/settings.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;

namespace wavetrace::ui {

// The communication properties: the port (a slot of the port table or a
// device path), the line setting and the flow flags on three small tabs.
// OK is refused with a box while the baud rate is not a positive number;
// WriteValues then puts what the pages hold into a settings block.
class CommPropertiesDialog : public QDialog {
  Q_OBJECT

 public:
  CommPropertiesDialog(const core::PortSettings& port,
                       const std::array<std::string, core::kPortSlots>& devicePaths,
                       QWidget* parent = nullptr);

  // The baud rate typed or chosen; empty when it is not a positive number.
  [[nodiscard]] std::optional<uint32_t> Baud() const;
  // Writes the pages into edited; what a page does not hold stays as it is.
  void WriteValues(core::PortSettings& edited) const;

  [[nodiscard]] QListWidget* PortList() const { return portList_; }
  [[nodiscard]] QLineEdit* DevicePathField() const { return devicePath_; }
  [[nodiscard]] QComboBox* BaudField() const { return baud_; }
  [[nodiscard]] QComboBox* DataBitsField() const { return dataBits_; }
  [[nodiscard]] QComboBox* ParityField() const { return parity_; }
  [[nodiscard]] QComboBox* StopBitsField() const { return stopBits_; }
  [[nodiscard]] QCheckBox* XonBox() const { return xon_; }
  [[nodiscard]] QCheckBox* RtsBox() const { return rts_; }
  [[nodiscard]] QCheckBox* DtrBox() const { return dtr_; }

 public slots:
  void accept() override;

 private:
  QWidget* BuildPortPage(const core::PortSettings& port,
                         const std::array<std::string, core::kPortSlots>& devicePaths);
  QWidget* BuildLinePage(const core::PortSettings& port);
  QWidget* BuildFlowPage(const core::PortSettings& port);
  [[nodiscard]] std::u16string ChosenPort() const;

  QListWidget* portList_ = nullptr;
  QLineEdit* devicePath_ = nullptr;
  QComboBox* baud_ = nullptr;
  QComboBox* dataBits_ = nullptr;
  QComboBox* parity_ = nullptr;
  QComboBox* stopBits_ = nullptr;
  QCheckBox* xon_ = nullptr;
  QCheckBox* rts_ = nullptr;
  QCheckBox* dtr_ = nullptr;
};

}  // namespace wavetrace::ui
