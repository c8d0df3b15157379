// Runs the real wavetrace-cli as a user would, in a fresh configuration folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/pty.h"
#include "platform/system_error.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

using Clock = std::chrono::steady_clock;

class Child {
 public:
  Child(const std::vector<std::string>& args, const std::string& home) {
    int in[2];
    int out[2];
    int err[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      dup2(in[0], 0);
      dup2(out[1], 1);
      dup2(err[1], 2);
      setenv("WAVETRACE_HOME", home.c_str(), 1);
      std::vector<char*> argv;
      std::string program = WAVETRACE_CLI_PATH;
      argv.push_back(program.data());
      for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
      argv.push_back(nullptr);
      execv(program.c_str(), argv.data());
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
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
    close(in_);
    close(out_);
    close(err_);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Reads both pipes until stdout holds `text` or the time is up.
  bool WaitForOutput(const std::string& text, int ms) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while (stdout_.find(text) == std::string::npos && Clock::now() < deadline) Pump(20);
    return stdout_.find(text) != std::string::npos;
  }
  // Exit code, or -1000 when the child did not end within ms.
  int WaitForExit(int ms) {
    auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    while (Clock::now() < deadline) {
      Pump(10);
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        exited_ = true;
        Pump(0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
      }
    }
    return -1000;
  }
  void Signal(int sig) { kill(pid_, sig); }
  void Type(const std::string& text) { (void)!write(in_, text.data(), text.size()); }
  const std::string& Out() const { return stdout_; }
  const std::string& Err() const { return stderr_; }

 private:
  void Pump(int timeoutMs) {
    pollfd fds[2] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
    if (poll(fds, 2, timeoutMs) <= 0) return;
    char buffer[4096];
    if (fds[0].revents & POLLIN) {
      ssize_t n = read(out_, buffer, sizeof buffer);
      if (n > 0) stdout_.append(buffer, static_cast<size_t>(n));
    }
    if (fds[1].revents & POLLIN) {
      ssize_t n = read(err_, buffer, sizeof buffer);
      if (n > 0) stderr_.append(buffer, static_cast<size_t>(n));
    }
  }

  pid_t pid_ = -1;
  int in_ = -1;
  int out_ = -1;
  int err_ = -1;
  bool exited_ = false;
  std::string stdout_;
  std::string stderr_;
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

  auto registry = platform::ReadWholeFile(home + "/registry.txt");
  ASSERT_TRUE(registry);
  for (const char* name : {"DEFAULTcfg", "MULTIinst", "AcquireHWbuttons", "DisableIcon"}) {
    EXPECT_NE(registry->find(std::string(name) + "=dword:00000000"), std::string::npos) << name;
  }

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
    std::string inOut;
    std::string inErr;
  };
  const Case cases[] = {
      {{"--version"}, 0, "Rel. 2.71.3089 (11.2008)", ""},
      {{"--help"}, 0, "--script FILE", ""},
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
  EXPECT_NE(child.Err().find("Port opened!  Send/Receive active..."), std::string::npos);
  child.Signal(SIGTERM);
  EXPECT_EQ(child.WaitForExit(5000), 0) << child.Err();
}

TEST(Headless, ADeviceWithoutALineSettingIsNamedAsTheProgramNamesIt) {
  testing::TempFolder folder;
  Child child({"--port", "/dev/null"}, folder.Path());
  auto deadline = Clock::now() + std::chrono::seconds(10);
  while (child.Err().find("Check settings.") == std::string::npos && Clock::now() < deadline) {
    child.WaitForOutput("\x01", 50);  // reads both pipes meanwhile
  }
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

TEST(Headless, ASecondInstanceEndsAndTheFirstKeepsRunning) {
  testing::TempFolder folder;
  Child first({}, folder.Path());
  ASSERT_TRUE(first.WaitForOutput("Pocket PC.", 10000));
  Child second({}, folder.Path());
  EXPECT_EQ(second.WaitForExit(5000), 255);
  EXPECT_TRUE(second.Out().empty());
  first.Signal(SIGTERM);
  EXPECT_EQ(first.WaitForExit(5000), 0);
}

}  // namespace
}  // namespace wavetrace::app
