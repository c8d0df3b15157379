// Runs the real wavetrace-cli as a user would, in a fresh configuration folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "loopback_server.h"
#include "platform/files.h"
#include "platform/pty.h"
#include "platform/system_error.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using Clock = std::chrono::steady_clock;

// The program's standard output: a pipe, or a terminal (raw, so that the
// bytes arrive as written) with the given locale.
struct Output {
  bool terminal = false;
  std::string locale = "C";
};

class Child {
 public:
  Child(const std::vector<std::string>& args, const std::string& home, const Output& output = {}) {
    int in[2];
    int out[2] = {-1, -1};
    int err[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return;
    std::string terminalPath;
    if (output.terminal) {
      out[0] = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
      if (out[0] < 0 || grantpt(out[0]) != 0 || unlockpt(out[0]) != 0) return;
      terminalPath = ptsname(out[0]);
    } else if (pipe2(out, O_CLOEXEC) != 0) {
      return;
    }
    pid_ = fork();
    if (pid_ == 0) {
      if (output.terminal) {
        out[1] = open(terminalPath.c_str(), O_RDWR | O_NOCTTY);
        termios tio{};
        tcgetattr(out[1], &tio);
        cfmakeraw(&tio);
        tcsetattr(out[1], TCSANOW, &tio);
      }
      dup2(in[0], 0);
      dup2(out[1], 1);
      dup2(err[1], 2);
      setenv("WAVETRACE_HOME", home.c_str(), 1);
      setenv("LC_ALL", output.locale.c_str(), 1);
      std::vector<char*> argv;
      std::string program = WAVETRACE_CLI_PATH;
      argv.push_back(program.data());
      for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
      argv.push_back(nullptr);
      execv(program.c_str(), argv.data());
      _exit(127);
    }
    close(in[0]);
    if (out[1] >= 0) close(out[1]);
    close(err[1]);
    in_ = in[1];
    out_ = out[0];
    err_ = err[0];
  }
  ~Child() {
    if (pid_ > 0 && !exited_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    CloseInput();
    close(out_);
    close(err_);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Reads both outputs until stdout holds `text` or the time is up.
  bool WaitForOutput(const std::string& text, int ms) { return WaitFor(stdout_, text, ms); }
  // from: where in stderr to start looking.
  bool WaitForError(const std::string& text, int ms, size_t from = 0) {
    return WaitFor(stderr_, text, ms, from);
  }
  bool WaitForOutputSize(size_t size, int ms) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while (stdout_.size() < size && Clock::now() < deadline) Pump(20);
    return stdout_.size() >= size;
  }
  // Exit code, or -1000 when the child did not end within ms.
  int WaitForExit(int ms) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while (Clock::now() < deadline) {
      Pump(10);
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        exited_ = true;
        while (Pump(0)) {
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
      }
    }
    return -1000;
  }
  void Signal(int sig) { kill(pid_, sig); }
  void Type(const std::string& text) { (void)!write(in_, text.data(), text.size()); }
  void CloseInput() {
    if (in_ >= 0) close(in_);
    in_ = -1;
  }
  const std::string& Out() const { return stdout_; }
  const std::string& Err() const { return stderr_; }

 private:
  bool WaitFor(const std::string& stream, const std::string& text, int ms, size_t from = 0) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while (stream.find(text, from) == std::string::npos && Clock::now() < deadline) Pump(20);
    return stream.find(text, from) != std::string::npos;
  }
  // Reads what is there; false when nothing came.
  bool Pump(int timeoutMs) {
    pollfd fds[2] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
    if (poll(fds, 2, timeoutMs) <= 0) return false;
    bool any = false;
    std::string* targets[2] = {&stdout_, &stderr_};
    for (int i = 0; i < 2; ++i) {
      if (!(fds[i].revents & POLLIN)) continue;
      char buffer[1 << 16];
      ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
      if (n > 0) targets[i]->append(buffer, static_cast<size_t>(n));
      any = any || n > 0;
    }
    return any;
  }

  pid_t pid_ = -1;
  int in_ = -1;
  int out_ = -1;
  int err_ = -1;
  bool exited_ = false;
  std::string stdout_;
  std::string stderr_;
};

