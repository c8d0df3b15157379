// Runs the real wavetrace-cli as a user would, in a fresh configuration folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <thread>

#include "cli_child.h"
#include "loopback_server.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "platform/system_error.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using namespace std::chrono_literals;
using testing::Child;
using testing::Count;
constexpr size_t npos = std::string::npos;

// A fresh configuration folder and a pty pair whose master plays the device.
struct FolderAndDevice {
  testing::TempFolder folder;
  platform::PtyPair device;
};

// The program on that device's port, with the further args; on a terminal, in a UTF-8 locale and with a
// configuration folder that does not exist yet.
struct Session : FolderAndDevice, Child {
  explicit Session(std::vector<std::string> args = {}, bool terminal = false)
      : Child((args.insert(args.begin(), {"--port", device.SlavePath()}), args),
              folder.Path() + (terminal ? "/fresh" : ""), terminal, terminal ? "C.UTF-8" : "C") {}
};

// Runs under the sanitizers move data some ten times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kStreamBytes = size_t{8} << 20;
#else
constexpr size_t kStreamBytes = size_t{64} << 20;
#endif

std::string MixedBytes(size_t size) {
  std::string bytes(size, '\0');
  uint32_t seed = 12345;
  for (size_t i = 0; i < size; ++i) {
    seed = seed * 1103515245u + 12345u;
    // Zero bytes, CR and LF more often than chance would give them.
    uint8_t value = static_cast<uint8_t>(seed >> 16);
    bytes[i] = static_cast<char>(value < 16 ? "\0\r\n"[value % 3] : value);
  }
  return bytes;
}

std::string CrLfLines(size_t size) {
  std::string text;
  for (size_t n = 0; text.size() < size; ++n) text += "$GPRMC," + std::to_string(n) + ",A,4807.038,N*6A\r\n";
  return text;
}

