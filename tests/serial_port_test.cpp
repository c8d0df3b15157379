#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include "app/comm_properties.h"
#include "core/code_page.h"
#include "platform/pty.h"
#include "serial/port.h"
#include "serial/simulated_device.h"
#include "test_support.h"

namespace wavetrace::serial {
namespace {

using namespace std::string_literals;
using enum platform::Parity;
using enum platform::StopBits;

TEST(PortSettings, LineSettingFromTheSettingsTexts) {
  using Case = std::tuple<std::u16string, std::u16string, platform::Parity, platform::StopBits>;
  core::PortSettings port;
  for (const auto& [parity, stop, expectedParity, expectedStop] :
       {Case{u"None", u"1", kNone, kOne}, Case{u"Odd", u"1.5", kOdd, kOneAndHalf},
        Case{u"Even", u"2", kEven, kTwo}, Case{u"Mark", u"1", kMark, kOne},
        Case{u"Space", u"1", kSpace, kOne}, Case{u"odd", u"3", kNone, kOne}}) {
    port.Parity = parity;
    port.StopBits = stop;
    platform::LineSettings line = LineSettingsOf(port);
    EXPECT_EQ(std::pair(line.ParityMode, line.Stop), std::pair(expectedParity, expectedStop))
        << core::WideToUtf8(parity + u"," + stop);
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
  using Case = std::pair<std::u16string, std::string>;
  for (const auto& [selected, path] :
       {Case{u"COM3:", "/dev/ttyUSB0"}, Case{u"VSP0:", "/dev/sim"}, Case{u"RawIr", "/dev/ttyUSB0"},
        Case{u"/dev/ttyACM7", "/dev/ttyACM7"}, Case{u"", ""}, Case{u"COM3", ""}, Case{u"COM4:", ""},
        Case{u"XYZ1:", ""}, Case{u"COM10:", ""}}) {
    state.Port.SelectedPort = selected;
    EXPECT_EQ(ResolvePortPath(state), path) << core::WideToUtf8(selected);
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
  for (auto [rts, dtr] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}, {2, 1}}) {
    core::AppState state;
    state.Port.RTS = rts;
    state.Port.DTR = dtr;
    auto port = std::make_shared<RecordingPort>();
    state.PortHandle = port;
    state.PortOpen = true;
    ClosePort(state);
    EXPECT_EQ(std::pair(port->rtsCleared, port->dtrCleared), std::pair(rts == 1, dtr == 1)) << rts << dtr;
    EXPECT_TRUE(port->discardedWhileOpen && port->closed && !state.PortOpen);
  }
}

// Opening and closing a pty as the program's port, with the write time-outs
// of its rate (a refused rate, such as 0, never gets that far). (That the open keeps
// other openers out, and that closing lets them in again, is shown through
// PLAY and STOP in serial_program_test.cpp.)
TEST(ConfigurePort, OnAPtyWhatCannotBeOpenedAndARefusedLineSetting) {
  platform::PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  core::AppState state;
  testing::RecordingFrontEnd view;
  state.View = &view;
  state.Port.SelectedPort = core::Utf8ToWide(pty.SlavePath());
  state.Port.SelectedBaud = 300;
  ASSERT_EQ(ConfigurePort(state), 1);
  EXPECT_TRUE(state.PortOpen);
  EXPECT_EQ(std::pair(state.WriteTotalTimeoutMultiplier, state.WriteTotalTimeoutConstant),
            std::pair(97u, 2849u));
  ClosePort(state);
  EXPECT_FALSE(state.PortOpen || CurrentPort(state));
  EXPECT_EQ(state.Screen.Status(), u"Port closed.");

  // A name that stands for no device (see PortNames) has no system code; a
  // missing device fails as an open. The caller reports these.
  for (auto [selected, code] : {std::pair{u"COM2:", 0}, {u"/dev/nonexistent-wavetrace", ENOENT}}) {
    state.Port.SelectedPort = selected;
    platform::SysResult failure;
    EXPECT_EQ(ConfigurePort(state, failure), 0) << core::WideToUtf8(selected);
    EXPECT_EQ(failure.Errno, code) << core::WideToUtf8(selected);
    EXPECT_STREQ(failure.Operation, code ? platform::kOpenPortOperation : "resolve port");
    EXPECT_FALSE(state.PortOpen);
  }
  EXPECT_TRUE(view.Boxes().empty());

  // A line setting the system refuses is reported, and the port is closed again.
  state.Port.SelectedPort = core::Utf8ToWide(pty.SlavePath());
  state.Port.DsrFlow = 1;
  platform::SysResult refused;
  EXPECT_EQ(ConfigurePort(state, refused), 0);
  EXPECT_EQ(refused.Errno, 0);  // Linux's limit, not a failed call
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

using namespace std::string_literals;

TEST(CommProperties, SlotNamesTheCustomRateAndPortListLines) {
  for (int slot = 0; slot < core::kPortSlots; ++slot)
    EXPECT_EQ(core::PortSlotOfName(core::PortSlotName(slot)), slot);
  core::PortSettings port;
  SetBaud(port, 115200);
  EXPECT_EQ(std::pair(port.SelectedBaud, port.CustomBaud_01), std::pair(115200u, 0u));
  SetBaud(port, 31250);
  EXPECT_EQ(std::pair(port.CustomBaud_01, port.CustomBauds_count), std::pair(31250u, 1));
  SetBaud(port, 9600);  // a standard rate leaves the custom one in its slot
  EXPECT_EQ(port.CustomBaud_01, 31250u);
  // Lines with a name and a device path are shown in qt/comm_properties_test.cpp.
  EXPECT_EQ(PortListLine(10, u"Simulated device", serial::kSimulatedDevicePath),
            u"VSP0:  Simulated device  (simulated device)");
  EXPECT_EQ(PortListLine(11, u"", "/dev/pts/4"), u"VSP1:  (/dev/pts/4)");
}

TEST(CommProperties, ChangingBackToTheLoadedPortBringsItsLineSettingBack) {
  core::AppState state;
  core::PortSettings& p = state.Port;
  p.SelectedPort = u"COM3:";
  p.SelectedBaud = 4800;
  p.Parity = u"Even";
  p.XON = 1;
  state.Snapshot.Port = p;
  // The pages as they stand with a port and a rate chosen and other changes made.
  auto apply = [&](const char16_t* port, uint32_t baud,
                   const std::function<void(core::PortSettings&)>& more = {}) {
    core::PortSettings edited = p;
    edited.SelectedPort = port;
    edited.SelectedBaud = baud;
    if (more) more(edited);
    ApplyPortPages(state, edited);
  };
  apply(u"COM5:", 115200, [](core::PortSettings& e) { e.Parity = u"None", e.XON = 0; });
  EXPECT_EQ(std::tuple(p.SelectedBaud, p.Parity, p.XON), std::tuple(115200u, u"None"s, 0));
  // Back on COM3: the loaded line setting returns, except what was typed on
  // the pages in the same visit (the rate and DTR).
  apply(u"COM3:", 9600, [](core::PortSettings& e) { e.DTR = 1; });
  EXPECT_EQ(std::tuple(p.SelectedBaud, p.DTR, p.Parity, p.XON), std::tuple(9600u, 1, u"Even"s, 1));
  // Same port: what the pages hold is applied as it is.
  apply(u"COM3:", 57600);
  EXPECT_EQ(p.SelectedBaud, 57600u);
}

}  // namespace
}  // namespace wavetrace::app
