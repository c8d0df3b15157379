// The Communication Properties pages, opened through the menu of the running
// program: what they show and what OK and Cancel leave in the settings.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <array>
#include <string>

#include "app/comm_properties.h"
#include "tests/qt/gui_program.h"
#include "tests/qt/modal_handler.h"
#include "ui/comm_properties_dialog.h"
#include "ui/main_window_widget.h"

namespace wavetrace::ui {
namespace {

using testing::ClickCancel;
using testing::ClickOk;
using testing::GuiProgram;
using testing::ModalHandler;
using testing::WaitUntil;
namespace cmd = core::cmd;

// A port table of its own instead of whatever this machine has: two present
// COM ports (one with a device), a virtual port known only by its path, and
// a named slot that is neither present nor has a device.
void SetPortTable(core::AppState& state) {
  state.Port.PortPresent.fill(0);
  state.PortDevicePath.fill({});
  state.Port.PortPresent[1] = 1;
  state.Port.FriendlyName[1] = u"FT232R USB UART";
  state.PortDevicePath[1] = "/dev/ttyUSB0";
  state.Port.PortPresent[3] = 1;
  state.Port.FriendlyName[3] = u"Bluetooth";
  state.Port.FriendlyName[10] = u"Loopback";
  state.PortDevicePath[10] = "/dev/pts/7";
  state.Port.FriendlyName[5] = u"Unplugged";
  state.Port.SelectedPort = u"COM3:";
  state.Port.SelectedBaud = 9600;
  state.Port.SelectedDataBits = 8;
  state.Port.Parity = u"None";
  state.Port.StopBits = u"1";
  state.Port.XON = 0;
  state.Port.RTS = 0;
  state.Port.DTR = 0;
  state.Port.CustomBauds_count = 0;
  state.Port.CustomBaud_01 = 0;
}

QStringList ListedPorts(const CommPropertiesDialog& dialog) {
  QStringList lines;
  for (int row = 0; row < dialog.PortList()->count(); ++row) lines << dialog.PortList()->item(row)->text();
  return lines;
}

QString SelectedLine(const CommPropertiesDialog& dialog) {
  QList<QListWidgetItem*> items = dialog.PortList()->selectedItems();
  return items.size() == 1 ? items.front()->text() : QString();
}

QStringList BaudItems(const CommPropertiesDialog& dialog) {
  QStringList items;
  for (int i = 0; i < dialog.BaudField()->count(); ++i) items << dialog.BaudField()->itemText(i);
  return items;
}

bool RunPages(MainWindowWidget& window, const std::function<void(CommPropertiesDialog&)>& act) {
  return testing::RunDialog<CommPropertiesDialog>(window, cmd::kCommProperties, act);
}

TEST(CommProperties, ShowsThePortTableAndOkStoresEveryValue) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetPortTable(state);
    ASSERT_NE(state.Snapshot.Port.SelectedPort, u"VSP0:");
    ASSERT_TRUE(window.Action(cmd::kCommProperties)->isEnabled());

    QStringList listed;
    QString preselected;
    QString pathText = QStringLiteral("unread");
    QString baudText;
    QString dataBits;
    QString parity;
    QString stopBits;
    int fontPixels = 0;
    QSize dialogSize;
    bool handled = RunPages(window, [&](CommPropertiesDialog& dialog) {
      listed = ListedPorts(dialog);
      preselected = SelectedLine(dialog);
      pathText = dialog.DevicePathField()->text();
      baudText = dialog.BaudField()->currentText();
      dataBits = dialog.DataBitsField()->currentText();
      parity = dialog.ParityField()->currentText();
      stopBits = dialog.StopBitsField()->currentText();
      fontPixels = dialog.font().pixelSize();
      dialogSize = dialog.size();

      dialog.PortList()->setCurrentRow(2);
      dialog.BaudField()->setCurrentIndex(dialog.BaudField()->findText(QStringLiteral("115200")));
      dialog.DataBitsField()->setCurrentIndex(dialog.DataBitsField()->findText(QStringLiteral("7")));
      dialog.ParityField()->setCurrentIndex(dialog.ParityField()->findText(QStringLiteral("Even")));
      dialog.StopBitsField()->setCurrentIndex(dialog.StopBitsField()->findText(QStringLiteral("1.5")));
      dialog.XonBox()->setChecked(true);
      dialog.RtsBox()->setChecked(true);
      dialog.DtrBox()->setChecked(true);
      ClickOk(dialog);
    });
    ASSERT_TRUE(handled);