// Also when the run ends just after the data was read.
TEST(Headless, StandardOutputCarriesEveryReceivedByteInOrder) {
  // A configuration that shows received bytes as they are: text view (with
  // its LF CR swap) and numeric view both off.
  testing::TempFolder configs;
  const std::string raw = configs.Path() + "/raw.cfg.txt";
  std::ofstream(raw, std::ios::binary) << "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nmodeASCII=0\r\n"
                                       << "modeBINARY=0\r\n"
                                       << std::string(64, ';') << "\r\n";
  struct Case {
    const char* name;
    std::vector<std::string> args;
    std::string data;
    size_t pieceBytes;
    int pauseMs;                      // after each piece: 10 KB every 10 ms is 1 MB/s
    std::function<void(Child&)> end;  // right after the last pause; none: SIGTERM once all is out
  };
  const Case cases[] = {
      // As fast as the line takes them.
      {"mixed bytes", {"--baud", "115200", "--config", raw}, MixedBytes(kStreamBytes), 1 << 16, 0, nullptr},
      {"text lines at 1 MB/s", {"--baud", "115200"}, CrLfLines(2'000'000), 10'000, 10, nullptr},
      // SIGINT takes the same way out: QuietKeepsTheWelcomeAndTheStatusLineOut.
      {"SIGTERM", {}, CrLfLines(4000), 4000, 10, [](Child& child) { child.Signal(SIGTERM); }},
      {"the exit command", {}, CrLfLines(4000), 4000, 10, [](Child& child) { child.Type("~exit\n"); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session run(c.args);
    ASSERT_TRUE(run.Opened()) << run.Err();
    std::thread line([&] {
      for (size_t at = 0; at < c.data.size(); at += c.pieceBytes) {
        run.device.Write(c.data.substr(at, c.pieceBytes));
        std::this_thread::sleep_for(std::chrono::milliseconds(c.pauseMs));
      }
    });
    if (!c.end) run.Until([&] { return run.Out().size() >= c.data.size(); }, 120000);
    line.join();
    c.end ? c.end(run) : run.Signal(SIGTERM);
    EXPECT_EQ(run.WaitForExit(10000), 0);
    EXPECT_TRUE(run.Out() == c.data) << "first difference at byte "
                                     << std::ranges::mismatch(run.Out(), c.data).in1 - run.Out().begin();
    EXPECT_EQ(run.Err().find("dropped"), npos) << run.Err();
  }
}

TEST(Headless, EveryPipedLineIsSentOnceInOrderAndEndOfInputEnds) {
  std::string lines, expected;
  for (int n = 1; n <= 200; ++n) {
    lines += "line " + std::to_string(n) + "[0D]\n";
    expected += "line " + std::to_string(n) + "\r";
  }
  for (bool exitOnEof : {false, true}) {
    Session run(exitOnEof ? std::vector<std::string>{"--exit-on-eof"} : std::vector<std::string>{});
    // The device side reads nothing until the program holds the port.
    ASSERT_TRUE(run.Opened()) << run.Err();
    run.Type(lines);
    run.CloseInput();
    if (exitOnEof) {
      // A closing pty throws away what its far side has not read yet, so the
      // end is checked on the status line: the last line was sent first.
      EXPECT_EQ(run.WaitForExit(10000), 0) << run.Err();
      EXPECT_NE(run.Err().find("Shutting down...", run.Err().find("line 200")), npos) << run.Err();
      // Input that ends before the port is open still waits for the start's
      // own sending (the race is lost now and then, hence a few runs).
      for (int i = 0; i < 5; ++i) {
        Session early({"--exit-on-eof", "--send", "early"});
        early.CloseInput();
        EXPECT_EQ(early.WaitForExit(10000), 0) << early.Err();
        EXPECT_NE(early.Err().find("Shutting down...", early.Err().find("early")), npos) << early.Err();
      }
    } else {
      // Every line once: nothing follows the last one.
      EXPECT_EQ(run.device.Read(expected.size(), 20000), expected);
      EXPECT_EQ(run.device.Read(1, 500), "");
      EXPECT_EQ(run.Terminate(), 0) << run.Err();
    }
  }
}

TEST(Headless, APortFromTheCommandLineAndCommandsFromTheKeyboard) {
  Session run({"--baud", "115200", "--send", "hello[0D]"});
  EXPECT_EQ(run.device.Read(6, 10000), "hello\r");
  // Received data on standard output and typed lines with escapes:
  // StandardOutputCarriesEveryReceivedByteInOrder, EveryPipedLineIsSentOnceInOrderAndEndOfInputEnds.
  ASSERT_TRUE(run.WaitForError("Port opened!  Send/Receive active...")) << run.Err();
  run.Type("~stop\n");
  ASSERT_TRUE(run.WaitForError("Port closed!  Send/Receive deactivated.")) << run.Err();
  run.Type("hello\n~frobnicate\n");
  EXPECT_TRUE(run.WaitForError("Port closed!  Line not sent: hello\n")) << run.Err();
  EXPECT_TRUE(run.WaitForError("Unknown command ~frobnicate; the commands are ~play ~stop"));
  size_t before = run.Err().size();
  run.Type("~PLAY\n~~tilde\n");
  ASSERT_TRUE(run.WaitForError("Port opened!", before)) << run.Err();
  EXPECT_EQ(run.device.Read(6, 10000), "~tilde");
  ASSERT_TRUE(run.device.Write("back\r\n"));
  EXPECT_TRUE(run.WaitForOutput("back\r\n")) << run.Out() << run.Err();
  EXPECT_EQ(run.Terminate(), 0) << run.Err();
}

TEST(Headless, ATerminalGetsTheWelcomeAndUtf8BothWays) {
  Session child({}, true);
  const std::string home = child.folder.Path() + "/fresh";
  ASSERT_TRUE(child.Opened()) << child.Err();
  // The data begins on a line of its own.
  ASSERT_TRUE(child.WaitForOutput("into your Pocket PC.\r\n")) << child.Out() << child.Err();
  EXPECT_EQ(
      child.Out(),
      "    Welcome to Wavetrace Pro\r\n    Rel. 2.71.3089 (11.2008)\r\n\r\n Please tap the PLAY button\r\n"
      " below to open a communications\r\n port. After which you may then\r\n begin receiving serial "
      "data\r\n into your Pocket PC.\r\n");
  ASSERT_TRUE(child.device.Write("caf\xE9\r\n"));
  EXPECT_TRUE(child.WaitForOutput("caf\xC3\xA9\r\n")) << child.Out();
  child.Type("caf\xC3\xA9\n");
  EXPECT_EQ(child.device.Read(4, 10000), "caf\xE9");
  EXPECT_TRUE(platform::FileExists(home + "/registry.txt"));  // the folder was made

  // A second start with MULTIinst 0 ends with -1 and says why.
  Child second({}, home);
  EXPECT_EQ(second.WaitForExit(), 255);
  EXPECT_TRUE(second.Out().empty());
  EXPECT_NE(second.Err().find("another instance is running with the settings in " + home), npos)
      << second.Err();

  auto signalled = std::chrono::steady_clock::now();
  EXPECT_EQ(child.Terminate(), 0) << child.Err();
  EXPECT_LT(std::chrono::steady_clock::now() - signalled, 1s);
  EXPECT_NE(child.Err().find("Shutting down..."), npos);
}

TEST(Headless, QuietKeepsTheWelcomeAndTheStatusLineOut) {
  testing::TempFolder folder;
  Child child({"/Q"}, folder.Path(), true);
  ASSERT_TRUE(child.WaitForError("Warning: Version mismatch"));  // boxes still show
  child.Signal(SIGINT);
  EXPECT_EQ(child.WaitForExit(), 0);
  EXPECT_EQ(child.Err().find("Shutting down..."), npos);
  EXPECT_TRUE(child.Out().empty()) << child.Out();
}

// --help and --version, exit status and all: InstallTree (scripts/check_install).
TEST(Headless, AnUnknownOptionEndsWithTwoWithoutStartingAPortThatFailsAtStartWithOne) {
  testing::TempFolder folder;
  Child refused({"--frobnicate"}, folder.Path());
  EXPECT_EQ(refused.WaitForExit(), 2);
  EXPECT_NE(refused.Err().find("unknown option '--frobnicate'"), npos) << refused.Err();
  EXPECT_FALSE(platform::FileExists(folder.Path() + "/registry.txt"));

  Child child({"--port", "/dev/null"}, folder.Path());
  EXPECT_EQ(child.WaitForExit(10000), 1) << child.Err();
  const std::string words = " (" + platform::ErrorText(ENOTTY) + ")";
  const std::string& err = child.Err();
  // In the order raised: the status line, the box, the status error.
  size_t opening = err.find("Opening port...");
  size_t box = err.find("ConfigurePort::GetCommState: Error code=25 (0x19)" + words);
  size_t failed = err.find("Error! Selected port failed to open. Check settings.");
  EXPECT_TRUE(opening < box && box < failed && failed != npos) << err;
  // The system's text once per message: the box's line and the status line.
  EXPECT_EQ(Count(err, words), 2u) << err;
}

TEST(Headless, RelayForwardsWhatThePortReceives) {
  testing::LoopbackServer server(platform::SocketKind::kStream);
  const std::string port = std::to_string(server.Port());
  Session run({"--relay", "tcp://localhost:" + port});
  // RELAY goes on once the port is open; what arrives from then on is relayed.
  // The status texts go to standard error; the name was looked up.
  ASSERT_TRUE(run.WaitForError("TCP/IP relay. Connection opened to [127.0.0.1:" + port + "]")) << run.Err();
  ASSERT_TRUE(run.device.Write("$GPRMC,1*00\r\n"));
  ASSERT_TRUE(server.WaitFor(13)) << run.Err();
  EXPECT_EQ(server.Received(), "$GPRMC,1*00\r\n");
  EXPECT_EQ(run.Terminate(), 0) << run.Err();
  EXPECT_NE(run.Err().find("TCP/IP relay deactivated. Connection closed to [127.0.0.1:" + port + "]"), npos)
      << run.Err();
}

TEST(Headless, AReconnectingRunWaitsIdleForItsDeviceAndTakesItBackUntilStop) {
  testing::TempFolder folder;
  const std::string link = folder.Path() + "/gps";
  // Each device stands behind the one stable name, as a by-id link does.
  auto plugIn = [&](platform::PtyPair& device) {
    std::filesystem::remove(link);
    std::filesystem::create_symlink(device.SlavePath(), link);
  };
  Child child({"--port", link, "--reconnect"}, folder.Path());
  ASSERT_TRUE(child.WaitForError("Waiting for the device to come back [" + link + "]")) << child.Err();
  // Waiting is idle: no busy loop (a tick is 10 ms; a second of spinning is 100).
  long before = child.CpuTicks();
  std::this_thread::sleep_for(1s);
  EXPECT_LE(child.CpuTicks() - before, 10);

  // Plugged in, read from and unplugged, twice.
  platform::PtyPair devices[3];
  for (size_t n = 1; n <= 2; ++n) {
    plugIn(devices[n - 1]);
    ASSERT_TRUE(child.Until([&] { return Count(child.Err(), "Port opened again!") == n; })) << child.Err();
    const std::string line = "line " + std::to_string(n) + "\r\n";
    devices[n - 1].Write(line);
    ASSERT_TRUE(child.WaitForOutput(line));
    devices[n - 1].CloseMaster();
    ASSERT_TRUE(
        child.Until([&] { return Count(child.Err(), "Waiting for the device to come back") == n + 1; }));
  }
  // STOP during a wait ends it: a device that comes back then is left alone.
  child.Type("~stop\n");
  ASSERT_TRUE(child.WaitForError("Port closed!  Send/Receive deactivated."));
  plugIn(devices[2]);
  std::this_thread::sleep_for(1500ms);
  EXPECT_EQ(Count(child.Err(), "Port opened again!"), 2u) << child.Err();
  EXPECT_EQ(child.Terminate(), 0);
}

}  // namespace
}  // namespace wavetrace::app
