#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/line_setting_text.h"
#include "serial/simulated_device.h"
#include "serial/uart_model.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;

platform::LineSettings Line(const std::string& text) {
  platform::LineSettings line;
  EXPECT_TRUE(platform::ParseLineSetting(text, line)) << text;
  return line;
}

TEST(UartModel, MatchingSettingsPassBytesAndMismatchesGarbleThem) {
  const std::string text = SimulatedSentences(0);
  const platform::LineSettings device = Line("4800,8,N,1");
  // Equal settings read the sentences as sent: SimulatedPortTest.ReadExactlyWithItsSettingAndEchoes.
  // 7,E,1 gives parity errors on some characters; another rate: at the end.
  for (const char* receiver :
       {"2400,8,N,1", "4800,7,N,1", "4800,8,E,1", "4800,8,O,1", "4800,8,N,2", "4800,7,E,1"}) {
    std::string read = TranscodeUart(text, device, Line(receiver));
    EXPECT_NE(read, text) << receiver;
    EXPECT_EQ(read, TranscodeUart(text, device, Line(receiver))) << receiver << ": not deterministic";
  }
  // Other framings carry their own bytes, as many bits of each as the line has.
  EXPECT_EQ(TranscodeUart("AT\r", Line("1200,7,E,2"), Line("1200,7,E,2")), "AT\r");
  using Bits = std::pair<const char*, const char*>;
  for (auto [bits, expected] : {Bits{"5", "\x1F\x01\x14"}, Bits{"6", "\x3F\x01\x14"},
                                Bits{"7", "\x7F\x41\x54"}, Bits{"8", "\xFF\xC1\x54"}}) {
    for (const char* parity : {",N,1", ",O,1"}) {
      const platform::LineSettings narrow = Line("4800," + std::string(bits) + parity);
      EXPECT_EQ(TranscodeUart("\xFF\xC1\x54", narrow, narrow), expected) << bits << parity;
    }
  }
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
  // A second of line time: "AT", 478 bytes and a CR.
  const std::string command = "AT" + std::string(478, 'x') + "\r";
  platform::SysResult failure;
  auto write = [&] {
    return port->Write(reinterpret_cast<const uint8_t*>(command.data()), 481, 1000, failure);
  };
  auto readFor = [&](std::chrono::milliseconds span) {
    std::string text;
    uint8_t buffer[512];
    for (auto end = std::chrono::steady_clock::now() + span; std::chrono::steady_clock::now() < end;) {
      text.append(reinterpret_cast<char*>(buffer),
                  static_cast<size_t>(std::max(port->Read(buffer, 512, failure), 0)));
      std::this_thread::sleep_for(10ms);
    }
    return text;
  };
  // Queued at once, and still on its way; thrown away, it never reaches the device: no answer comes.
  ASSERT_EQ(write(), 481);
  EXPECT_FALSE(port->DrainOutput(50));
  port->DiscardOutput();
  EXPECT_TRUE(port->DrainOutput(0));
  EXPECT_EQ(readFor(1500ms).find("OK"), std::string::npos);
  // Left alone, it arrives whole once the line has carried it.
  ASSERT_EQ(write(), 481);
  EXPECT_TRUE(port->DrainOutput(5000));
  EXPECT_NE(readFor(300ms).find("OK\r\n"), std::string::npos);
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
