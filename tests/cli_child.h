#pragma once
// wavetrace-cli as a child process with its standard streams.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace wavetrace::testing {

// The program with its standard streams; standard output is a pipe, or a
// terminal (raw, so that the bytes arrive as written) with the given locale.
class Child {
 public:
  Child(const std::vector<std::string>& args, const std::string& home, bool terminal = false,
        const char* locale = "C") {
    int in[2], out[2], err[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return;
    if (!terminal) {
      if (pipe2(out, O_CLOEXEC) != 0) return;
    } else {
      out[0] = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
      if (out[0] < 0 || grantpt(out[0]) != 0 || unlockpt(out[0]) != 0) return;
      out[1] = open(ptsname(out[0]), O_RDWR | O_NOCTTY | O_CLOEXEC);
      termios tio{};
      tcgetattr(out[1], &tio);
      cfmakeraw(&tio);
      tcsetattr(out[1], TCSANOW, &tio);
    }
    std::vector<char*> argv{const_cast<char*>(WAVETRACE_CLI_PATH)};
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      dup2(in[0], 0);
      dup2(out[1], 1);
      dup2(err[1], 2);
      setenv("WAVETRACE_HOME", home.c_str(), 1);
      setenv("LC_ALL", locale, 1);
      execv(argv[0], argv.data());
      _exit(127);
    }
    for (int end : {in[0], out[1], err[1]}) close(end);
    in_ = in[1];
    fds_ = {out[0], err[0]};
  }
  ~Child() {
    if (pid_ > 0 && !exited_) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    for (int fd : {in_, fds_[0], fds_[1]}) close(fd);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // Reads both outputs until done() holds; false when the time ran out first.
  bool Until(const std::function<bool()>& done, int ms = 10000) {
    for (auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms); !done();
         Pump(20)) {
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
    return true;
  }
  bool WaitForOutput(const std::string& text) {
    return Until([&] { return Out().find(text) != std::string::npos; });
  }
  // from: where in stderr to start looking.
  bool WaitForError(const std::string& text, size_t from = 0) {
    return Until([&] { return Err().find(text, from) != std::string::npos; });
  }
  bool Opened() { return WaitForError("Port opened!"); }
  // Exit code, or -1000 when the child did not end within ms.
  int WaitForExit(int ms = 5000) {
    int status = 0;
    if (!Until([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, ms)) return -1000;
    exited_ = true;
    while (Pump(0)) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  // SIGTERM, then the exit code.
  int Terminate(int ms = 5000) {
    Signal(SIGTERM);
    return WaitForExit(ms);
  }
  void Signal(int sig) { kill(pid_, sig); }
  // Processor time used so far, in clock ticks (user and system).
  long CpuTicks() const {
    std::ifstream stat("/proc/" + std::to_string(pid_) + "/stat");
    std::string field;
    for (int i = 1; i < 14; ++i) stat >> field;  // the fields before utime and stime
    long user = 0, kernel = 0;
    stat >> user >> kernel;
    return user + kernel;
  }
  void Type(const std::string& text) { (void)!write(in_, text.data(), text.size()); }
  void CloseInput() { close(std::exchange(in_, -1)); }
  const std::string& Out() const { return streams_[0]; }
  const std::string& Err() const { return streams_[1]; }

 private:
  // Reads what is there; false when nothing came.
  bool Pump(int timeoutMs) {
    pollfd polled[2] = {{fds_[0], POLLIN, 0}, {fds_[1], POLLIN, 0}};
    if (poll(polled, 2, timeoutMs) <= 0) return false;
    bool any = false;
    for (int i = 0; i < 2; ++i) {
      char buffer[1 << 16];
      ssize_t n = (polled[i].revents & POLLIN) ? read(fds_[i], buffer, sizeof buffer) : 0;
      if (n > 0) streams_[i].append(buffer, static_cast<size_t>(n));
      any = any || n > 0;
    }
    return any;
  }

  pid_t pid_ = -1;
  int in_ = -1;
  std::array<int, 2> fds_{-1, -1};
  std::array<std::string, 2> streams_;
  bool exited_ = false;
};

// How many times what occurs in text.
inline size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

}  // namespace wavetrace::testing
