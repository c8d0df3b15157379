#include <gtest/gtest.h>

#include <cerrno>

#include "app/comm_properties.h"
#include "core/code_page.h"
#include "platform/pty.h"
#include "serial/port.h"
#include "serial/simulated_device.h"
#include "test_support.h"

namespace wavetrace::serial {
namespace {

TEST(WriteTimeouts, FromTheLineSpeed) {
  struct Case {
    uint32_t baud, multiplier, constant;
  };
  for (const auto& c : {Case{9600, 4, 989}, Case{115200, 1, 934}, Case{230400, 1, 929}, Case{4000000, 1, 929},
                        Case{300, 97, 2849}, Case{57600, 1, 939}, Case{0, 0, 0}}) {
    WriteTimeouts t = ComputeWriteTimeouts(c.baud);
    EXPECT_EQ(t.Multiplier, c.multiplier) << c.baud;
    EXPECT_EQ(t.Constant, c.constant) << c.baud;
  }
}

TEST(PortSettings, LineSettingFromTheSettingsTexts) {
  core::PortSettings port;
  struct Case {
    std::u16string parity;
    platform::Parity expected;
  };
  for (const auto& c : {Case{u"None", platform::Parity::kNone}, Case{u"Odd", platform::Parity::kOdd},
                        Case{u"Even", platform::Parity::kEven}, Case{u"Mark", platform::Parity::kMark},
                        Case{u"Space", platform::Parity::kSpace}, Case{u"odd", platform::Parity::kNone}}) {
    port.Parity = c.parity;
    EXPECT_EQ(LineSettingsOf(port).ParityMode, c.expected) << core::WideToUtf8(c.parity);
  }
  for (auto [text, stop] :
       {std::pair{u"1", platform::StopBits::kOne}, std::pair{u"1.5", platform::StopBits::kOneAndHalf},
        std::pair{u"2", platform::StopBits::kTwo}}) {
    port.StopBits = text;
    EXPECT_EQ(LineSettingsOf(port).Stop, stop);
  }
  port.XON = 1;
  port.RTS = 2;  // only 1 means on
  EXPECT_TRUE(LineSettingsOf(port).XonXoff);
  EXPECT_FALSE(LineSettingsOf(port).Rts);
}

TEST(PortNames, SelectedPortResolution) {
  core::AppState state;
  state.PortDevicePath[3] = "/dev/ttyUSB0";
  state.PortDevicePath[10] = "/dev/sim";
  state.Port.RawIrPort = u"COM3:";
  struct Case {
    std::u16string selected;
    std::string path;
  };
  for (const auto& c : {Case{u"COM3:", "/dev/ttyUSB0"}, Case{u"VSP0:", "/dev/sim"},
                        Case{u"RawIr", "/dev/ttyUSB0"}, Case{u"/dev/ttyACM7", "/dev/ttyACM7"}, Case{u"", ""},
                        Case{u"COM3", ""}, Case{u"COM4:", ""}, Case{u"XYZ1:", ""}, Case{u"COM10:", ""}}) {
    state.Port.SelectedPort = c.selected;
    EXPECT_EQ(ResolvePortPath(state), c.path) << core::WideToUtf8(c.selected);
  }
}

// A port that records what a close does to it.
class RecordingPort : public platform::SerialPort {
 public:
  platform::SysResult Configure(const platform::LineSettings&, std::string&) override { return {}; }
  uint32_t WaitEvent() override { return 0; }
  void SetEventMask(uint32_t) override {}
  int Read(uint8_t*, int, platform::SysResult&) override { return 0; }
  int Write(const uint8_t*, int count, int, platform::SysResult&) override { return count; }
  void Purge() override {}
  bool DrainOutput(int) override { return true; }
  void DiscardOutput() override { discardedWhileOpen = !closed; }
  void ClearModemLines(bool rts, bool dtr) override {
    rtsCleared |= rts;
    dtrCleared |= dtr;
  }
  void SendXoff() override {}
  [[nodiscard]] bool HungUp() const override { return false; }
  void Close() override { closed = true; }

