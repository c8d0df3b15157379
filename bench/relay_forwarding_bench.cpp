// End to end: a device on a pty sends as fast as the line takes it; the
// forwarder reads the pty and sends to a TCP sink on 127.0.0.1. The forwarder
// is wavetrace-cli with --relay, then socat doing the same in the same run.
// Counters: MiB/s from the first byte written to the last byte at the sink,
// and the bytes that never arrived.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench_support.h"
#include "platform/pty.h"
#include "platform/socket.h"

namespace {

using namespace wavetrace;
using Clock = std::chrono::steady_clock;

// Printable lines: the text view passes them unchanged, so what the sink
// gets can be compared byte for byte with what the device sent.
std::string DeviceData(size_t bytes) {
  std::string data(bytes, 'x');
  for (size_t i = 0; i < bytes; ++i) data[i] = (i % 64 == 63) ? '\n' : static_cast<char>('!' + (i * 31) % 90);
  return data;
}

// Accepts one connection and counts (and keeps) what arrives.
class Sink {
 public:
  Sink() {
    platform::OpenSocket(platform::SocketKind::kStream, fd_);
    platform::BindTo(fd_, {platform::kLoopbackAddress, 0});
    platform::LocalEndpoint(fd_, local_);
    platform::ListenOn(fd_, 1);
    thread_ = std::thread([this] { Serve(); });
  }
  ~Sink() { Stop(); }
  // Takes the sink down; received may be read from then on.
  void Stop() {
    if (!thread_.joinable()) return;
    platform::ShutdownSocket(fd_);
    if (connection_ != platform::kNoSocket) platform::ShutdownSocket(connection_);
    thread_.join();
    if (connection_ != platform::kNoSocket) platform::CloseSocket(connection_);
    platform::CloseSocket(fd_);
  }
  [[nodiscard]] uint16_t Port() const { return local_.Port; }
  [[nodiscard]] bool Connected() const { return connected_; }
  [[nodiscard]] size_t Bytes() const { return bytes_; }
  [[nodiscard]] Clock::time_point LastArrival() const {
    return Clock::time_point(Clock::duration(last_.load()));
  }
  std::string received;  // read after the sink has been taken down

 private:
  void Serve() {
    platform::Ipv4Endpoint peer;
    int connection = platform::kNoSocket;
    if (!platform::AcceptFrom(fd_, connection, peer)) return;
    connection_ = connection;
    connected_ = true;
    uint8_t buffer[65536];
    for (;;) {
      platform::SysResult failure;
      long n = platform::ReceiveSome(connection_, buffer, sizeof buffer, nullptr, failure);
      if (n <= 0) break;
      received.append(reinterpret_cast<char*>(buffer), static_cast<size_t>(n));
      bytes_ += static_cast<size_t>(n);
      last_ = Clock::now().time_since_epoch().count();
    }
  }

  int fd_ = platform::kNoSocket;
  std::atomic<int> connection_{platform::kNoSocket};
  platform::Ipv4Endpoint local_;
  std::atomic<bool> connected_{false};
  std::atomic<size_t> bytes_{0};
  std::atomic<Clock::rep> last_{0};
  std::thread thread_;
};

pid_t Spawn(const std::vector<std::string>& args, const std::string& home) {
  pid_t pid = fork();
  if (pid != 0) return pid;
  setenv("WAVETRACE_HOME", home.c_str(), 1);
  int null = open("/dev/null", O_RDWR);
  dup2(null, 1);
  dup2(null, 2);
  std::vector<char*> argv;
  for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  _exit(127);
}

void Forwarding(benchmark::State& state, bool socat) {
  const std::string data = DeviceData(bench::BytesToSend(32));
  std::string home = (std::filesystem::temp_directory_path() / "wavetrace-bench-XXXXXX").string();
  if (!mkdtemp(home.data())) return state.SkipWithError("no temporary folder");
  for (auto _ : state) {
    platform::PtyPair pty;
    Sink sink;
    std::string server = "127.0.0.1:" + std::to_string(sink.Port());
    std::vector<std::string> args =
        socat ? std::vector<std::string>{"socat", "-u", "OPEN:" + pty.SlavePath() + ",raw,echo=0",
                                         "TCP:" + server}
              : std::vector<std::string>{WAVETRACE_CLI_PATH, "--port",  pty.SlavePath(),   "--baud",
                                         "115200",           "--relay", "tcp://" + server, "--quiet"};
    pid_t child = Spawn(args, home);
    auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!sink.Connected() && Clock::now() < deadline)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (!sink.Connected()) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
      state.SkipWithError("the forwarder did not connect");
      break;
    }
    auto start = Clock::now();
    pty.Write(data);
    // Done when everything arrived, or nothing more came for a second.
    while (sink.Bytes() < data.size()) {
      auto idleSince = std::max(sink.LastArrival(), start);
      if (Clock::now() - idleSince > std::chrono::seconds(1)) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    double seconds = std::chrono::duration<double>(sink.LastArrival() - start).count();
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    sink.Stop();
    size_t arrived = sink.received.size();
    state.SetIterationTime(seconds > 0 ? seconds : 1e-9);
    state.counters["MiB/s"] = static_cast<double>(arrived) / (1 << 20) / (seconds > 0 ? seconds : 1e-9);
    state.counters["bytes_lost"] = static_cast<double>(data.size() - std::min(arrived, data.size()));
    state.counters["in_order"] = data.compare(0, arrived, sink.received) == 0 ? 1 : 0;
  }
  std::filesystem::remove_all(home);
}

}  // namespace

BENCHMARK_CAPTURE(Forwarding, wavetrace_relay, false)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Forwarding, socat, true)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
