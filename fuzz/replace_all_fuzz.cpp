// Differential check of the search-and-replace stage: the library applies a
// "Replace all" rule in one pass; this target replays the rule one match at
// a time, exactly as a single replacement step is described, and requires
// the same bytes, the same length and the same byte just past the end.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/byte_search.h"
#include "rx/search_replace.h"

namespace {

struct ModelBlock {
  std::vector<uint8_t> bytes;  // length + 2 spare
  int64_t length = 0;
};

// The bytes up to the first zero among them.
std::string Cut(const std::string& piece) {
  return piece.substr(0, piece.find('\0'));
}

void ModelStep(ModelBlock& block, int64_t p, const std::string& search, const std::string& replace) {
  const auto s = static_cast<int64_t>(search.size());
  const auto r = static_cast<int64_t>(replace.size());
  const int64_t n = block.length;
  if (r > s) {
    const auto old = block.bytes.begin();
    const std::string composed = Cut({old, old + p}) + Cut(replace) + Cut({old + p + s, old + n});
    block.bytes.assign(static_cast<size_t>(n + r - s + 2), 0);
    std::copy(composed.begin(), composed.end(), block.bytes.begin());
    block.length = n + r - s;
    return;
  }
  for (int64_t k = 0; k < r; ++k) block.bytes[p + k] = static_cast<uint8_t>(replace[k]);
  if (r == s) return;
  for (int64_t k = 0; k < n - p - s; ++k) block.bytes[p + r + k] = block.bytes[p + s + k];
  for (int64_t k = 0; k < s - r; ++k) block.bytes[n - k] = 0;
  block.length = n - (s - r);
}

// Runs the rule until no match is left; false when it has not ended after
// maxSteps replacements (a rule that feeds itself).
bool ModelRule(ModelBlock& block, const std::string& search, const std::string& replace, bool all,
               bool forward, int maxSteps) {
  int64_t start = 0;
  for (int step = 0; step < maxSteps; ++step) {
    const int64_t p = wavetrace::rx::FindBytes(block.bytes.data(), block.length,
                                               reinterpret_cast<const uint8_t*>(search.data()),
                                               static_cast<int64_t>(search.size()), start, forward);
    if (p < 0) return true;
    ModelStep(block, p, search, replace);
    if (!all) return true;
    start = p + 1;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  if (size < 3) return 0;
  // Four symbols only, zero included, so matches, overlaps and zero cuts are
  // frequent.
  const auto symbol = [](uint8_t b) { return static_cast<char>("ab\0\r"[b & 3]); };
  const uint8_t mode = data[0] % 3;
  const size_t searchLength = 1 + data[1] % 4;
  const size_t replaceLength = data[2] % 7;
  if (size < 3 + searchLength + replaceLength) return 0;
  std::string search, replace, input;
  for (size_t i = 0; i < searchLength; ++i) search += symbol(data[3 + i]);
  for (size_t i = 0; i < replaceLength; ++i) replace += symbol(data[3 + searchLength + i]);
  for (size_t i = 3 + searchLength + replaceLength; i < size && input.size() < 64; ++i)
    input += symbol(data[i]);

  core::AppState state;
  state.Data.SnR_count = 1;
  core::SnRRule& rule = state.Data.SnR[1];
  std::copy(search.begin(), search.end(), rule.SearchBytes.begin());
  std::copy(replace.begin(), replace.end(), rule.ReplaceBytes.begin());
  rule.SearchLength = static_cast<int32_t>(searchLength);
  rule.ReplaceLength = static_cast<int32_t>(replaceLength);
  rule.Rall = mode == 0, rule.Rfo = mode == 1, rule.Rlo = mode == 2;

  // Rules that feed themselves run to the library's bounds, which takes a
  // while; the unit tests cover them, the fuzzer skips them.
  ModelBlock model{{input.begin(), input.end()}, static_cast<int64_t>(input.size())};
  model.bytes.resize(input.size() + 2, 0);
  if (!ModelRule(model, search, replace, mode == 0, mode != 2, 1000)) return 0;

  core::DataBlock block;
  if (core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(input.size())) != 0) return 0;
  std::copy(input.begin(), input.end(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(input.size());
  core::SharedAllocator memory(state);
  rx::SharedStampSource stamps(state);
  if (!rx::SearchAndReplace(core::RxSettingsOf(state), memory, stamps, block)) std::abort();
  if (model.length != block.Length) std::abort();
  if (!std::equal(model.bytes.begin(), model.bytes.begin() + model.length + 1, block.Buffer.Data()))
    std::abort();
  return 0;
}
