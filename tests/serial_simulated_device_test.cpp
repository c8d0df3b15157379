#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/line_setting_text.h"
#include "program_fixture.h"
#include "serial/port.h"
#include "serial/simulated_device.h"
#include "serial/uart_model.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;
using platform::LineSettings;
using platform::Parity;
using platform::StopBits;

LineSettings Line(uint32_t baud, int bits, Parity parity, StopBits stop) {
  LineSettings line;
  line.Baud = baud;
  line.DataBits = bits;
  line.ParityMode = parity;
  line.Stop = stop;
  return line;
}

TEST(UartModel, MatchingSettingsPassBytesAndMismatchesGarbleThem) {
  const std::string text = SimulatedSentences(0);
  const LineSettings device = Line(4800, 8, Parity::kNone, StopBits::kOne);
  struct Case {
    LineSettings receiver;
    bool garbled;
  };
  const Case cases[] = {
      {device, false},
      {Line(9600, 8, Parity::kNone, StopBits::kOne), true},
      {Line(2400, 8, Parity::kNone, StopBits::kOne), true},
      {Line(4800, 7, Parity::kNone, StopBits::kOne), true},
      {Line(4800, 8, Parity::kEven, StopBits::kOne), true},
      {Line(4800, 8, Parity::kOdd, StopBits::kOne), true},
      {Line(4800, 8, Parity::kNone, StopBits::kTwo), true},
      {Line(4800, 7, Parity::kEven, StopBits::kOne), true},  // parity errors on some characters
  };
  for (const auto& c : cases) {
    std::string read = TranscodeUart(text, device, c.receiver);
    EXPECT_EQ(read != text, c.garbled) << platform::FormatLineSetting(c.receiver);
    EXPECT_EQ(read, TranscodeUart(text, device, c.receiver)) << "deterministic";
  }
  // Other framings carry their own bytes, as many bits of each as the line has.
  const LineSettings sevenEven = Line(1200, 7, Parity::kEven, StopBits::kTwo);
  EXPECT_EQ(TranscodeUart("AT\r", sevenEven, sevenEven), "AT\r");
  for (auto [bits, expected] : {std::pair{5, "\x1F\x01\x14"}, std::pair{6, "\x3F\x01\x14"},
                                std::pair{7, "\x7F\x41\x54"}, std::pair{8, "\xFF\xC1\x54"}}) {
    for (auto parity : {Parity::kNone, Parity::kOdd}) {
      const LineSettings narrow = Line(4800, bits, parity, StopBits::kOne);
      EXPECT_EQ(TranscodeUart("\xFF\xC1\x54", narrow, narrow), expected) << bits;
    }
  }
  // A receiver twice as fast sees each frame as a byte and a bit more.
  EXPECT_GT(TranscodeUart(text, device, Line(9600, 8, Parity::kNone, StopBits::kOne)).size(), text.size());
}

// The device plays a UART's transmit side too: what the program writes waits
// in an output queue and reaches the device at the line rate.
TEST(SimulatedDevice, OutputLeavesAtTheLineRateAndCanBeThrownAway) {
  core::SimulatedProfile profile;  // 4800,8,N,1: about 2 ms a byte
  profile.SimulatedSentenceMs = 600000;
  auto port = OpenSimulatedDevice(profile);
  std::string error;
  ASSERT_TRUE(port->Configure(profile.SimulatedSetting, error).Ok()) << error;
  auto write = [&](const std::string& bytes) {
    platform::SysResult failure;
    return port->Write(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<int>(bytes.size()), 1000,
                       failure);
  };
  auto readFor = [&](std::chrono::milliseconds span) {
    std::string text;
    uint8_t buffer[512];
    for (auto end = std::chrono::steady_clock::now() + span; std::chrono::steady_clock::now() < end;) {
      platform::SysResult failure;
      int n = port->Read(buffer, sizeof buffer, failure);
      text.append(reinterpret_cast<char*>(buffer), static_cast<size_t>(std::max(n, 0)));
      std::this_thread::sleep_for(10ms);
    }
    return text;
  };

  // A second of line time is queued at once, and is still on its way.
  const std::string command = "AT" + std::string(478, 'x') + "\r";
  ASSERT_EQ(write(command), static_cast<int>(command.size()));
  EXPECT_FALSE(port->DrainOutput(50));
  // Thrown away, it never reaches the device: no answer comes.
  port->DiscardOutput();
  EXPECT_TRUE(port->DrainOutput(0));
  EXPECT_EQ(readFor(1500ms).find("OK"), std::string::npos);

  // Left alone, it arrives whole once the line has carried it.
  ASSERT_EQ(write(command), static_cast<int>(command.size()));
  EXPECT_TRUE(port->DrainOutput(5000));
  EXPECT_NE(readFor(300ms).find("OK\r\n"), std::string::npos);
  port->Close();
  EXPECT_FALSE(port->DrainOutput(0));
}

