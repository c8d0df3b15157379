// Received bytes from a serial line (a pty) into a log file: wavetrace-cli
// recording with "Never drop log data" beside cat copying the same kind of pty
// to a file, in the same run. The time runs from the first byte written to the
// last byte in the file; lost_bytes counts what the file does not hold as sent;
// tail_ms is how long the file took to complete after the pty had taken the
// last byte. The program writes its log cache (64 KiB) when it is full and
// otherwise every 1.4 s, so the last cache's worth may wait that long:
// sustained_MiBps leaves it out (the time until all but the last 64 KiB were
// in the file).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "bench/bench_support.h"
#include "platform/pty.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kPieceBytes = size_t{64} << 10;

using wavetrace::bench::MixedBytes;

size_t FileSize(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? static_cast<size_t>(info.st_size) : 0;
}

constexpr size_t kCacheBytes = size_t{64} << 10;

struct Run {
  double seconds = 0;
  double tailSeconds = 0;
  double sustainedSeconds = 0;  // until all but the last kCacheBytes were in the file
  size_t lost = 0;
};

Run Measure(bool cli, const std::string& data) {
  wavetrace::platform::PtyPair line;
  const auto [home, config] = wavetrace::bench::RawConfigHome();
  if (home.empty()) return {0, 0, 0, data.size()};
  const std::string logPath = home + "/run.log.txt";
  int err[2];
  if (pipe2(err, O_CLOEXEC) != 0) return {0, 0, 0, data.size()};
  pid_t pid = fork();
  if (pid == 0) {
    dup2(err[1], 2);
    if (!cli) {
      int file = open(logPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      dup2(file, 1);
      wavetrace::bench::ExecCatOfRawLine(line.SlavePath());
    }
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    setenv("WAVETRACE_HOME", home.c_str(), 1);
    execl(WAVETRACE_CLI_PATH, "wavetrace-cli", "--port", line.SlavePath().c_str(), "--config", config.c_str(),
          "--record", logPath.c_str(), "--never-drop", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(err[1]);
  // Waits until RECORD is on, so that the line is in raw mode and the log open
  // before the first byte is written.
  bool ready = true;
  if (cli) {
    ready = wavetrace::bench::WaitForText(err[0], "RECORD all data, activated.");
  } else {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }

  Run run;
  if (ready) {
    auto start = Clock::now();
    std::atomic<int64_t> writtenAt{0};  // ns after start, 0 while writing
    std::thread writer([&] {
      for (size_t at = 0; at < data.size(); at += kPieceBytes) line.Write(data.substr(at, kPieceBytes));
      writtenAt = std::max<int64_t>(1, (Clock::now() - start).count());
    });
    // The file's size is polled; ten seconds without growth end the wait.
    size_t size = 0;
    auto lastGrowth = start;
    while (size < data.size() && Clock::now() - lastGrowth < std::chrono::seconds(10)) {
      std::this_thread::sleep_for(std::chrono::microseconds(500));
      size_t now = FileSize(logPath);
      if (now != size) {
        if (now + kCacheBytes >= data.size() && size + kCacheBytes < data.size()) {
          run.sustainedSeconds = std::chrono::duration<double>(Clock::now() - start).count();
        }
        size = now;
        lastGrowth = Clock::now();
      }
    }
    writer.join();
    run.seconds = std::chrono::duration<double>(lastGrowth - start).count();
    run.tailSeconds = std::max(0.0, run.seconds - static_cast<double>(writtenAt.load()) * 1e-9);
  }
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
  close(err[0]);

  std::ifstream file(logPath, std::ios::binary);
  std::string logged((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  size_t common = std::min(logged.size(), data.size());
  for (size_t i = 0; i < common; ++i) run.lost += logged[i] != data[i];
  run.lost += data.size() - common;
  std::filesystem::remove_all(home);
  return run;
}

void BM_PtyToLogFile(benchmark::State& state, bool cli) {
  static const std::string data = MixedBytes(wavetrace::bench::BytesToSend(64));
  size_t lost = 0;
  double tail = 0;
  double sustained = 0;
  for (auto _ : state) {
    Run run = Measure(cli, data);
    state.SetIterationTime(run.seconds);
    lost += run.lost;
    tail += run.tailSeconds;
    sustained += run.sustainedSeconds;
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
  state.counters["lost_bytes"] = static_cast<double>(lost);
  const double runs = static_cast<double>(state.iterations());
  state.counters["tail_ms"] = tail * 1000 / runs;
  state.counters["sustained_MiBps"] =
      sustained > 0 ? static_cast<double>(data.size() - kCacheBytes) * runs / sustained / (1 << 20) : 0;
}

BENCHMARK_CAPTURE(BM_PtyToLogFile, cat, false)->Apply(wavetrace::bench::ThreeTimedRuns);
BENCHMARK_CAPTURE(BM_PtyToLogFile, wavetrace_cli_never_drop, true)->Apply(wavetrace::bench::ThreeTimedRuns);

}  // namespace

BENCHMARK_MAIN();