    EXPECT_EQ(listed, QStringList({QStringLiteral("COM1:  FT232R USB UART  (/dev/ttyUSB0)"),
                                   QStringLiteral("COM3:  Bluetooth"),
                                   QStringLiteral("VSP0:  Loopback  (/dev/pts/7)")}));
    EXPECT_EQ(preselected, QStringLiteral("COM3:  Bluetooth"));
    EXPECT_EQ(pathText, QString());
    EXPECT_EQ(baudText, QStringLiteral("9600"));
    EXPECT_EQ(dataBits, QStringLiteral("8"));
    EXPECT_EQ(parity, QStringLiteral("None"));
    EXPECT_EQ(stopBits, QStringLiteral("1"));
    EXPECT_EQ(fontPixels, window.font().pixelSize());
    EXPECT_LE(dialogSize.width(), window.width());
    EXPECT_LE(dialogSize.height(), window.height());

    EXPECT_EQ(state.Port.SelectedPort, u"VSP0:");
    EXPECT_EQ(state.Port.SelectedBaud, 115200u);
    EXPECT_EQ(state.Port.SelectedDataBits, 7);
    EXPECT_EQ(state.Port.Parity, u"Even");
    EXPECT_EQ(state.Port.StopBits, u"1.5");
    EXPECT_EQ(state.Port.XON, 1);
    EXPECT_EQ(state.Port.RTS, 1);
    EXPECT_EQ(state.Port.DTR, 1);
    // A listed rate is no custom rate.
    EXPECT_EQ(state.Port.CustomBaud_01, 0u);
    EXPECT_EQ(state.Port.CustomBauds_count, 0);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(CommProperties, OkGoesThroughApplyPortPages) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetPortTable(state);
    // The last configuration named COM1: at 57600 7E2 with XON/XOFF; choosing
    // COM1: again brings that line setting back over what the page shows.
    state.Snapshot.Port = state.Port;
    state.Snapshot.Port.SelectedPort = u"COM1:";
    state.Snapshot.Port.SelectedBaud = 57600;
    state.Snapshot.Port.SelectedDataBits = 7;
    state.Snapshot.Port.Parity = u"Even";
    state.Snapshot.Port.StopBits = u"2";
    state.Snapshot.Port.XON = 1;

    ASSERT_TRUE(RunPages(window, [](CommPropertiesDialog& dialog) {
      dialog.PortList()->setCurrentRow(0);
      ClickOk(dialog);
    }));
    EXPECT_EQ(state.Port.SelectedPort, u"COM1:");
    EXPECT_EQ(state.Port.SelectedBaud, 57600u);
    EXPECT_EQ(state.Port.SelectedDataBits, 7);
    EXPECT_EQ(state.Port.Parity, u"Even");
    EXPECT_EQ(state.Port.StopBits, u"2");
    EXPECT_EQ(state.Port.XON, 1);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(CommProperties, CancelStoresNothing) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetPortTable(state);
    core::PortSettings before = state.Port;

    ASSERT_TRUE(RunPages(window, [](CommPropertiesDialog& dialog) {
      dialog.PortList()->setCurrentRow(0);
      dialog.BaudField()->setEditText(QStringLiteral("31250"));
      dialog.ParityField()->setCurrentIndex(dialog.ParityField()->findText(QStringLiteral("Mark")));
      dialog.DtrBox()->setChecked(true);
      ClickCancel(dialog);
    }));
    EXPECT_EQ(state.Port, before);
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(CommProperties, TypedRateBecomesTheCustomRateAndIsListedNextTime) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetPortTable(state);