TEST(SimulatedDevice, SentencesCarryTheirChecksums) {
  std::string sentences = SimulatedSentences(61);
  EXPECT_EQ(sentences.rfind("$GPGGA,120101.00,", 0), 0u);
  for (size_t start = 0; start < sentences.size();) {
    size_t star = sentences.find('*', start);
    unsigned sum = 0;
    for (size_t i = start + 1; i < star; ++i) sum ^= static_cast<unsigned char>(sentences[i]);
    EXPECT_EQ(std::stoul(sentences.substr(star + 1, 2), nullptr, 16), sum);
    start = sentences.find("\r\n", star) + 2;
  }
}

class SimulatedPortTest : public testing::ProgramFixture {
 protected:
  // Sentences five times a second keep the tests short.
  [[nodiscard]] std::string ExtraRegistry() const override { return "SimulatedSentenceMs=dword:000000c8\n"; }
  bool Play(uint32_t baud, int bits, const char16_t* parity, const char16_t* stop) {
    state.Port.SelectedPort = u"VSP0:";
    state.Port.SelectedBaud = baud;
    state.Port.SelectedDataBits = static_cast<uint8_t>(bits);
    state.Port.Parity = parity;
    state.Port.StopBits = stop;
    state.Screen.RxClear();
    state.Queue.SendCommand(core::cmd::kPlay);
    return PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kStop); });
  }
  bool Stop() {
    state.Queue.SendCommand(core::cmd::kStop);
    return PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kPlay) && !state.PortOpen; });
  }
};

TEST_F(SimulatedPortTest, FoundByDiscoveryAndReadExactlyWithItsSetting) {
  EXPECT_EQ(state.Port.PortPresent[10], 1);
  EXPECT_EQ(state.Port.FriendlyName[10], u"Simulated device");
  EXPECT_EQ(state.Simulated.SimulatedSentenceMs, 200);
  ASSERT_TRUE(Play(4800, 8, u"None", u"1"));
  std::u16string expected = core::BytesToWide(SimulatedSentences(0) + SimulatedSentences(1));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= expected.size(); }));
  EXPECT_EQ(state.Screen.RxText().substr(0, expected.size()), expected);

  // It answers AT commands sent through the transmit path.
  state.Screen.SetTxText(u"AT[0D]");
  state.Queue.SendCommand(core::cmd::kSend);
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"OK\r\n") != std::u16string::npos; }));
  state.Screen.SetTxText(u"hello[0D]");
  state.Queue.SendCommand(core::cmd::kSend);
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"hello\r\n") != std::u16string::npos; }));
}

TEST_F(SimulatedPortTest, AFileIsPacedByTheLine) {
  ASSERT_TRUE(Play(4800, 8, u"None", u"1"));
  // Five chunks of 96 bytes: a second of line time at 4800 baud, where
  // writing them takes a quarter of that.
  std::string text;
  for (int i = 0; i < 48; ++i) text += "ATI" + std::to_string(100000 + i) + "\r";
  const std::string path = folder.Path() + "/commands.txt";
  std::ofstream(path, std::ios::binary) << text;
  state.Screen.SetTxText(u"[File::" + core::Utf8ToWide(path) + u"]");
  state.Queue.SendCommand(core::cmd::kSend);
  ASSERT_TRUE(PumpUntil([&] { return !state.TxActive && state.Screen.TxEnabled(); }));
  // The transfer ended only once the line had carried the file.
  EXPECT_TRUE(CurrentPort(state)->DrainOutput(0));
  auto answers = [&] {
    std::u16string rx = state.Screen.RxText();
    size_t count = 0;
    for (size_t at = rx.find(u"OK\r\n"); at != std::u16string::npos; at = rx.find(u"OK\r\n", at + 1)) ++count;
    return count;
  };
  EXPECT_TRUE(PumpUntil([&] { return answers() == 48; }));
}

TEST_F(SimulatedPortTest, SurvivesManyOpensAndClosesAndAnExitWhileOpen) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(Play(4800, 8, u"None", u"1")) << i;
    ASSERT_TRUE(Stop()) << i;
  }
  // Another line setting reads garbage; the hex view shows every byte, zeros
  // included (text would stop at them).
  state.Queue.SendCommand(core::cmd::kBinaryButton);
  ASSERT_TRUE(Play(9600, 8, u"None", u"1"));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= 600; }));
  EXPECT_EQ(state.Screen.RxText().find(u"[24][47][50][47][47][41]"), std::u16string::npos);  // "$GPGGA"
}

}  // namespace
}  // namespace wavetrace::serial
