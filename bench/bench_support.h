#pragma once

// What the end-to-end benchmarks share: how much to send and what.

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>

namespace wavetrace::bench {

// WAVETRACE_BENCH_MIB overrides the amount sent (defaultMiB otherwise).
inline size_t BytesToSend(size_t defaultMiB) {
  const char* mib = std::getenv("WAVETRACE_BENCH_MIB");
  return (mib ? std::strtoul(mib, nullptr, 10) : defaultMiB) << 20;
}

// All 256 byte values in a fixed pseudo-random order, zero, CR and LF
// included: with the views off the program passes them on as they come.
inline std::string MixedBytes(size_t bytes) {
  std::string data(bytes, '\0');
  uint32_t seed = 7;
  for (auto& byte : data) {
    seed = seed * 1103515245u + 12345u;
    byte = static_cast<char>(seed >> 16);
  }
  return data;
}

// A fresh folder for one run of the program and, in it, a configuration with
// the views off, so the program passes the bytes on as they come.
struct RawConfig {
  std::string Home;    // empty on failure
  std::string Config;  // the configuration file inside Home
};

inline RawConfig RawConfigHome() {
  std::string home = (std::filesystem::temp_directory_path() / "wavetrace-bench-XXXXXX").string();
  if (!mkdtemp(home.data())) return {};
  const std::string config = home + "/raw.cfg.txt";
  std::ofstream(config, std::ios::binary)
      << "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nmodeASCII=0\r\nmodeBINARY=0\r\n"
      << std::string(64, ';') << "\r\n";
  return {home, config};
}

// In a forked child: cat copies the pty's slave, in raw mode, to its output.
[[noreturn]] inline void ExecCatOfRawLine(const std::string& slavePath) {
  int slave = open(slavePath.c_str(), O_RDONLY | O_NOCTTY);
  termios tio{};
  tcgetattr(slave, &tio);
  cfmakeraw(&tio);
  tcsetattr(slave, TCSANOW, &tio);
  dup2(slave, 0);
  execlp("cat", "cat", static_cast<char*>(nullptr));
  _exit(127);
}

// Reads fd until `text` has come (true), it closes or 20 s pass.
inline bool WaitForText(int fd, std::string_view text) {
  std::string seen;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (seen.find(text) == std::string::npos && std::chrono::steady_clock::now() < deadline) {
    pollfd pfd{fd, POLLIN, 0};
    char buffer[4096];
    if (poll(&pfd, 1, 50) <= 0) continue;
    ssize_t n = read(fd, buffer, sizeof buffer);
    if (n <= 0) return false;
    seen.append(buffer, static_cast<size_t>(n));
  }
  return seen.find(text) != std::string::npos;
}

// The end-to-end runs are timed by the benchmark itself (the wall clock from
// the first byte written to the last byte read), three of them, in ms.
inline void ThreeTimedRuns(benchmark::internal::Benchmark* run) {
  run->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
}

}  // namespace wavetrace::bench
