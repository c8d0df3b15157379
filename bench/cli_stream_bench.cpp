// Received bytes from a serial line (a pty) to standard output: wavetrace-cli
// beside cat reading the same kind of pty in the same run. Each reader's
// standard output is a pipe that this harness drains and checks; lost_bytes
// counts what did not arrive as sent.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench_support.h"
#include "platform/pty.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kBytes = size_t{64} << 20;
constexpr size_t kPieceBytes = size_t{64} << 10;

struct Run {
  double seconds = 0;
  size_t lost = 0;
};

// Starts the reader on the pty's slave, pushes the bytes into the master as
// fast as it takes them and times until the last one is out of the reader.
Run Measure(bool cli, const std::string& data) {
  wavetrace::platform::PtyPair line;
  const auto [home, config] = wavetrace::bench::RawConfigHome();
  if (home.empty()) return {0, data.size()};
  int out[2];
  int err[2];
  if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) return {0, data.size()};
  pid_t pid = fork();
  if (pid == 0) {
    dup2(out[1], 1);
    dup2(err[1], 2);
    if (!cli) wavetrace::bench::ExecCatOfRawLine(line.SlavePath());
    setenv("WAVETRACE_HOME", home.c_str(), 1);
    execl(WAVETRACE_CLI_PATH, "wavetrace-cli", "--port", line.SlavePath().c_str(), "--config", config.c_str(),
          static_cast<char*>(nullptr));
    _exit(127);
  }
  close(out[1]);
  close(err[1]);
  if (cli) {
    // Bytes that come before the port is in raw mode would be cooked.
    wavetrace::bench::WaitForText(err[0], "Port opened!");
  } else {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
  auto start = Clock::now();
  std::thread writer([&] {
    for (size_t at = 0; at < data.size(); at += kPieceBytes) line.Write(data.substr(at, kPieceBytes));
  });
  size_t received = 0;
  size_t lost = 0;
  auto lastByte = start;
  std::vector<char> buffer(1 << 20);
  while (received < data.size() && Clock::now() - lastByte < std::chrono::seconds(10)) {
    pollfd pfd{out[0], POLLIN, 0};
    if (poll(&pfd, 1, 100) <= 0) continue;
    ssize_t n = read(out[0], buffer.data(), buffer.size());
    if (n <= 0) break;
    size_t count = std::min(static_cast<size_t>(n), data.size() - received);
    for (size_t i = 0; i < count; ++i) lost += buffer[i] != data[received + i];
    received += count;
    lastByte = Clock::now();
  }
  Run run{std::chrono::duration<double>(lastByte - start).count(), lost + data.size() - received};
  writer.join();
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
  close(out[0]);
  close(err[0]);
  std::filesystem::remove_all(home);
  return run;
}

void BM_PtyToStdout(benchmark::State& state, bool cli) {
  static const std::string data = wavetrace::bench::MixedBytes(kBytes);
  size_t lost = 0;
  for (auto _ : state) {
    Run run = Measure(cli, data);
    state.SetIterationTime(run.seconds);
    lost += run.lost;
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
  state.counters["lost_bytes"] = static_cast<double>(lost);
}

BENCHMARK_CAPTURE(BM_PtyToStdout, cat, false)->Apply(wavetrace::bench::ThreeTimedRuns);
BENCHMARK_CAPTURE(BM_PtyToStdout, wavetrace_cli, true)->Apply(wavetrace::bench::ThreeTimedRuns);

}  // namespace

BENCHMARK_MAIN();
