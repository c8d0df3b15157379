#pragma once

// What the end-to-end benchmarks share: how much to send and what.

#include <cstdint>
#include <cstdlib>
#include <string>

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

}  // namespace wavetrace::bench