    ASSERT_TRUE(RunPages(window, [](CommPropertiesDialog& dialog) {
      dialog.BaudField()->setEditText(QStringLiteral(" 250000 "));
      ClickOk(dialog);
    }));
    EXPECT_EQ(state.Port.SelectedBaud, 250000u);
    EXPECT_EQ(state.Port.CustomBaud_01, 250000u);
    EXPECT_EQ(state.Port.CustomBauds_count, 1);
    EXPECT_EQ(state.Port.SelectedPort, u"COM3:");

    QStringList items;
    QString shown;
    ASSERT_TRUE(RunPages(window, [&](CommPropertiesDialog& dialog) {
      items = BaudItems(dialog);
      shown = dialog.BaudField()->currentText();
      ClickCancel(dialog);
    }));
    // Every listed rate and the custom one, in order.
    QStringList expected;
    for (uint32_t rate : app::kStandardBauds) {
      if (rate == 460800) expected << QStringLiteral("250000");
      expected << QString::number(rate);
    }
    EXPECT_EQ(items, expected);
    EXPECT_EQ(shown, QStringLiteral("250000"));
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(CommProperties, DevicePathAndListAreOneChoice) {
  GuiProgram program;
  int exitCode = program.Run([&] {
    MainWindowWidget& window = program.View().Window();
    core::AppState& state = program.State();
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    SetPortTable(state);
    state.Port.SelectedPort = u"/dev/ttyACM0";

    QString shownPath;
    int selectedBefore = -1;
    QString pathAfterRowChosen = QStringLiteral("unread");
    int selectedAfterTyping = -1;
    ASSERT_TRUE(RunPages(window, [&](CommPropertiesDialog& dialog) {
      shownPath = dialog.DevicePathField()->text();
      selectedBefore = static_cast<int>(dialog.PortList()->selectedItems().size());
      dialog.PortList()->setCurrentRow(1);
      pathAfterRowChosen = dialog.DevicePathField()->text();
      QTest::keyClicks(dialog.DevicePathField(), QStringLiteral("/dev/ttyS4"));
      selectedAfterTyping = static_cast<int>(dialog.PortList()->selectedItems().size());
      ClickOk(dialog);
    }));
    EXPECT_EQ(shownPath, QStringLiteral("/dev/ttyACM0"));
    EXPECT_EQ(selectedBefore, 0);
    EXPECT_EQ(pathAfterRowChosen, QString());
    EXPECT_EQ(selectedAfterTyping, 0);
    EXPECT_EQ(state.Port.SelectedPort, u"/dev/ttyS4");
  });
  EXPECT_EQ(exitCode, 0);
}

TEST(CommProperties, InvalidBaudIsRefusedAndTheDialogStaysOpen) {
  testing::TestApplication();
  core::PortSettings port;
  port.SelectedBaud = 9600;
  std::array<std::string, core::kPortSlots> paths;
  CommPropertiesDialog dialog(port, paths);
  dialog.open();
  ASSERT_TRUE(WaitUntil([&] { return dialog.isVisible(); }));

  for (const QString& typed :
       {QString(), QStringLiteral("0"), QStringLiteral("fast"), QStringLiteral("-9600")}) {
    dialog.BaudField()->setEditText(typed);
    QString boxText;
    ModalHandler<QMessageBox> box([&](QMessageBox& shown) {
      boxText = shown.text();
      shown.done(QMessageBox::Ok);
    });
    ClickOk(dialog);
    EXPECT_TRUE(box.Handled()) << typed.toStdString();
    EXPECT_EQ(boxText, QStringLiteral("Invalid baud rate: enter a positive number.")) << typed.toStdString();
    EXPECT_TRUE(dialog.isVisible()) << typed.toStdString();
    EXPECT_NE(dialog.result(), QDialog::Accepted) << typed.toStdString();
  }

  // A good rate is taken.
  dialog.BaudField()->setEditText(QStringLiteral("4800"));
  ClickOk(dialog);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  core::PortSettings edited = port;
  dialog.WriteValues(edited);
  EXPECT_EQ(edited.SelectedBaud, 4800u);
}

}  // namespace
}  // namespace wavetrace::ui
