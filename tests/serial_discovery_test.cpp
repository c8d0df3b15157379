#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/port_discovery.h"
#include "serial/discovery.h"
#include "test_support.h"

namespace wavetrace::serial {
namespace {

namespace fs = std::filesystem;

// A fake /sys/class/tty with the device folders behind it, in a fresh folder.
class DiscoveryTest : public ::testing::Test {
 protected:
  void SetUp() override { Clear(); }
  // A USB serial adapter: tty -> interface -> USB device with attributes.
  void AddUsb(const std::string& tty, const std::string& product, const std::string& vendor,
              const std::string& byId, const std::string& manufacturer = "") {
    fs::path usb = root / "devices/usb1" / ("1-" + std::to_string(++usbCount));
    AddTty(tty, usb / "1-1:1.0" / tty);
    std::ofstream(usb / "idVendor") << vendor << "\n";
    std::ofstream(usb / "product") << product << "\n";
    if (!manufacturer.empty()) std::ofstream(usb / "manufacturer") << manufacturer << "\n";
    fs::create_symlink("../../" + tty, root / "by-id" / byId);
  }
  void AddUart(const std::string& tty, const std::string& type) {
    AddTty(tty, root / "devices/platform/serial8250" / tty);
    std::ofstream(root / "class/tty" / tty / "type") << type << "\n";
  }
  void AddTty(const std::string& tty, const fs::path& device = {}) {
    fs::create_directories(root / "class/tty" / tty);
    if (device.empty()) return;  // a virtual terminal
    fs::create_directories(device);
    fs::create_directory_symlink(device, root / "class/tty" / tty / "device");
  }
  // Everything unplugged.
  void Clear() {
    for (const char* tree : {"class/tty", "by-id"}) {
      fs::remove_all(root / tree);
      fs::create_directories(root / tree);
    }
  }
  std::unique_ptr<core::AppState> Discover() {
    auto fresh = std::make_unique<core::AppState>();
    fresh->RegistryFile = folder.Path() + "/registry.txt";
    fresh->VirtualPortPath = virtualPorts;
    EXPECT_EQ(app::DiscoverPorts(*fresh, {(root / "class/tty").string(), (root / "by-id").string(), "/dev"}),
              1);
    return fresh;
  }
  // The name and device path of a slot.
  using NameAndPath = std::pair<std::u16string, std::string>;
  static NameAndPath Slot(const core::AppState& s, size_t slot) {
    return {s.Port.FriendlyName[slot], s.PortDevicePath[slot]};
  }