  bool rtsCleared = false, dtrCleared = false, discardedWhileOpen = false, closed = false;
};

TEST(ClosePort, ClearsTheLinesThatAreOnAndThrowsAwayUnsentOutput) {
  for (auto [rts, dtr] :
       {std::pair{0, 0}, std::pair{1, 0}, std::pair{0, 1}, std::pair{1, 1}, std::pair{2, 1}}) {
    core::AppState state;
    state.Port.RTS = rts;
    state.Port.DTR = dtr;
    auto port = std::make_shared<RecordingPort>();
    state.PortHandle = port;
    state.PortOpen = true;
    ClosePort(state);
    EXPECT_EQ(port->rtsCleared, rts == 1) << rts << dtr;
    EXPECT_EQ(port->dtrCleared, dtr == 1) << rts << dtr;
    EXPECT_TRUE(port->discardedWhileOpen);
    EXPECT_TRUE(port->closed);
    EXPECT_FALSE(state.PortOpen);
  }
}

class PortOnPtyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(pty.Valid());
    state.View = &view;
    state.Port.SelectedPort = core::Utf8ToWide(pty.SlavePath());
  }
  platform::PtyPair pty;
  core::AppState state;
  testing::RecordingFrontEnd view;
};

TEST_F(PortOnPtyTest, ConfigureOpenAndClose) {
  state.Port.SelectedBaud = 9600;
  ASSERT_EQ(ConfigurePort(state), 1);
  EXPECT_TRUE(state.PortOpen);
  EXPECT_EQ(state.WriteTotalTimeoutMultiplier, 4u);
  EXPECT_EQ(state.WriteTotalTimeoutConstant, 989u);
  // Another program (or a second open) is kept out.
  platform::SysResult failure;
  EXPECT_FALSE(platform::OpenTermiosPort(pty.SlavePath(), failure));
  EXPECT_TRUE(platform::IsDeviceBusyOrGone(failure));
  ClosePort(state);
  EXPECT_FALSE(state.PortOpen);
  EXPECT_FALSE(CurrentPort(state));
  EXPECT_EQ(state.Screen.Status(), u"Port closed.");
  EXPECT_TRUE(platform::OpenTermiosPort(pty.SlavePath(), failure));
}

TEST_F(PortOnPtyTest, NothingToOpen) {
  struct Case {
    const char16_t* selected;
    int code;  // a name that stands for no device has no system code
  };
  for (const Case& c :
       {Case{u"", 0}, Case{u"COM1", 0}, Case{u"COM2:", 0}, Case{u"/dev/nonexistent-wavetrace", ENOENT}}) {
    state.Port.SelectedPort = c.selected;
    platform::SysResult failure;
    EXPECT_EQ(ConfigurePort(state, failure), 0) << core::WideToUtf8(c.selected);
    EXPECT_FALSE(failure);
    EXPECT_EQ(failure.Errno, c.code) << core::WideToUtf8(c.selected);
    EXPECT_FALSE(state.PortOpen);
  }
  EXPECT_TRUE(view.Boxes().empty());  // the caller reports these
}

TEST_F(PortOnPtyTest, ADeviceWithoutALineSettingIsNamedOnceWithTheSystemText) {
  state.Port.SelectedPort = u"/dev/null";
  EXPECT_EQ(ConfigurePort(state), 0);
  EXPECT_FALSE(state.PortOpen);
  ASSERT_EQ(view.Boxes().size(), 1u);
  std::u16string words = core::Utf8ToWide(platform::ErrorText(ENOTTY));
  EXPECT_EQ(view.Boxes()[0].text, u"ConfigurePort::GetCommState: Error code=25 (0x19) (" + words + u")");
}

TEST_F(PortOnPtyTest, ARefusedLineSettingIsReportedAndClosesThePort) {
  state.Port.DsrFlow = 1;
  EXPECT_EQ(ConfigurePort(state), 0);
  EXPECT_FALSE(state.PortOpen);
  ASSERT_EQ(view.Boxes().size(), 1u);
  EXPECT_NE(view.Boxes()[0].text.find(u"flow control by DSR is not available on Linux"),
            std::u16string::npos);
  platform::SysResult failure;
  EXPECT_TRUE(platform::OpenTermiosPort(pty.SlavePath(), failure));
}

}  // namespace
}  // namespace wavetrace::serial

