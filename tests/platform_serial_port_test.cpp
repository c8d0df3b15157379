#include <gtest/gtest.h>
#include <termios.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/line_setting_text.h"
#include "platform/pty.h"
#include "platform/serial_port.h"
#include "platform/termios_mapping.h"

namespace wavetrace::platform {
namespace {

using namespace std::chrono_literals;

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

TEST(LineSettingText, ParsedAndFormatted) {
  struct Case {
    std::string text;
    bool valid;
    std::string formatted;
  };
  for (const auto& c :
       {Case{"9600,7,E,1", true, "9600,7,E,1"}, Case{"4800,8,n,1", true, "4800,8,N,1"},
        Case{"300,5,M,1.5", true, "300,5,M,1.5"}, Case{"115200,8,S,2", true, "115200,8,S,2"},
        Case{"9600,9,N,1", false, ""}, Case{"9600,8,X,1", false, ""}, Case{"0,8,N,1", false, ""},
        Case{"9600,8,N,3", false, ""}, Case{"9600", false, ""}, Case{"", false, ""}}) {
    LineSettings line;
    EXPECT_EQ(ParseLineSetting(c.text, line), c.valid) << c.text;
    if (c.valid) {
      EXPECT_EQ(FormatLineSetting(line), c.formatted) << c.text;
    }
  }
}

TEST(TermiosMapping, CharacterFormat) {
  struct Case {
    LineSettings settings;
    tcflag_t size, parityFlags;
    bool cstopb;
  };
  for (const auto& c :
       {Case{{.DataBits = 8}, CS8, 0, false},
        Case{{.DataBits = 7, .ParityMode = Parity::kEven}, CS7, PARENB, false},
        Case{{.DataBits = 7, .ParityMode = Parity::kOdd, .Stop = StopBits::kTwo}, CS7, PARENB | PARODD, true},
        Case{{.DataBits = 6, .ParityMode = Parity::kMark}, CS6, PARENB | PARODD | CMSPAR, false},
        Case{{.DataBits = 5, .ParityMode = Parity::kSpace, .Stop = StopBits::kOneAndHalf},
             CS5,
             PARENB | CMSPAR,
             true},
        Case{{.DataBits = 8, .Stop = StopBits::kTwo}, CS8, 0, true}}) {
    tcflag_t cflag = Map(c.settings).Tio.c_cflag;
    EXPECT_EQ(cflag & CSIZE, c.size) << c.settings.DataBits;
    EXPECT_EQ(cflag & (PARENB | PARODD | CMSPAR), c.parityFlags) << static_cast<int>(c.settings.ParityMode);
    EXPECT_EQ((cflag & CSTOPB) != 0, c.cstopb) << static_cast<int>(c.settings.Stop);
    EXPECT_EQ(cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  }
}

TEST(TermiosMapping, RawModeAndFlowControl) {
  TermiosRecord r = Map(LineSettings{});
  EXPECT_EQ(r.Tio.c_iflag & (ICRNL | IXON | IXOFF | ISTRIP), 0u);
  EXPECT_EQ(r.Tio.c_oflag & OPOST, 0u);
  EXPECT_EQ(r.Tio.c_lflag & (ECHO | ICANON | ISIG), 0u);
  EXPECT_EQ(r.Tio.c_cflag & CRTSCTS, 0u);
  EXPECT_EQ(r.Tio.c_cc[VMIN] + r.Tio.c_cc[VTIME], 0);
  r = Map({.XonXoff = true, .CtsFlow = true});
  EXPECT_EQ(r.Tio.c_iflag & (IXON | IXOFF), static_cast<tcflag_t>(IXON | IXOFF));
  EXPECT_NE(r.Tio.c_cflag & CRTSCTS, 0u);
  EXPECT_EQ(r.Tio.c_cc[VSTART], 17);
  EXPECT_EQ(r.Tio.c_cc[VSTOP], 19);
}

TEST(TermiosMapping, StandardAndCustomRates) {
  struct Case {
    uint32_t baud;
    speed_t speed;
  };
  for (const auto& c :
       {Case{50, B50}, Case{9600, B9600}, Case{115200, B115200}, Case{921600, B921600},
        Case{4000000, B4000000}, Case{7200, 0}, Case{14400, 0}, Case{31250, 0}, Case{250000, 0}}) {
    TermiosRecord r = Map({.Baud = c.baud});
    EXPECT_EQ(r.StandardSpeed, c.speed) << c.baud;
    EXPECT_EQ(r.Custom, c.speed == 0) << c.baud;
    EXPECT_EQ(r.Rate, c.baud);
    EXPECT_TRUE(c.speed == 0 || cfgetospeed(&r.Tio) == c.speed) << c.baud;
  }
}

TEST(TermiosMapping, ImpossibleRequestsAreRefusedInWords) {
  struct Case {
    LineSettings settings;
    std::string text;
  };
  for (const auto& c : {Case{{.Baud = 0}, "0 baud"}, Case{{.DataBits = 9}, "9 data bits"},
                        Case{{.DataBits = 4}, "4 data bits"},
                        Case{{.DsrFlow = true}, "flow control by DSR is not available on Linux"}}) {
    TermiosRecord record;
    EXPECT_NE(MakeTermios(c.settings, termios{}, record).find(c.text), std::string::npos) << c.text;
  }
}

class PtyPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(pty.Valid());
    SysResult opened;
    port = OpenTermiosPort(pty.SlavePath(), opened);
    ASSERT_TRUE(port) << opened.Errno;
    std::string error;
    ASSERT_TRUE(port->Configure({.Baud = 115200}, error)) << error;
  }
  PtyPair pty;
  std::unique_ptr<SerialPort> port;
};

TEST_F(PtyPortTest, ASecondOpenerIsRefusedAsBusy) {
  SysResult failure;
  EXPECT_FALSE(OpenTermiosPort(pty.SlavePath(), failure));
  EXPECT_TRUE(IsDeviceBusyOrGone(failure)) << failure.Errno << " " << failure.Operation;
  port.reset();
  EXPECT_TRUE(OpenTermiosPort(pty.SlavePath(), failure));
  EXPECT_TRUE(failure);
}

TEST_F(PtyPortTest, CustomRatesAndModemLinesAreAcceptedOnAPty) {
  std::string error;
  LineSettings custom{.Baud = 31250, .Rts = true, .Dtr = true};
  EXPECT_TRUE(port->Configure(custom, error)) << error;
  custom.DsrFlow = true;
  SysResult refused = port->Configure(custom, error);
  EXPECT_FALSE(refused);
  EXPECT_EQ(refused.Errno, 0);  // Linux's limit, not a failed call
  EXPECT_NE(error.find("DSR"), std::string::npos);
}

TEST_F(PtyPortTest, EventsBurstsAndWrites) {
  std::string burst;
  for (int i = 0; i < 20000; ++i) burst += static_cast<char>(i * 7 % 251);
  std::thread device([&] { pty.Write(burst); });
  std::string received;
  uint8_t buffer[8192];
  while (received.size() < burst.size()) {
    ASSERT_EQ(port->WaitEvent(), event::kRxChar);
    SysResult failure;
    int n = port->Read(buffer, sizeof buffer, failure);
    ASSERT_GE(n, 0);
    received.append(reinterpret_cast<char*>(buffer), static_cast<size_t>(n));
  }
  device.join();
  EXPECT_EQ(received, burst);

  const std::string reply = "AT\r\x00\xff";
  SysResult failure;
  EXPECT_EQ(port->Write(reinterpret_cast<const uint8_t*>(reply.data()), static_cast<int>(reply.size()), 1000,
                        failure),
            static_cast<int>(reply.size()));
  EXPECT_EQ(pty.Read(reply.size(), 2000), reply);
}

TEST_F(PtyPortTest, AZeroMaskOrTheDeviceGoingAwayEndsAPendingWait) {
  for (bool deviceGoes : {false, true}) {
    std::atomic<uint32_t> result{999};
    std::thread waiter([&] { result = port->WaitEvent(); });
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(result, 999u);
    deviceGoes ? pty.CloseMaster() : port->SetEventMask(0);
    waiter.join();
    EXPECT_EQ(result, 0u);
    EXPECT_EQ(port->HungUp(), deviceGoes);
    port->SetEventMask(event::kDefaultMask);
  }
  // Later waits return at once instead of spinning on the dead device.
  EXPECT_EQ(port->WaitEvent(), 0u);
}

// A pty has no output queue that drains at a line rate (TIOCOUTQ reads 0,
// TCOFLUSH does not reach bytes already at the far side, and its close never
// waits for the line), so pacing and throwing output away are shown on the
// simulated device. What a pty does show: a write held up by a far side that
// does not read ends when the port closes, so a close never waits for it.
TEST_F(PtyPortTest, AClosingPortEndsAHeldWriteAndDrainsReturnAtOnce) {
  const std::string small = "AT\r";
  SysResult failure;
  ASSERT_EQ(port->Write(reinterpret_cast<const uint8_t*>(small.data()), 3, 1000, failure), 3);
  EXPECT_TRUE(port->DrainOutput(1000));
  EXPECT_EQ(pty.Read(3, 2000), small);

  const std::string big(4 << 20, 'x');  // far more than a pty holds
  constexpr int kWriteTimeoutMs = 20000;
  std::atomic<int> written{-2};
  auto start = std::chrono::steady_clock::now();
  std::thread writer([&] {
    SysResult writeFailure;
    written = port->Write(reinterpret_cast<const uint8_t*>(big.data()), static_cast<int>(big.size()),
                          kWriteTimeoutMs, writeFailure);
  });
  std::this_thread::sleep_for(100ms);
  port->Close();
  writer.join();
  auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GT(written, 0);
  EXPECT_LT(written, static_cast<int>(big.size()));
  EXPECT_LT(took, std::chrono::milliseconds(kWriteTimeoutMs / 2));
  EXPECT_FALSE(port->DrainOutput(1000));
}

TEST(TermiosPort, MissingDevicesAndNonTerminals) {
  SysResult failure;
  EXPECT_FALSE(OpenTermiosPort("/dev/does-not-exist-wavetrace", failure));
  EXPECT_EQ(failure.Errno, ENOENT);
  EXPECT_STREQ(failure.Operation, kOpenPortOperation);
  auto notATerminal = OpenTermiosPort("/dev/null", failure);
  ASSERT_TRUE(notATerminal);
  std::string refusal = "stale";
  // Reading the line setting fails with the system's code and no words.
  failure = notATerminal->Configure(LineSettings{}, refusal);
  EXPECT_EQ(failure.Errno, ENOTTY);
  EXPECT_TRUE(refusal.empty());
}

}  // namespace
}  // namespace wavetrace::platform
