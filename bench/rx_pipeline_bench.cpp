// Throughput of the receive pipeline on 8192-byte blocks (the receive
// thread's read size), beside a plain copy of the same blocks.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/receive_pipeline.h"
#include "rx/replace_rules.h"

namespace {

using namespace wavetrace;

constexpr size_t kBlockBytes = 8192;
constexpr size_t kDistinctBlocks = 16;
// Hot: the 16 blocks stay in the cache. Cold: the same blocks repeated over
// 64 MiB, so every block comes from memory as it would from a driver buffer.
constexpr size_t kHotBlocks = kDistinctBlocks;
constexpr size_t kColdBlocks = (size_t{64} << 20) / kBlockBytes;

// Text lines as a sensor would send them, with runs of binary bytes between.
// No zero bytes: a zero cuts the copies of a growing rule, after which the
// rest of the block is zeros and the figures would describe that instead.
std::vector<uint8_t> MakeBlocks(size_t count) {
  std::mt19937 random(8192);
  std::uniform_int_distribution<int> byte(1, 255);
  std::vector<uint8_t> blocks;
  for (size_t b = 0; b < kDistinctBlocks; ++b) {
    std::string block;
    while (block.size() < kBlockBytes) {
      if (random() % 3 == 0) {
        for (int i = 0; i < 48; ++i) block += static_cast<char>(byte(random));
      } else {
        block +=
            "T=" + std::to_string(random() % 1000) + "\tRH=" + std::to_string(random() % 100) + "\tOK\r\n";
      }
    }
    blocks.insert(blocks.end(), block.begin(), block.begin() + kBlockBytes);
  }
  while (blocks.size() < count * kBlockBytes) {
    blocks.insert(blocks.end(), blocks.begin(), blocks.begin() + kDistinctBlocks * kBlockBytes);
  }
  blocks.resize(count * kBlockBytes);
  return blocks;
}

enum View { kAscii, kHex, kBinary };

void Configure(core::AppState& state, View view, bool rules) {
  core::DataSettings& data = state.Data;
  data.modeASCII = view == kAscii;
  data.modeBINARY = view != kAscii;
  data.Base = view == kBinary ? 2 : 16;
  data.BinBrackets = 0;
  data.NonChars = 0;
  data.FilterNP = 0;
  if (rules) {
    // CR LF becomes LF (a shrinking rule) and a TAB four blanks (a growing one).
    rx::RuleFields first;
    first.SearchFor = u"[0D][0A]";
    first.ReplaceWith = u"[0A]";
    rx::AddRule(data, first);
    rx::RuleFields second;
    second.SearchFor = u"[09]";
    second.ReplaceWith = u"    ";
    rx::ApplyRulePage(data, second);
  }
}

void BM_Memcpy(benchmark::State& run) {
  const size_t count = run.range(0) ? kColdBlocks : kHotBlocks;
  const auto blocks = MakeBlocks(count);
  core::AppState state;
  size_t next = 0;
  for (auto _ : run) {
    core::CharBuffer copy;
    core::AllocCharBuffer(state, copy, kBlockBytes);
    std::memcpy(copy.Data(), blocks.data() + next * kBlockBytes, kBlockBytes);
    benchmark::DoNotOptimize(copy.Data());
    next = (next + 1) % count;
  }
  run.SetBytesProcessed(static_cast<int64_t>(run.iterations() * kBlockBytes));
}
BENCHMARK(BM_Memcpy)->ArgName("cold")->Arg(0)->Arg(1);

void BM_ProcessReceivedData(benchmark::State& run) {
  const size_t count = run.range(2) ? kColdBlocks : kHotBlocks;
  const auto blocks = MakeBlocks(count);
  core::AppState state;
  Configure(state, static_cast<View>(run.range(0)), run.range(1) != 0);
  core::PublishSettings(state);
  size_t next = 0;
  for (auto _ : run) {
    core::DataBlock block;
    core::AllocCharBuffer(state, block.Buffer, kBlockBytes);
    std::memcpy(block.Buffer.Data(), blocks.data() + next * kBlockBytes, kBlockBytes);
    block.Length = kBlockBytes;
    // As the receive thread does: the published settings loaded once per block.
    const auto settings = state.PublishedRx.Load();
    benchmark::DoNotOptimize(rx::ProcessReceivedData(state, *settings, block));
    next = (next + 1) % count;
  }
  run.SetBytesProcessed(static_cast<int64_t>(run.iterations() * kBlockBytes));
}
// Arguments: view (0 ASCII, 1 hex with brackets, 2 binary), rules (0 none,
// 1 two), cold (0 cached blocks, 1 blocks from memory).
BENCHMARK(BM_ProcessReceivedData)
    ->ArgNames({"view", "rules", "cold"})
    ->ArgsProduct({{kAscii, kHex, kBinary}, {1, 0}, {0, 1}});

}  // namespace

BENCHMARK_MAIN();
