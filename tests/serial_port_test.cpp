// The ports the program opens: the termios mapping and a pty port
// (platform), the simulated device with its UART model, and the serial layer
// over them (line settings, names, opening and closing).
#include <gtest/gtest.h>
#include <termios.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <thread>

#include "app/comm_properties.h"
#include "core/code_page.h"
#include "platform/line_setting_text.h"
#include "platform/pty.h"
#include "platform/serial_port.h"
#include "platform/termios_mapping.h"
#include "serial/port.h"
#include "serial/simulated_device.h"
#include "serial/uart_model.h"
#include "test_support.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using enum wavetrace::platform::StopBits;

namespace wavetrace::platform {
namespace {

TEST(LineSettingText, ParsedAndFormatted) {
  // A text and how it is formatted again; "" for a refused text.
  using Case = std::pair<std::string, std::string>;
  for (const auto& [text, formatted] :
       {Case{"9600,7,E,1", "9600,7,E,1"}, Case{"4800,8,n,1", "4800,8,N,1"},
        Case{"300,5,M,1.5", "300,5,M,1.5"}, Case{"115200,8,S,2", "115200,8,S,2"}, Case{"9600,9,N,1", ""},
        Case{"9600,8,X,1", ""}, Case{"0,8,N,1", ""}, Case{"9600,8,N,3", ""}, Case{"9600", ""}}) {
    LineSettings line;
    EXPECT_EQ(ParseLineSetting(text, line) ? FormatLineSetting(line) : "", formatted) << text;
  }
}

// The record for a line setting over a terminal in cooked mode.
TermiosRecord Map(const LineSettings& settings) {
  termios current{};
  current.c_iflag = ICRNL | IXON | ISTRIP;
  current.c_oflag = OPOST | ONLCR;
  current.c_lflag = ECHO | ICANON | ISIG;
  current.c_cflag = CS7 | PARENB | CSTOPB | HUPCL;
  TermiosRecord record;
  EXPECT_EQ(MakeTermios(settings, current, record), "");
  return record;
}

TEST(TermiosMapping, TheSettingsTextsMakeTheCharacterFormatInRawModeWithFlowControl) {
  // Data bits, the parity and stop bits texts (others read as None and 1), the stop bits and flags they make.
  using Case = std::tuple<uint8_t, std::u16string, std::u16string, StopBits, tcflag_t>;
  core::PortSettings port;
  for (const auto& [bits, parity, stop, stopBits, flags] :
       {Case{8, u"None", u"1", kOne, CS8}, Case{7, u"Even", u"1", kOne, CS7 | PARENB},
        Case{7, u"Odd", u"2", kTwo, CS7 | PARENB | PARODD | CSTOPB},
        Case{6, u"Mark", u"1", kOne, CS6 | PARENB | PARODD | CMSPAR},
        Case{5, u"Space", u"1.5", kOneAndHalf, CS5 | PARENB | CMSPAR | CSTOPB},
        Case{8, u"odd", u"3", kOne, CS8}}) {
    port.SelectedDataBits = bits;
    port.Parity = parity;
    port.StopBits = stop;
    const LineSettings line = serial::LineSettingsOf(port);
    const tcflag_t cflag = Map(line).Tio.c_cflag;
    EXPECT_EQ(std::pair(line.Stop, cflag & (CSIZE | PARENB | PARODD | CMSPAR | CSTOPB)),
              std::pair(stopBits, flags))
        << core::WideToUtf8(parity + u"," + stop);
    EXPECT_EQ(cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  }
  TermiosRecord r = Map(LineSettings{});
  EXPECT_EQ(r.Tio.c_iflag & (ICRNL | IXON | IXOFF | ISTRIP), 0u);
  EXPECT_EQ((r.Tio.c_oflag & OPOST) | (r.Tio.c_lflag & (ECHO | ICANON | ISIG)) | (r.Tio.c_cflag & CRTSCTS),
            0u);
  EXPECT_EQ(r.Tio.c_cc[VMIN] + r.Tio.c_cc[VTIME], 0);
  port.XON = port.CtsFlow = 1;
  port.RTS = 2;  // only 1 means on
  EXPECT_FALSE(serial::LineSettingsOf(port).Rts);
  r = Map(serial::LineSettingsOf(port));
  EXPECT_EQ(r.Tio.c_iflag & (IXON | IXOFF), static_cast<tcflag_t>(IXON | IXOFF));
  EXPECT_NE(r.Tio.c_cflag & CRTSCTS, 0u);
  EXPECT_EQ(std::pair(r.Tio.c_cc[VSTART], r.Tio.c_cc[VSTOP]), std::pair(cc_t{17}, cc_t{19}));
}

TEST(TermiosMapping, StandardAndCustomRatesAndImpossibleRequests) {
  // A rate without a Bxxx constant (speed 0) is set as a custom rate.
  using Rate = std::pair<uint32_t, speed_t>;
  for (auto [baud, speed] :
       {Rate{50, B50}, Rate{9600, B9600}, Rate{4000000, B4000000}, Rate{7200, 0}, Rate{31250, 0}}) {
    TermiosRecord r = Map({.Baud = baud});
    EXPECT_EQ(std::tuple(r.StandardSpeed, r.Custom, r.Rate), std::tuple(speed, speed == 0, baud)) << baud;
    EXPECT_TRUE(speed == 0 || cfgetospeed(&r.Tio) == speed) << baud;
  }
  // Requests that cannot be met are refused in words (DSR flow: ConfigurePort's test).
  using Refusal = std::pair<LineSettings, std::string>;
  for (const auto& [settings, text] :
       {Refusal{{.Baud = 0}, "0 baud"}, Refusal{{.DataBits = 9}, "9 data bits"},
        Refusal{{.DataBits = 4}, "4 data bits"}}) {
    TermiosRecord record;
    EXPECT_NE(MakeTermios(settings, termios{}, record).find(text), std::string::npos) << text;
  }
}

// A pty has no output queue that drains at a line rate (TIOCOUTQ reads 0,
// TCOFLUSH does not reach bytes already at the far side, and its close never
// waits for the line), so pacing and throwing output away are shown on the
// simulated device. What a pty does show, on a port at a custom rate with both
// modem lines on (which a pty takes): a write held up by a far side that does
// not read ends when the port closes, so a close never waits for it. (That a
// second opener is refused as busy, reads and writes of bursts, and that STOP
// or the device going away ends the receive thread's wait, are shown through
// the program in serial_program_test.cpp.)
TEST(PtyPort, AClosingPortEndsAHeldWriteAndDrainsReturnAtOnce) {
  PtyPair pty;
  ASSERT_TRUE(pty.Valid());
  SysResult opened;
  std::unique_ptr<SerialPort> port = OpenTermiosPort(pty.SlavePath(), opened);
  ASSERT_TRUE(port) << opened.Errno;
  std::string error;
  ASSERT_TRUE(port->Configure({.Baud = 31250, .Rts = true, .Dtr = true}, error)) << error;
  auto write = [&](const std::string& bytes, int timeoutMs) {
    SysResult failure;
    return port->Write(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int>(bytes.size()),
                       timeoutMs, failure);
  };
  ASSERT_EQ(write("AT\r", 1000), 3);
  EXPECT_TRUE(port->DrainOutput(1000));

  const std::string big(4 << 20, 'x');  // far more than a pty holds
  constexpr int kWriteTimeoutMs = 20000;
  std::atomic<int> written{-2};
  auto start = std::chrono::steady_clock::now();
  std::thread writer([&] { written = write(big, kWriteTimeoutMs); });
  std::this_thread::sleep_for(100ms);
  port->Close();
  writer.join();
  EXPECT_GT(written, 0);
  EXPECT_LT(written, static_cast<int>(big.size()));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kWriteTimeoutMs / 2));
  EXPECT_FALSE(port->DrainOutput(1000));
}

}  // namespace
}  // namespace wavetrace::platform

