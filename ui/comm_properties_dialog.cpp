#include "ui/comm_properties_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <vector>

#include "app/comm_properties.h"

namespace wavetrace::ui {
namespace {

constexpr int kSlotRole = Qt::UserRole;

QString SlotName(int slot) {
  return QString::fromStdU16String(core::PortSlotName(slot));
}

QComboBox* ChoiceField(const QStringList& items, const QString& current, QWidget* parent) {
  auto* field = new QComboBox(parent);
  field->addItems(items);
  // A value outside the list stays unselected, and so unchanged on OK.
  field->setCurrentIndex(field->findText(current));
  return field;
}

QCheckBox* FlagBox(const char* caption, int32_t value, QWidget* parent) {
  auto* box = new QCheckBox(QString::fromLatin1(caption), parent);
  box->setChecked(value != 0);
  return box;
}

}  // namespace

CommPropertiesDialog::CommPropertiesDialog(const core::PortSettings& port,
                                           const std::array<std::string, core::kPortSlots>& devicePaths,
                                           const app::PortScanPage& scan, QWidget* parent)
    : QDialog(parent), scan_(scan) {
  setWindowTitle(QStringLiteral("Communication Properties"));
  auto* layout = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->addTab(BuildPortPage(port, devicePaths), QStringLiteral("Port"));
  tabs->addTab(BuildLinePage(port), QStringLiteral("Line"));
  tabs->addTab(BuildFlowPage(port), QStringLiteral("Flow"));
  tabs->addTab(BuildPortScanPage(), QStringLiteral("Port Scan"));
  layout->addWidget(tabs, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &CommPropertiesDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

QWidget* CommPropertiesDialog::BuildPortPage(const core::PortSettings& port,
                                             const std::array<std::string, core::kPortSlots>& devicePaths) {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  portList_ = new QListWidget(page);
  portList_->setObjectName(QStringLiteral("portList"));
  // The list asks for the room of its lines; the view bounds the dialog by
  // the window, and what does not fit then scrolls sideways.
  portList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  portList_->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
  QListWidgetItem* current = nullptr;
  const int preselected = app::PreselectedSlot(port, devicePaths);
  for (int slot : app::ListedSlots(port, devicePaths)) {
    auto i = static_cast<size_t>(slot);
    auto* item = new QListWidgetItem(
        QString::fromStdU16String(app::PortListLine(slot, port.FriendlyName[i], devicePaths[i])), portList_);
    item->setData(kSlotRole, SlotName(slot));
    if (slot == preselected) current = item;
  }
  layout->addWidget(portList_, 1);

  layout->addWidget(new QLabel(QStringLiteral("Or device path:"), page));
  devicePath_ = new QLineEdit(page);
  devicePath_->setObjectName(QStringLiteral("devicePath"));
  layout->addWidget(devicePath_);
  // On two lines: a check box does not wrap, and the page must fit a narrow screen.
  reopen_ = FlagBox("Reopen the port when the device\ncomes back", port.ReopenPort, page);
  reopen_->setObjectName(QStringLiteral("reopenPort"));
  layout->addWidget(reopen_);

  // A port is either a slot of the list or what the field names, never both.
  if (current) {
    portList_->setCurrentItem(current);
  } else {
    devicePath_->setText(QString::fromStdU16String(port.SelectedPort));
  }
  connect(portList_, &QListWidget::itemSelectionChanged, this, [this] {
    if (!portList_->selectedItems().isEmpty()) devicePath_->clear();
  });
  connect(devicePath_, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (!text.isEmpty()) portList_->clearSelection();
  });
  return page;
}

QWidget* CommPropertiesDialog::BuildLinePage(const core::PortSettings& port) {
  auto* page = new QWidget(this);
  auto* form = new QFormLayout(page);

  baud_ = new QComboBox(page);
  baud_->setObjectName(QStringLiteral("baud"));
  baud_->setEditable(true);
  baud_->setInsertPolicy(QComboBox::NoInsert);
  std::vector<uint32_t> rates(std::begin(app::kStandardBauds), std::end(app::kStandardBauds));
  if (port.CustomBaud_01 != 0 && !app::IsStandardBaud(port.CustomBaud_01)) {
    rates.insert(std::upper_bound(rates.begin(), rates.end(), port.CustomBaud_01), port.CustomBaud_01);
  }
  for (uint32_t rate : rates) baud_->addItem(QString::number(rate));
  baud_->setCurrentIndex(baud_->findText(QString::number(port.SelectedBaud)));
  baud_->setEditText(QString::number(port.SelectedBaud));
  form->addRow(QStringLiteral("Baud rate"), baud_);

  dataBits_ =
      ChoiceField({QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")},
                  QString::number(port.SelectedDataBits), page);
  dataBits_->setObjectName(QStringLiteral("dataBits"));
  form->addRow(QStringLiteral("Data bits"), dataBits_);

  parity_ = ChoiceField({QStringLiteral("None"), QStringLiteral("Odd"), QStringLiteral("Even"),
                         QStringLiteral("Mark"), QStringLiteral("Space")},
                        QString::fromStdU16String(port.Parity), page);
  parity_->setObjectName(QStringLiteral("parity"));
  form->addRow(QStringLiteral("Parity"), parity_);

  stopBits_ = ChoiceField({QStringLiteral("1"), QStringLiteral("1.5"), QStringLiteral("2")},
                          QString::fromStdU16String(port.StopBits), page);
  stopBits_->setObjectName(QStringLiteral("stopBits"));
  form->addRow(QStringLiteral("Stop bits"), stopBits_);
  return page;
}

QWidget* CommPropertiesDialog::BuildFlowPage(const core::PortSettings& port) {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  xon_ = FlagBox("XON/XOFF", port.XON, page);
  ctsFlow_ = FlagBox("RTS/CTS (hardware)", port.CtsFlow, page);
  ctsFlow_->setObjectName(QStringLiteral("ctsFlow"));
  rts_ = FlagBox("RTS on", port.RTS, page);
  dtr_ = FlagBox("DTR on", port.DTR, page);
  layout->addWidget(xon_);
  layout->addWidget(ctsFlow_);
  layout->addWidget(rts_);
  layout->addWidget(dtr_);
  layout->addStretch(1);
  return page;
}

QWidget* CommPropertiesDialog::BuildPortScanPage() {
  core::PortScanSettings& values = scan_.Values;
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  psmEnable_ = FlagBox("Enable Port Scan Mode (PSM)", values.PsmEnabled, page);
  psmEnable_->setObjectName(QStringLiteral("psmEnable"));
  layout->addWidget(psmEnable_);

  rotateGroup_ = new QGroupBox(QStringLiteral("Rotate through:"), page);
  auto* grid = new QGridLayout(rotateGroup_);
  struct Rotate {
    const char* caption;
    int32_t* value;
  };
  const std::array<Rotate, 4> rotations = {{{"baud", &values.PsmRotateBaud},
                                            {"data bits", &values.PsmRotateDataBits},
                                            {"parity", &values.PsmRotateParity},
                                            {"stop bits", &values.PsmRotateStopBits}}};
  for (size_t i = 0; i < rotations.size(); ++i) {
    QCheckBox* box = FlagBox(rotations[i].caption, *rotations[i].value, rotateGroup_);
    int32_t* value = rotations[i].value;
    connect(box, &QCheckBox::toggled, this, [value](bool on) { *value = on ? 1 : 0; });
    grid->addWidget(box, static_cast<int>(i) / 2, static_cast<int>(i) % 2);
    rotate_[i] = box;
  }
  layout->addWidget(rotateGroup_);

  intervalRow_ = new QWidget(page);
  auto* row = new QHBoxLayout(intervalRow_);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(new QLabel(QStringLiteral("Scan interval:"), intervalRow_));
  // The field with its up-down: the arrows follow what is typed and write
  // what they step to.
  scanInterval_ = new QSpinBox(intervalRow_);
  scanInterval_->setObjectName(QStringLiteral("scanInterval"));
  scanInterval_->setRange(app::kMinScanInterval, app::kMaxScanInterval);
  scanInterval_->findChild<QLineEdit*>()->setMaxLength(app::kScanIntervalChars);
  scanInterval_->setValue(values.PsmScanInterval);
  connect(scanInterval_, &QSpinBox::valueChanged, this,
          [&values](int seconds) { values.PsmScanInterval = app::ClampScanInterval(seconds); });
  row->addWidget(scanInterval_);
  row->addWidget(new QLabel(QStringLiteral("second(s)"), intervalRow_));
  row->addStretch(1);
  layout->addWidget(intervalRow_);
  layout->addStretch(1);

  connect(psmEnable_, &QCheckBox::toggled, this, [this, &values](bool on) {
    values.PsmEnabled = on ? 1 : 0;
    ShowPortScanEnabling();
  });
  ShowPortScanEnabling();
  return page;
}

void CommPropertiesDialog::ShowPortScanEnabling() {
  bool enabled = app::PortScanOptionsEnabled(scan_.Values);
  rotateGroup_->setEnabled(enabled);
  intervalRow_->setEnabled(enabled);
}

std::optional<uint32_t> CommPropertiesDialog::Baud() const {
  bool number = false;
  uint32_t baud = baud_->currentText().trimmed().toUInt(&number, 10);
  if (!number || baud == 0) return std::nullopt;
  return baud;
}

std::u16string CommPropertiesDialog::ChosenPort() const {
  QString path = devicePath_->text().trimmed();
  if (!path.isEmpty()) return path.toStdU16String();
  QList<QListWidgetItem*> items = portList_->selectedItems();
  if (items.isEmpty()) return {};
  return items.front()->data(kSlotRole).toString().toStdU16String();
}

void CommPropertiesDialog::WriteValues(core::PortSettings& edited) const {
  edited.SelectedPort = ChosenPort();
  if (std::optional<uint32_t> baud = Baud()) app::SetBaud(edited, *baud);
  if (dataBits_->currentIndex() >= 0) {
    edited.SelectedDataBits = static_cast<uint8_t>(dataBits_->currentText().toUInt());
  }
  if (parity_->currentIndex() >= 0) edited.Parity = parity_->currentText().toStdU16String();
  if (stopBits_->currentIndex() >= 0) edited.StopBits = stopBits_->currentText().toStdU16String();
  edited.XON = xon_->isChecked() ? 1 : 0;
  edited.CtsFlow = ctsFlow_->isChecked() ? 1 : 0;
  edited.RTS = rts_->isChecked() ? 1 : 0;
  edited.DTR = dtr_->isChecked() ? 1 : 0;
  edited.ReopenPort = reopen_->isChecked() ? 1 : 0;
}

void CommPropertiesDialog::accept() {
  if (!Baud()) {
    QMessageBox box(QMessageBox::Warning, windowTitle(),
                    QStringLiteral("Invalid baud rate: enter a positive number."), QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    // Boxes are windows of their own: the font does not pass on by itself.
    box.setFont(font());
    box.exec();
    baud_->setFocus(Qt::OtherFocusReason);
    return;
  }
  QDialog::accept();
}

}  // namespace wavetrace::ui
