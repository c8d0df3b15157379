// Runs the real wavetrace-cli as a user would, in a fresh configuration folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "platform/pty.h"
#include "platform/system_error.h"
#include "loopback_server.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using Clock = std::chrono::steady_clock;

// wavetrace-cli with its standard output and error going to files of its
// own and its standard input a pipe the test types into.
class Child {
 public:
  Child(const std::vector<std::string>& args, const std::string& home) {
    int in[2];
    if (pipe2(in, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      dup2(in[0], 0);
      dup2(open((io_.Path() + "/out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 1);
      dup2(open((io_.Path() + "/err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 2);
      setenv("WAVETRACE_HOME", home.c_str(), 1);
      std::vector<char*> argv{const_cast<char*>(WAVETRACE_CLI_PATH)};
      for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(in[0]);
    in_ = in[1];
  }
  ~Child() {
    if (pid_ > 0 && !exited_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(in_);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Waits until standard output (or error) holds `text` or the time is up.
  bool WaitForOutput(const std::string& text, int ms, bool onStderr = false) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while ((onStderr ? Err() : Out()).find(text) == std::string::npos) {
      if (Clock::now() > deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
  }
  // Exit code, or -1000 when the child did not end within ms.
  int WaitForExit(int ms) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    int status = 0;
    while (waitpid(pid_, &status, WNOHANG) != pid_) {
      if (Clock::now() > deadline) return -1000;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    exited_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  void Signal(int sig) { kill(pid_, sig); }
  void Type(const std::string& text) { (void)!write(in_, text.data(), text.size()); }
  [[nodiscard]] std::string Out() const { return platform::ReadWholeFile(io_.Path() + "/out").value_or(""); }
  [[nodiscard]] std::string Err() const { return platform::ReadWholeFile(io_.Path() + "/err").value_or(""); }

 private:
  testing::TempFolder io_;
  pid_t pid_ = -1;
  int in_ = -1;
  bool exited_ = false;
};

TEST(Headless, StartsInAnEmptyFolderAndEndsOnSigterm) {
  testing::TempFolder folder;
  std::string home = folder.Path() + "/fresh";  // does not exist yet
  Child child({}, home);
  ASSERT_TRUE(child.WaitForOutput("into your Pocket PC.", 10000)) << child.Out() << child.Err();
  EXPECT_EQ(
      child.Out(),
      "    Welcome to Wavetrace Pro\r\n    Rel. 2.71.3089 (11.2008)\r\n\r\n Please tap the PLAY button\r\n "
      "below "
      "to open a communications\r\n port. After which you may then\r\n begin receiving serial data\r\n into "
      "your Pocket PC.");
  EXPECT_NE(child.Err().find("Warning: Version mismatch"), std::string::npos);

  EXPECT_TRUE(platform::FileExists(home + "/registry.txt"));  // the folder was made

  // A second start ends at once; the first keeps running.
  Child second({}, home);
  EXPECT_EQ(second.WaitForExit(5000), 255);
  EXPECT_TRUE(second.Out().empty());

  auto signalled = Clock::now();
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
  EXPECT_LT(Clock::now() - signalled, std::chrono::seconds(1));
  EXPECT_NE(child.Err().find("Shutting down..."), std::string::npos);
}

TEST(Headless, QuietKeepsTheStatusLineOffStandardError) {
  testing::TempFolder folder;
  Child child({"/Q"}, folder.Path());
  ASSERT_TRUE(child.WaitForOutput("Pocket PC.", 10000));
  child.Signal(SIGINT);
  EXPECT_EQ(child.WaitForExit(5000), 0);
  EXPECT_EQ(child.Err().find("Shutting down..."), std::string::npos);
  EXPECT_NE(child.Err().find("Warning: Version mismatch"), std::string::npos);  // boxes still show
}

TEST(Headless, CommandLineAnswersWithoutStarting) {
  testing::TempFolder folder;
  struct Case {
    std::vector<std::string> args;
    int exitCode;
    std::string inOut, inErr;
  };
  for (const auto& c :
       {Case{{"--version"}, 0, "Rel. 2.71.3089 (11.2008)", ""}, Case{{"--help"}, 0, "--script FILE", ""},
        Case{{"--frobnicate"}, 2, "", "unknown option '--frobnicate'"}}) {
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
  EXPECT_NE(child.Err().find("Port opened!  Send/Receive active..."), std::string::npos);
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
  auto deadline = Clock::now() + std::chrono::seconds(10);
  while (child.Err().find("Connection opened") == std::string::npos && Clock::now() < deadline) {
    child.WaitForOutput("\x01", 20);  // reads both pipes meanwhile
  }
  ASSERT_TRUE(device.Write("$GPRMC,1*00\r\n"));
  ASSERT_TRUE(server.WaitFor(13)) << child.Err();
  EXPECT_EQ(server.Received(), "$GPRMC,1*00\r\n");
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
  EXPECT_NE(child.Err().find("TCP/IP relay. Connection opened to " + address), std::string::npos) << child.Err();
  EXPECT_NE(child.Err().find("TCP/IP relay deactivated. Connection closed to " + address), std::string::npos);
}

TEST(Headless, ADeviceWithoutALineSettingIsNamedAsTheProgramNamesIt) {
  testing::TempFolder folder;
  Child child({"--port", "/dev/null"}, folder.Path());
  child.WaitForOutput("Check settings.", 10000, true);
  std::string words = " (" + platform::ErrorText(ENOTTY) + ")";
  const std::string& err = child.Err();
  EXPECT_NE(err.find("ConfigurePort::GetCommState: Error code=25 (0x19)" + words), std::string::npos) << err;
  // The system's text once per message: the box's line and the status line.
  size_t count = 0;
  for (size_t at = err.find(words); at != std::string::npos; at = err.find(words, at + 1)) ++count;
  EXPECT_EQ(count, 2u) << err;
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << err;
}

}  // namespace
}  // namespace wavetrace::app
