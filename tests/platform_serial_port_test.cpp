#include <gtest/gtest.h>
#include <termios.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/line_setting_text.h"
#include "platform/pty.h"
#include "platform/serial_port.h"
#include "platform/termios_mapping.h"

namespace wavetrace::platform {
namespace {

using namespace std::chrono_literals;

TEST(LineSettingText, ParsedAndFormatted) {
  // A text and how it is formatted again; "" for a refused text.
  using Case = std::pair<std::string, std::string>;
  for (const auto& [text, formatted] :
       {Case{"9600,7,E,1", "9600,7,E,1"}, Case{"4800,8,n,1", "4800,8,N,1"},
        Case{"300,5,M,1.5", "300,5,M,1.5"}, Case{"115200,8,S,2", "115200,8,S,2"}, Case{"9600,9,N,1", ""},
        Case{"9600,8,X,1", ""}, Case{"0,8,N,1", ""}, Case{"9600,8,N,3", ""}, Case{"9600", ""},
        Case{"", ""}}) {
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

TEST(TermiosMapping, CharacterFormatRawModeAndFlowControl) {
  struct Case {
    LineSettings settings;
    tcflag_t flags;  // size, parity and stop bits
  };
  for (const auto& c :
       {Case{{.DataBits = 8}, CS8}, Case{{.DataBits = 7, .ParityMode = Parity::kEven}, CS7 | PARENB},
        Case{{.DataBits = 7, .ParityMode = Parity::kOdd, .Stop = StopBits::kTwo},
             CS7 | PARENB | PARODD | CSTOPB},
        Case{{.DataBits = 6, .ParityMode = Parity::kMark}, CS6 | PARENB | PARODD | CMSPAR},
        Case{{.DataBits = 5, .ParityMode = Parity::kSpace, .Stop = StopBits::kOneAndHalf},
             CS5 | PARENB | CMSPAR | CSTOPB}}) {
    tcflag_t cflag = Map(c.settings).Tio.c_cflag;
    EXPECT_EQ(cflag & (CSIZE | PARENB | PARODD | CMSPAR | CSTOPB), c.flags) << c.settings.DataBits;
    EXPECT_EQ(cflag & (CREAD | CLOCAL), static_cast<tcflag_t>(CREAD | CLOCAL));
  }
  TermiosRecord r = Map(LineSettings{});
  EXPECT_EQ(r.Tio.c_iflag & (ICRNL | IXON | IXOFF | ISTRIP), 0u);
  EXPECT_EQ((r.Tio.c_oflag & OPOST) | (r.Tio.c_lflag & (ECHO | ICANON | ISIG)) | (r.Tio.c_cflag & CRTSCTS),
            0u);
  EXPECT_EQ(r.Tio.c_cc[VMIN] + r.Tio.c_cc[VTIME], 0);
  r = Map({.XonXoff = true, .CtsFlow = true});
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

// A port on a pty at a custom rate with both modem lines on, which a pty takes.
// (That a second opener is refused as busy, and reads and writes of bursts,
// are shown through the program in serial_program_test.cpp.)
class PtyPortTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(pty.Valid());
    SysResult opened;
    port = OpenTermiosPort(pty.SlavePath(), opened);
    ASSERT_TRUE(port) << opened.Errno;
    std::string error;
    ASSERT_TRUE(port->Configure({.Baud = 31250, .Rts = true, .Dtr = true}, error)) << error;
  }
  int Write(const std::string& bytes, int timeoutMs = 1000) {
    SysResult failure;
    return port->Write(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int>(bytes.size()),
                       timeoutMs, failure);
  }
  PtyPair pty;
  std::unique_ptr<SerialPort> port;
};

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
  ASSERT_EQ(Write("AT\r"), 3);
  EXPECT_TRUE(port->DrainOutput(1000));

  const std::string big(4 << 20, 'x');  // far more than a pty holds
  constexpr int kWriteTimeoutMs = 20000;
  std::atomic<int> written{-2};
  auto start = std::chrono::steady_clock::now();
  std::thread writer([&] { written = Write(big, kWriteTimeoutMs); });
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