namespace wavetrace::app {
namespace {

TEST(CommProperties, SlotNamesAndTheCustomRate) {
  for (int slot = 0; slot < core::kPortSlots; ++slot)
    EXPECT_EQ(core::PortSlotOfName(core::PortSlotName(slot)), slot);
  EXPECT_EQ(core::PortSlotName(3), u"COM3:");
  EXPECT_EQ(core::PortSlotName(10), u"VSP0:");
  core::PortSettings port;
  SetBaud(port, 115200);
  EXPECT_EQ(port.SelectedBaud, 115200u);
  EXPECT_EQ(port.CustomBaud_01, 0u);
  SetBaud(port, 31250);
  EXPECT_EQ(port.CustomBaud_01, 31250u);
  EXPECT_EQ(port.CustomBauds_count, 1);
  SetBaud(port, 9600);  // a standard rate leaves the custom one in its slot
  EXPECT_EQ(port.CustomBaud_01, 31250u);
}

TEST(CommProperties, PortListLines) {
  struct Case {
    int slot;
    std::u16string name;
    std::string path;
    std::u16string line;
  };
  for (const auto& c :
       {Case{10, u"Simulated device", serial::kSimulatedDevicePath,
             u"VSP0:  Simulated device  (simulated device)"},
        Case{3, u"USB Serial", "/dev/ttyUSB0", u"COM3:  USB Serial  (/dev/ttyUSB0)"},
        Case{11, u"", "/dev/pts/4", u"VSP1:  (/dev/pts/4)"}, Case{1, u"Serial", "", u"COM1:  Serial"}}) {
    EXPECT_EQ(PortListLine(c.slot, c.name, c.path), c.line) << c.path;
  }
}

TEST(CommProperties, ChangingBackToTheLoadedPortBringsItsLineSettingBack) {
  core::AppState state;
  state.Port.SelectedPort = u"COM3:";
  state.Port.SelectedBaud = 4800;
  state.Port.Parity = u"Even";
  state.Port.XON = 1;
  state.Snapshot.Port = state.Port;

  core::PortSettings edited = state.Port;
  edited.SelectedPort = u"COM5:";
  edited.SelectedBaud = 115200;
  edited.Parity = u"None";
  edited.XON = 0;
  EXPECT_EQ(ApplyPortPages(state, edited), 1);
  EXPECT_EQ(state.Port.SelectedBaud, 115200u);

  // Back on COM3: the loaded line setting returns...
  edited = state.Port;
  edited.SelectedPort = u"COM3:";
  ApplyPortPages(state, edited);
  EXPECT_EQ(state.Port.SelectedPort, u"COM3:");
  EXPECT_EQ(state.Port.SelectedBaud, 4800u);
  EXPECT_EQ(state.Port.Parity, u"Even");
  EXPECT_EQ(state.Port.XON, 1);

  // ...except what was typed on the other pages in the same visit.
  state.Port.SelectedPort = u"COM5:";
  state.Port.Parity = u"None";
  state.Port.XON = 0;
  edited = state.Port;
  edited.SelectedPort = u"COM3:";
  edited.SelectedBaud = 9600;
  edited.DTR = 1;
  ApplyPortPages(state, edited);
  EXPECT_EQ(state.Port.SelectedBaud, 9600u);
  EXPECT_EQ(state.Port.DTR, 1);
  EXPECT_EQ(state.Port.Parity, u"Even");
  EXPECT_EQ(state.Port.XON, 1);

  // Same port: what the pages hold is applied as it is.
  edited = state.Port;
  edited.SelectedBaud = 57600;
  ApplyPortPages(state, edited);
  EXPECT_EQ(state.Port.SelectedBaud, 57600u);
}

}  // namespace
}  // namespace wavetrace::app