// Runs under the sanitizers move data some ten times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kStreamBytes = size_t{8} << 20;
#else
constexpr size_t kStreamBytes = size_t{64} << 20;
#endif

// A configuration that shows received bytes as they are: text view (with its
// LF CR swap) and numeric view both off.
std::string WriteRawViewConfig(const std::string& folder) {
  std::string path = folder + "/raw.cfg.txt";
  std::string body = "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nmodeASCII=0\r\nmodeBINARY=0\r\n";
  std::ofstream(path, std::ios::binary) << body << std::string(64, ';') << "\r\n";
  return path;
}

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

size_t FirstDifference(const std::string& a, const std::string& b) {
  size_t i = 0;
  while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
  return i;
}

TEST(Headless, StandardOutputCarriesEveryReceivedByteInOrder) {
  struct Case {
    const char* name;
    bool rawView;
    std::string data;
    size_t pieceBytes;
    int pauseMs;  // between pieces: 10 KB every 10 ms is 1 MB/s
  };
  const Case cases[] = {
      {"mixed bytes as fast as the line takes them", true, MixedBytes(kStreamBytes), 1 << 16, 0},
      {"text lines at 1 MB/s", false, CrLfLines(2'000'000), 10'000, 10},
  };
  for (const auto& c : cases) {
    testing::TempFolder folder;
    platform::PtyPair device;
    ASSERT_TRUE(device.Valid());
    std::vector<std::string> args = {"--port", device.SlavePath(), "--baud", "115200"};
    if (c.rawView) args.insert(args.end(), {"--config", WriteRawViewConfig(folder.Path())});
    Child child(args, folder.Path());
    ASSERT_TRUE(child.WaitForError("Port opened!", 10000)) << c.name << child.Err();
    std::thread line([&] {
      for (size_t at = 0; at < c.data.size(); at += c.pieceBytes) {
        device.Write(c.data.substr(at, c.pieceBytes));
        if (c.pauseMs) std::this_thread::sleep_for(std::chrono::milliseconds(c.pauseMs));
      }
    });
    child.WaitForOutputSize(c.data.size(), 120000);
    line.join();
    child.Signal(SIGTERM);
    EXPECT_EQ(child.WaitForExit(10000), 0) << c.name;
    EXPECT_EQ(child.Out().size(), c.data.size()) << c.name;
    EXPECT_TRUE(child.Out() == c.data)
        << c.name << ": first difference at byte " << FirstDifference(child.Out(), c.data);
    EXPECT_EQ(child.Err().find("dropped"), std::string::npos) << c.name << child.Err();
  }
}

TEST(Headless, DataReadJustBeforeTheEndIsWritten) {
  struct Case {
    const char* name;
    std::function<void(Child&)> end;
  };
  const Case cases[] = {
      {"SIGTERM", [](Child& child) { child.Signal(SIGTERM); }},
      {"SIGINT", [](Child& child) { child.Signal(SIGINT); }},
      {"the exit command", [](Child& child) { child.Type("~exit\n"); }},
  };
  std::string data;
  while (data.size() < 4000) data += "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  data.resize(4000);
  for (const auto& c : cases) {
    testing::TempFolder folder;
    platform::PtyPair device;
    Child child({"--port", device.SlavePath()}, folder.Path());
    ASSERT_TRUE(child.WaitForError("Port opened!", 10000)) << c.name << child.Err();
    ASSERT_TRUE(device.Write(data));
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    c.end(child);
    EXPECT_EQ(child.WaitForExit(10000), 0) << c.name;
    EXPECT_EQ(child.Out(), data) << c.name;
  }
}

TEST(Headless, EveryPipedLineIsSentOnceInOrderAndEndOfInputEnds) {
  std::string lines;
  std::string expected;
  for (int n = 1; n <= 200; ++n) {
    lines += "line " + std::to_string(n) + "[0D]\n";
    expected += "line " + std::to_string(n) + "\r";
  }
  for (bool exitOnEof : {false, true}) {
    testing::TempFolder folder;
    platform::PtyPair device;
    std::vector<std::string> args = {"--port", device.SlavePath()};
    if (exitOnEof) args.push_back("--exit-on-eof");
    Child child(args, folder.Path());
    // The device side reads nothing until the program holds the port.
    ASSERT_TRUE(child.WaitForError("Port opened!", 10000)) << child.Err();
    child.Type(lines);
    child.CloseInput();
    if (exitOnEof) {
      // A closing pty throws away what its far side has not read yet, so the
      // end is checked on the status line: the last line was sent first.
      EXPECT_EQ(child.WaitForExit(10000), 0) << child.Err();
      EXPECT_LT(child.Err().find("line 200"), child.Err().find("Shutting down...")) << child.Err();
      EXPECT_NE(child.Err().find("Shutting down..."), std::string::npos) << child.Err();
    } else {
      EXPECT_EQ(device.Read(expected.size() + 1, 20000), expected);
      child.Signal(SIGTERM);
      EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
    }
  }
}

TEST(Headless, CommandsFromTheKeyboard) {
  testing::TempFolder folder;
  platform::PtyPair device;
  Child child({"--port", device.SlavePath()}, folder.Path());
  ASSERT_TRUE(child.WaitForError("Port opened!  Send/Receive active...", 10000)) << child.Err();
  child.Type("~stop\n");
  ASSERT_TRUE(child.WaitForError("Port closed!  Send/Receive deactivated.", 10000)) << child.Err();
  child.Type("hello\n~frobnicate\n");
  EXPECT_TRUE(child.WaitForError("Port closed!  Line not sent: hello\n", 10000)) << child.Err();
  EXPECT_TRUE(child.WaitForError("Unknown command ~frobnicate; the commands are ~play ~stop", 10000));
  size_t before = child.Err().size();
  child.Type("~PLAY\n~~tilde\n");
  ASSERT_TRUE(child.WaitForError("Port opened!", 10000, before)) << child.Err();
  EXPECT_EQ(device.Read(6, 10000), "~tilde");
  ASSERT_TRUE(device.Write("back\r\n"));
  EXPECT_TRUE(child.WaitForOutput("back\r\n", 10000)) << child.Out() << child.Err();
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
}

TEST(Headless, ATerminalGetsTheWelcomeAndUtf8BothWays) {
  testing::TempFolder folder;
  std::string home = folder.Path() + "/fresh";  // does not exist yet
  platform::PtyPair device;
  Child child({"--port", device.SlavePath()}, home, {true, "C.UTF-8"});
  ASSERT_TRUE(child.WaitForOutput("into your Pocket PC.", 10000)) << child.Out() << child.Err();
  EXPECT_EQ(
      child.Out(),
      "    Welcome to Wavetrace Pro\r\n    Rel. 2.71.3089 (11.2008)\r\n\r\n Please tap the PLAY button\r\n "
      "below "
      "to open a communications\r\n port. After which you may then\r\n begin receiving serial data\r\n into "
      "your Pocket PC.");
  EXPECT_NE(child.Err().find("Warning: Version mismatch"), std::string::npos);
  ASSERT_TRUE(child.WaitForError("Port opened!", 10000)) << child.Err();
  ASSERT_TRUE(device.Write("caf\xE9\r\n"));
  EXPECT_TRUE(child.WaitForOutput("caf\xC3\xA9\r\n", 10000)) << child.Out();
  child.Type("caf\xC3\xA9\n");
  EXPECT_EQ(device.Read(4, 10000), "caf\xE9");
  EXPECT_TRUE(platform::FileExists(home + "/registry.txt"));  // the folder was made

  // A second start with MULTIinst 0 ends with -1 and says why.
  Child second({}, home);
  EXPECT_EQ(second.WaitForExit(5000), 255);
  EXPECT_TRUE(second.Out().empty());
  EXPECT_NE(second.Err().find("another instance is running with the settings in " + home), std::string::npos)
      << second.Err();

  auto signalled = Clock::now();
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
  EXPECT_LT(Clock::now() - signalled, std::chrono::seconds(1));
  EXPECT_NE(child.Err().find("Shutting down..."), std::string::npos);
}

TEST(Headless, QuietKeepsTheWelcomeAndTheStatusLineOut) {
  testing::TempFolder folder;
  Child child({"/Q"}, folder.Path(), {true, "C"});
  ASSERT_TRUE(child.WaitForError("Warning: Version mismatch", 10000));  // boxes still show
  child.Signal(SIGINT);
  EXPECT_EQ(child.WaitForExit(5000), 0);
  EXPECT_EQ(child.Err().find("Shutting down..."), std::string::npos);
  EXPECT_TRUE(child.Out().empty()) << child.Out();
}

TEST(Headless, CommandLineAnswersWithoutStarting) {
  testing::TempFolder folder;
  struct Case {
    std::vector<std::string> args;
    int exitCode;
    std::string inOut;
    std::string inErr;
  };
  const Case cases[] = {
      {{"--version"}, 0, "Rel. 2.71.3089 (11.2008)", ""},
      {{"--help"}, 0, "Exit status: 0 on a normal end", ""},
      {{"--frobnicate"}, 2, "", "unknown option '--frobnicate'"},
  };
  for (const auto& c : cases) {
    Child child(c.args, folder.Path());
    EXPECT_EQ(child.WaitForExit(5000), c.exitCode) << c.args[0];
    EXPECT_NE(child.Out().find(c.inOut), std::string::npos) << c.args[0] << child.Out();
    EXPECT_NE(child.Err().find(c.inErr), std::string::npos) << c.args[0] << child.Err();
  }
  EXPECT_FALSE(platform::FileExists(folder.Path() + "/registry.txt"));
}

TEST(Headless, APortFromTheCommandLineReceivesAndSends) {
  testing::TempFolder folder;
  platform::PtyPair device;
  ASSERT_TRUE(device.Valid());
  Child child({"--port", device.SlavePath(), "--baud", "115200", "--send", "hello[0D]"}, folder.Path());
  EXPECT_EQ(device.Read(6, 10000), "hello\r");
  ASSERT_TRUE(device.Write("$GPGGA,1*00\r\n"));
  EXPECT_TRUE(child.WaitForOutput("$GPGGA,1*00\r\n", 10000)) << child.Out() << child.Err();
  // A typed line goes out through the transmit path, escapes and all.
  child.Type("AT[0D]\n");
  EXPECT_EQ(device.Read(3, 10000), "AT\r");
  EXPECT_TRUE(child.WaitForError("Port opened!  Send/Receive active...", 10000)) << child.Err();
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
}

TEST(Headless, RelayForwardsWhatThePortReceives) {
  testing::TempFolder folder;
  platform::PtyPair device;
  testing::LoopbackServer server(platform::SocketKind::kStream);
  std::string address = "[127.0.0.1:" + std::to_string(server.Port()) + "]";
  Child child({"--port", device.SlavePath(), "--relay", "tcp://localhost:" + std::to_string(server.Port())},
              folder.Path());
  // RELAY goes on once the port is open; what arrives from then on is relayed.
  ASSERT_TRUE(child.WaitForError("Connection opened", 10000)) << child.Err();
  ASSERT_TRUE(device.Write("$GPRMC,1*00\r\n"));
  ASSERT_TRUE(server.WaitFor(13)) << child.Err();
  EXPECT_EQ(server.Received(), "$GPRMC,1*00\r\n");
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
  EXPECT_NE(child.Err().find("TCP/IP relay. Connection opened to " + address), std::string::npos)
      << child.Err();
  EXPECT_NE(child.Err().find("TCP/IP relay deactivated. Connection closed to " + address), std::string::npos);
}

TEST(Headless, APortThatFailsAtStartEndsTheRunWithOne) {
  testing::TempFolder folder;
  Child child({"--port", "/dev/null"}, folder.Path());
  EXPECT_EQ(child.WaitForExit(10000), 1) << child.Err();
  std::string words = " (" + platform::ErrorText(ENOTTY) + ")";
  const std::string& err = child.Err();
  // In the order raised: the status line, the box, the status error.
  size_t opening = err.find("Opening port...");
  size_t box = err.find("ConfigurePort::GetCommState: Error code=25 (0x19)" + words);
  size_t failed = err.find("Error! Selected port failed to open. Check settings.");
  EXPECT_LT(opening, box) << err;
  EXPECT_LT(box, failed) << err;
  EXPECT_NE(failed, std::string::npos) << err;
  // The system's text once per message: the box's line and the status line.
  size_t count = 0;
  for (size_t at = err.find(words); at != std::string::npos; at = err.find(words, at + 1)) ++count;
  EXPECT_EQ(count, 2u) << err;
}

}  // namespace
}  // namespace wavetrace::app
