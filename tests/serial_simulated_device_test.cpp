#include <gtest/gtest.h>

#include <fstream>

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
namespace cmd = core::cmd;

platform::LineSettings Line(const std::string& text) {
  platform::LineSettings line;
  EXPECT_TRUE(platform::ParseLineSetting(text, line)) << text;
  return line;
}

TEST(UartModel, MatchingSettingsPassBytesAndMismatchesGarbleThem) {
  const std::string text = SimulatedSentences(0);
  const platform::LineSettings device = Line("4800,8,N,1");
  EXPECT_EQ(TranscodeUart(text, device, device), text);
  // 7,E,1 gives parity errors on some characters.
  for (const char* receiver :
       {"9600,8,N,1", "2400,8,N,1", "4800,7,N,1", "4800,8,E,1", "4800,8,O,1", "4800,8,N,2", "4800,7,E,1"}) {
    std::string read = TranscodeUart(text, device, Line(receiver));
    EXPECT_NE(read, text) << receiver;
    EXPECT_EQ(read, TranscodeUart(text, device, Line(receiver))) << receiver << ": not deterministic";
  }
  // Other framings carry their own bytes, as many bits of each as the line has.
  EXPECT_EQ(TranscodeUart("AT\r", Line("1200,7,E,2"), Line("1200,7,E,2")), "AT\r");
  for (auto [bits, expected] : {std::pair{"5", "\x1F\x01\x14"},
                                {"6", "\x3F\x01\x14"},
                                {"7", "\x7F\x41\x54"},
                                {"8", "\xFF\xC1\x54"}}) {
    for (const char* parity : {",N,1", ",O,1"}) {
      const platform::LineSettings narrow = Line("4800," + std::string(bits) + parity);
      EXPECT_EQ(TranscodeUart("\xFF\xC1\x54", narrow, narrow), expected) << bits << parity;
    }
  }
  // A receiver twice as fast sees each frame as a byte and a bit more.
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

// The simulated device on VSP0 through the program (found there by discovery:
// see Discovery.AMissingTreeFindsNothingAndDoesNotFail).
class SimulatedPortTest : public testing::ProgramFixture {
 protected:
  // Sentences five times a second keep the tests short.
  [[nodiscard]] std::string ExtraRegistry() const override { return "SimulatedSentenceMs=dword:000000c8\n"; }
  bool Play(uint32_t baud = 4800) {
    state.Port.SelectedPort = u"VSP0:";
    state.Port.SelectedBaud = baud;
    state.Screen.RxClear();
    state.Queue.SendCommand(cmd::kPlay);
    return PumpUntil([&] { return state.Screen.IsButtonEnabled(cmd::kStop); });
  }
  bool Send(const std::u16string& text) {
    state.Screen.SetTxText(text);
    state.Queue.SendCommand(cmd::kSend);
    return PumpUntil([&] { return !state.TxActive && state.Screen.TxEnabled(); });
  }
  size_t Count(const std::u16string& text) {
    std::u16string rx = state.Screen.RxText();
    size_t count = 0;
    for (size_t at = rx.find(text); at != std::u16string::npos; at = rx.find(text, at + 1)) ++count;
    return count;
  }
};

TEST_F(SimulatedPortTest, ReadExactlyWithItsSettingAndAnswersWhatIsSent) {
  EXPECT_EQ(state.Simulated.SimulatedSentenceMs, 200);
  ASSERT_TRUE(Play());
  std::u16string expected = core::BytesToWide(SimulatedSentences(0) + SimulatedSentences(1));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= expected.size(); }));
  EXPECT_EQ(state.Screen.RxText().substr(0, expected.size()), expected);
  // It answers AT commands sent through the transmit path and echoes other lines.
  ASSERT_TRUE(Send(u"AT[0D]"));
  EXPECT_TRUE(PumpUntil([&] { return Count(u"OK\r\n") == 1; }));
  ASSERT_TRUE(Send(u"hello[0D]"));
  EXPECT_TRUE(PumpUntil([&] { return Count(u"hello\r\n") == 1; }));
}

TEST_F(SimulatedPortTest, AFileIsPacedByTheLine) {
  ASSERT_TRUE(Play());
  // Five chunks of 96 bytes: a second of line time at 4800 baud, where
  // writing them takes a quarter of that.
  std::string text;
  for (int i = 0; i < 48; ++i) text += "ATI" + std::to_string(100000 + i) + "\r";
  std::ofstream(folder.Path() + "/commands.txt", std::ios::binary) << text;
  ASSERT_TRUE(Send(u"[File::" + core::Utf8ToWide(folder.Path()) + u"/commands.txt]"));
  // The transfer ended only once the line had carried the file.
  EXPECT_TRUE(CurrentPort(state)->DrainOutput(0));
  EXPECT_TRUE(PumpUntil([&] { return Count(u"OK\r\n") == 48; }));
}

TEST_F(SimulatedPortTest, SurvivesManyOpensAndClosesAndAnExitWhileOpen) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(Play()) << i;
    state.Queue.SendCommand(cmd::kStop);
    ASSERT_TRUE(PumpUntil([&] { return state.Screen.IsButtonEnabled(cmd::kPlay) && !state.PortOpen; })) << i;
  }
  // Another line setting reads garbage; the hex view shows every byte, zeros
  // included (text would stop at them).
  state.Queue.SendCommand(cmd::kBinaryButton);
  ASSERT_TRUE(Play(9600));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= 600; }));
  EXPECT_EQ(state.Screen.RxText().find(u"[24][47][50][47][47][41]"), std::u16string::npos);  // "$GPGGA"
}

}  // namespace
}  // namespace wavetrace::serial
