// Runs the whole receive pipeline with settings taken from the input's first
// bytes and the rest as the received block.
#include <cstdlib>
#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/receive_pipeline.h"

// A rule whose replacement holds its own search text and a zero byte (or a
// time stamp) is replaced one match at a time: every step takes a new block
// one replacement longer and frees the old one, up to kMaxReplaceWorkBytes
// per rule and block. The program frees everything each input took; it is
// the sanitizer's allocator that keeps the churn: freed blocks wait in its
// quarantine (256 MB by default), and a block growing through the size
// classes leaves each class's free list filled with as much as the
// quarantine holds, never given back. One 25-byte input so peaked at 700 MB
// and a run passed 1.2 GB within a minute. A quarantine of 8 MB keeps a run
// near 250 MB without slowing it; use-after-free within an input is still
// caught.
extern "C" const char* __asan_default_options() {
  return "quarantine_size_mb=8";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  size_t at = 0;
  auto byte = [&] { return at < size ? data[at++] : uint8_t{0}; };
  auto fill = [&](uint8_t* out, int32_t& length, int32_t capacity) {
    length = byte() % (capacity + 1);
    for (int32_t i = 0; i < length; ++i) out[i] = byte();
  };
  core::AppState state;
  core::DataSettings& settings = state.Data;
  const uint8_t flags = byte();
  settings.modeASCII = flags & 1;
  settings.modeBINARY = (flags >> 1) & 1;
  int32_t bit = 2;
  for (int32_t* on : {&settings.BinBrackets, &settings.NonChars, &settings.FilterNP, &settings.DisableSnR})
    *on = (flags >> bit++) & 1;
  const int32_t bases[] = {2, 8, 10, 16, 0, 3, 36, -1};
  settings.Base = bases[((flags >> 6) & 3) | ((byte() & 1) << 2)];
  state.Log.DateFormat = byte() % 9;
  state.Log.TimeFormat = byte() % 9;

  settings.SnR_count = byte() % 4;
  for (int i = 1; i <= 2; ++i) {
    core::SnRRule& rule = settings.SnR[i];
    const uint8_t mode = byte();
    rule.Rall = (mode % 3) == 0;
    rule.Rfo = (mode % 3) == 1;
    rule.Rlo = (mode % 3) == 2;
    // Short patterns over few distinct bytes, so rules match often.
    fill(rule.SearchBytes.data(), rule.SearchLength, 4);
    fill(rule.ReplaceBytes.data(), rule.ReplaceLength, 8);
    if (mode & 0x80) {
      const std::string text = "<{TIME_STAMP}>";
      std::copy(text.begin(), text.end(), rule.ReplaceTextBytes.begin());
      rule.ReplaceHasTimeStamp = 1;
    }
  }
  fill(settings.PostambleBytesRX.data(), settings.PostambleLengthRX, 15);

  core::DataBlock block;
  if (core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(size - at)) != 0) return 0;
  std::copy(data + at, data + size, block.Buffer.Data());
  block.Length = static_cast<uint32_t>(size - at);

  const uint32_t length = rx::ProcessReceivedData(state, core::RxSettingsOf(state), block);
  if (length != block.Length || length > block.Buffer.Size()) std::abort();
  return 0;
}