  testing::TempFolder folder;
  fs::path root = folder.Path() + "/sys";
  int usbCount = 0;
  decltype(core::AppState::VirtualPortPath) virtualPorts;
};

TEST_F(DiscoveryTest, KindsOfDevicesAndTheirNames) {
  AddUsb("ttyUSB0", "FT232R USB UART", "0403", "usb-FTDI_FT232R_USB_UART_A1-if00-port0");
  AddUsb("ttyUSB1", "USB-Serial Controller", "067b", "usb-Prolific_USB-Serial_Controller-if00-port0");
  AddUsb("ttyACM0", "u-blox 7 - GPS/GNSS Receiver", "1546", "usb-u-blox_AG-if00");
  AddUsb("ttyACM1", "Receiver", "1234", "usb-Acme_Receiver-if00", "Acme GPS");
  AddUart("ttyS0", "4");
  AddUart("ttyS1", "0");  // phantom
  for (const char* tty : {"rfcomm0", "tty1", "ptmx"}) AddTty(tty);

  auto s = Discover();
  // Ordered by stable name: rfcomm0, ttyS0, usb-Acme, usb-FTDI, usb-Prolific (a hyphen: not shown),
  // usb-u-blox.
  const NameAndPath expected[] = {
      {u"Bluetooth Serial Port COM1:", "/dev/rfcomm0"},   {u"Serial connection using COM2:", "/dev/ttyS0"},
      {u"GPS Serial Port COM3:", "/dev/ttyACM1"},         {u"FT232R USB UART", "/dev/ttyUSB0"},
      {u"Serial connection using COM5:", "/dev/ttyUSB1"}, {u"GPS Serial Port COM6:", "/dev/ttyACM0"},
  };
  // COM0 never, and beside the devices the simulated device on VSP0.
  for (size_t slot = 0; slot < core::kPortSlots; ++slot)
    EXPECT_EQ(s->Port.PortPresent[slot], (slot >= 1 && slot <= 6) || slot == 10) << slot;
  for (size_t slot = 1; slot <= 6; ++slot) EXPECT_EQ(Slot(*s, slot), expected[slot - 1]) << slot;
  EXPECT_EQ(s->Port.FriendlyName[10], u"Simulated device");
}

TEST_F(DiscoveryTest, ADeviceKeepsItsNumberAcrossRunsAndReplugging) {
  AddUsb("ttyUSB0", "Adapter B", "0403", "usb-B-port0");
  AddUsb("ttyUSB1", "Adapter C", "0403", "usb-C-port0");
  Discover();  // B takes 1 and C 2, by stable name (KindsOfDevicesAndTheirNames)
  // B is unplugged; A, which sorts first, arrives; C now enumerates as ttyUSB0. 1 stays B's.
  Clear();
  AddUsb("ttyUSB0", "Adapter C", "0403", "usb-C-port0");
  AddUsb("ttyUSB1", "Adapter A", "0403", "usb-A-port0");
  auto second = Discover();
  EXPECT_EQ(second->Port.PortPresent[1], 0);
  EXPECT_EQ(Slot(*second, 2), NameAndPath(u"Adapter C", "/dev/ttyUSB0"));
  EXPECT_EQ(Slot(*second, 3), NameAndPath(u"Adapter A", "/dev/ttyUSB1"));
  // B comes back and finds its number.
  AddUsb("ttyUSB2", "Adapter B", "0403", "usb-B-port0");
  EXPECT_EQ(Slot(*Discover(), 1), NameAndPath(u"Adapter B", "/dev/ttyUSB2"));
}

TEST_F(DiscoveryTest, MoreThanNineDevicesAndVirtualPorts) {
  for (int i = 0; i < 11; ++i)
    AddUsb("ttyUSB" + std::to_string(i), "Hub port", "0403", "usb-hub-" + std::to_string(i));
  std::ofstream(folder.Path() + "/vport") << "";
  virtualPorts[11] = folder.Path() + "/vport";
  virtualPorts[12] = folder.Path() + "/missing";
  auto s = Discover();
  // Nine COM slots, the simulated device on VSP0 and the virtual port that exists.
  for (size_t slot = 0; slot <= 12; ++slot)
    EXPECT_EQ(s->Port.PortPresent[slot], (slot >= 1 && slot <= 11) ? 1 : 0) << slot;
  EXPECT_EQ(s->PortDevicePath[11], folder.Path() + "/vport");
}

// The name rule at its edges (a hyphen, below "0", and plain names: KindsOfDevicesAndTheirNames):
// "_" lies within "0" to "z"; "{" lies above, as any letter beyond ASCII does.
TEST(DisplayNames, Vetting) {
  EXPECT_EQ(VetDisplayName(u"under_score"), u"under_score");
  EXPECT_EQ(VetDisplayName(u"{x}"), u"");
}

TEST(Discovery, AMissingTreeFindsNothingAndTheSimulatedDeviceCanBeSwitchedOff) {
  core::AppState off;
  off.Simulated.SimulatedDevice = false;
  PortNumbers numbers;
  EXPECT_EQ(DiscoverPorts(off, numbers, {"/nonexistent/class/tty", "/nonexistent/by-id", "/dev"}), 1);
  for (size_t slot = 0; slot < core::kPortSlots; ++slot) EXPECT_EQ(off.Port.PortPresent[slot], 0) << slot;
}

}  // namespace
}  // namespace wavetrace::serial
