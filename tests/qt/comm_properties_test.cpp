// The Communication Properties pages: the dialog over a port table of its
// own, and through the menu of the running program (with the Port Scan
// page and its strip).
#include <array>
#include <string>
#include <tuple>

#include "tests/qt/gui_program.h"
#include "ui/comm_properties_dialog.h"

namespace wavetrace::ui {
namespace {

using namespace testing;

// Two present COM ports (one with a device), a virtual port known only by its
// path, and a named slot that is neither present nor has a device. COM3: is
// chosen; the rest of the line setting is as a fresh block has it.
struct PortTable {
  PortTable() {
    port.PortPresent[1] = port.PortPresent[3] = 1;
    for (auto [slot, name] :
         {std::pair{1, u"FT232R USB UART"}, {3, u"Bluetooth"}, {5, u"Unplugged"}, {10, u"Loopback"}})
      port.FriendlyName[slot] = name;
    paths[1] = "/dev/ttyUSB0";
    paths[10] = "/dev/pts/7";
    port.SelectedPort = u"COM3:";
  }
  core::PortSettings port;
  std::array<std::string, core::kPortSlots> paths;
};

QStringList Lines(const CommPropertiesDialog& dialog, bool selectedOnly) {
  QStringList lines;
  for (int row = 0; row < dialog.PortList()->count(); ++row) {
    QListWidgetItem* item = dialog.PortList()->item(row);
    if (!selectedOnly || item->isSelected()) lines << item->text();
  }
  return lines;
}

TEST(CommProperties, ListsThePortsWritesEveryValueAndRefusesAnInvalidRate) {
  TestApplication();
  PortTable table;
  CommPropertiesDialog dialog(table.port, table.paths);
  EXPECT_EQ(Lines(dialog, false), QStringList({"COM1:  FT232R USB UART  (/dev/ttyUSB0)", "COM3:  Bluetooth",
                                               "VSP0:  Loopback  (/dev/pts/7)"}));
  EXPECT_EQ(Lines(dialog, true), QStringList{"COM3:  Bluetooth"});
  EXPECT_TRUE(dialog.DevicePathField()->text().isEmpty());
  EXPECT_EQ(dialog.ParityField()->currentText(), "None");
  dialog.PortList()->setCurrentRow(2);
  for (auto [field, text] : {std::pair{dialog.BaudField(), "115200"},
                             {dialog.DataBitsField(), "7"},
                             {dialog.ParityField(), "Even"},
                             {dialog.StopBitsField(), "1.5"}})
    field->setCurrentIndex(field->findText(text));
  for (QCheckBox* box :
       {dialog.XonBox(), dialog.CtsFlowBox(), dialog.RtsBox(), dialog.DtrBox(), dialog.ReopenBox()})
    box->setChecked(true);
  core::PortSettings port = table.port;
  dialog.WriteValues(port);
  EXPECT_EQ(
      std::tuple(port.SelectedPort, port.SelectedBaud, port.SelectedDataBits, port.Parity, port.StopBits),
      std::tuple(u"VSP0:", 115200u, 7, u"Even", u"1.5"));
  EXPECT_EQ(port.XON + port.CtsFlow + port.RTS + port.DTR + port.ReopenPort, 5);

  // A device path and the list are one choice.
  QTest::keyClicks(dialog.DevicePathField(), "/dev/ttyS4");
  EXPECT_TRUE(Lines(dialog, true).isEmpty());
  dialog.WriteValues(port);
  EXPECT_EQ(port.SelectedPort, u"/dev/ttyS4");
  dialog.PortList()->setCurrentRow(1);
  EXPECT_TRUE(dialog.DevicePathField()->text().isEmpty());
  table.port.SelectedPort = u"/dev/ttyACM0";
  CommPropertiesDialog byPath(table.port, table.paths);
  EXPECT_EQ(byPath.DevicePathField()->text(), "/dev/ttyACM0");
  EXPECT_TRUE(Lines(byPath, true).isEmpty());

  // A typed rate becomes the custom rate: listed between its neighbours and chosen when the page opens
  // again (as any rate the port has).
  dialog.BaudField()->setEditText(" 250000 ");
  dialog.WriteValues(port);
  EXPECT_EQ(port.SelectedBaud, 250000u);
  CommPropertiesDialog again(port, table.paths);
  QComboBox* baud = again.BaudField();
  const int chosen = baud->currentIndex();
  EXPECT_EQ(QStringList({baud->itemText(chosen - 1), baud->currentText(), baud->itemText(chosen + 1)}),
            QStringList({"230400", "250000", "460800"}));

  // A rate that is not a positive number is refused and the dialog stays open.
  dialog.open();
  ASSERT_TRUE(WaitUntil([&] { return dialog.isVisible(); }));
  for (const char* typed : {"0", "fast"}) {
    dialog.BaudField()->setEditText(typed);
    QString boxText;
    ModalHandler<QMessageBox> box([&](QMessageBox& shown) {
      boxText = shown.text();
      shown.done(QMessageBox::Ok);
    });
    Click(dialog, QDialogButtonBox::Ok);
    EXPECT_EQ(boxText, "Invalid baud rate: enter a positive number.") << typed;
    EXPECT_TRUE(dialog.isVisible()) << typed;
  }
  dialog.BaudField()->setEditText("4800");
  Click(dialog, QDialogButtonBox::Ok);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

// Through the menu, with the Port Scan page: its box enables its options and OK shows its strip.
TEST(CommProperties, ThroughTheMenuCancelKeepsAndOkStoresBothPages) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    PortTable table;
    // The last loaded configuration names none of these ports, so its line
    // setting does not come back with a choice.
    ASSERT_NE(state.Snapshot.Port.SelectedPort, u"VSP0:");
    state.Port = table.port;
    state.PortDevicePath = table.paths;
    const core::PortScanSettings opened = state.Psm;
    CancelThenOk<CommPropertiesDialog>(
        window, core::cmd::kCommProperties,
        [](CommPropertiesDialog& dialog) {
          // A typed rate is written as any field is: ListsThePortsWritesEveryValueAndRefusesAnInvalidRate.
          dialog.PortList()->setCurrentRow(2);
          const auto& rotate = dialog.RotateBoxes();
          // The rotate boxes are the group's.
          auto usable = [&] { return rotate[3]->isEnabled() && dialog.ScanIntervalField()->isEnabled(); };
          EXPECT_FALSE(usable() || dialog.PsmEnableBox()->isChecked());
          EXPECT_TRUE(rotate[0]->isChecked() && dialog.ScanIntervalField()->value() == 1);
          dialog.PsmEnableBox()->click();
          EXPECT_TRUE(usable());
          rotate[2]->click();
          dialog.ScanIntervalField()->stepBy(4);
        },
        [&](bool ok) {
          EXPECT_EQ(state.Port.SelectedPort, ok ? u"VSP0:" : u"COM3:");
          EXPECT_EQ(state.Psm, ok ? (core::PortScanSettings{1, 1, 0, 1, 0, 5, 0}) : opened);
          EXPECT_TRUE(WaitUntil([&] { return window.PortScanStrip()->isVisibleTo(&window) == ok; }));
        });
  });
}

}  // namespace
}  // namespace wavetrace::ui
