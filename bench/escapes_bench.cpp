// Bracket escapes over long transmit lines: the time grows with the length
// of the line, not with its square (a line of "[41]" is the worst case, one
// escape every four bytes).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "core/escape_parser.h"

namespace {

void EscapeLine(benchmark::State& state, const std::string& unit) {
  const auto size = static_cast<size_t>(state.range(0));
  std::string line;
  while (line.size() + unit.size() <= size) line += unit;
  std::vector<uint8_t> text;
  for (auto _ : state) {
    state.PauseTiming();
    text.assign(line.begin(), line.end());
    state.ResumeTiming();
    benchmark::DoNotOptimize(wavetrace::core::ParseBracketEscapes(text, 16));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(line.size()));
  state.SetComplexityN(static_cast<int64_t>(line.size()));
}

void EveryFourBytes(benchmark::State& state) {
  EscapeLine(state, "[41]");
}
void MixedText(benchmark::State& state) {
  EscapeLine(state, "AT+CMD=[22]value[22][ZZ][0D][0A]");
}
void OpeningsWithoutClose(benchmark::State& state) {
  EscapeLine(state, "[");
}

BENCHMARK(EveryFourBytes)->Arg(64 << 10)->Arg(1 << 20)->Arg(2 << 20)->Complexity(benchmark::oN);
BENCHMARK(MixedText)->Arg(64 << 10)->Arg(1 << 20)->Arg(2 << 20)->Complexity(benchmark::oN);
BENCHMARK(OpeningsWithoutClose)->Arg(64 << 10)->Arg(1 << 20)->Arg(2 << 20)->Complexity(benchmark::oN);

}  // namespace

BENCHMARK_MAIN();