namespace wavetrace::serial {
namespace {

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

platform::LineSettings Line(const std::string& text) {
  platform::LineSettings line;
  EXPECT_TRUE(platform::ParseLineSetting(text, line)) << text;
  return line;
}

TEST(UartModel, MatchingSettingsPassBytesAndMismatchesGarbleThem) {
  const std::string text = SimulatedSentences(0);
  const platform::LineSettings device = Line("4800,8,N,1");
  // Equal settings read the sentences as sent:
  // SimulatedPortTest.ReadExactlyWithItsSettingEchoesAndAFileIsPacedByTheLine. A slower rate, fewer data
  // bits, a parity and more stop bits garble them; a faster rate: at the end.
  for (const char* receiver : {"2400,8,N,1", "4800,7,N,1", "4800,8,E,1", "4800,8,N,2"})
    EXPECT_NE(TranscodeUart(text, device, Line(receiver)), text) << receiver;
  // Other framings carry their own bytes, as many bits of each as the line has.
  for (auto [setting, expected] : {std::pair{"4800,5,O,1", "\x1F\x01\x14"}, {"4800,8,E,2", "\xFF\xC1\x54"}})
    EXPECT_EQ(TranscodeUart("\xFF\xC1\x54", Line(setting), Line(setting)), expected) << setting;
  // A receiver twice as fast sees each frame as a byte and a bit more (so it garbles too).
  EXPECT_GT(TranscodeUart(text, device, Line("9600,8,N,1")).size(), text.size());
}

// The device plays a UART's transmit side too: what the program writes waits
// in an output queue and reaches the device at the line rate.
TEST(SimulatedDevice, OutputLeavesAtTheLineRateAndCanBeThrownAway) {
  core::SimulatedProfile profile;  // 4800,8,N,1: about 2 ms a byte
  profile.SimulatedSentenceMs = 600000;
  auto port = OpenSimulatedDevice(profile);
  std::string error;
  ASSERT_TRUE(port->Configure(profile.SimulatedSetting, error).Ok()) << error;
  // A second of line time: "AT", 478 bytes and a CR. Queued at once, and still on its way; thrown away,
  // it never reaches the device: no answer comes. (Left alone, it arrives whole once the line has
  // carried it: SimulatedPortTest.ReadExactlyWithItsSettingEchoesAndAFileIsPacedByTheLine.)
  const std::string command = "AT" + std::string(478, 'x') + "\r";
  platform::SysResult failure;
  ASSERT_EQ(port->Write(reinterpret_cast<const uint8_t*>(command.data()), 481, 1000, failure), 481);
  EXPECT_FALSE(port->DrainOutput(50));
  port->DiscardOutput();
  EXPECT_TRUE(port->DrainOutput(0));
  std::this_thread::sleep_for(1500ms);
  std::string read(4096, '\0');
  read.resize(static_cast<size_t>(port->Read(reinterpret_cast<uint8_t*>(read.data()), 4096, failure)));
  EXPECT_EQ(read.find("OK"), std::string::npos);
  port->Close();
  EXPECT_FALSE(port->DrainOutput(0));
}

TEST(SimulatedDevice, SentencesCarryTheirChecksums) {
  std::string sentences = SimulatedSentences(61);
  EXPECT_EQ(sentences.rfind("$GPGGA,120101.00,", 0), 0u);
  for (size_t start = 0, star; start < sentences.size(); start = sentences.find("\r\n", star) + 2) {
    star = sentences.find('*', start);
    unsigned sum = 0;
    for (size_t i = start + 1; i < star; ++i) sum ^= static_cast<unsigned char>(sentences[i]);
    EXPECT_EQ(std::stoul(sentences.substr(star + 1, 2), nullptr, 16), sum);
  }
}

}  // namespace
}  // namespace wavetrace::serial

namespace wavetrace::app {
namespace {

TEST(CommProperties, SlotNamesTheCustomRateAndPortListLines) {
  for (int slot = 0; slot < core::kPortSlots; ++slot)
    EXPECT_EQ(core::PortSlotOfName(core::PortSlotName(slot)), slot);
  core::PortSettings port;
  SetBaud(port, 31250);
  EXPECT_EQ(std::pair(port.CustomBaud_01, port.CustomBauds_count), std::pair(31250u, 1));
  SetBaud(port, 9600);  // a standard rate leaves the custom one in its slot
  EXPECT_EQ(std::pair(port.SelectedBaud, port.CustomBaud_01), std::pair(9600u, 31250u));
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
  // the pages in the same visit (DTR; the rate is left as shown).
  apply(u"COM3:", 115200, [](core::PortSettings& e) { e.DTR = 1; });
  EXPECT_EQ(std::tuple(p.SelectedBaud, p.DTR, p.Parity, p.XON), std::tuple(4800u, 1, u"Even"s, 1));
  // Same port: what the pages hold is applied as it is.
  apply(u"COM3:", 57600);
  EXPECT_EQ(p.SelectedBaud, 57600u);
}

}  // namespace
}  // namespace wavetrace::app
