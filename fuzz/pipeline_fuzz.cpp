// Runs the whole receive pipeline with settings taken from the input's first
// bytes and the rest as the received block.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/allocation.h"
#include "core/app_state.h"
#include "rx/receive_pipeline.h"

namespace {

class Reader {
 public:
  Reader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
  const uint8_t* Rest() const { return data_ + at_; }
  size_t RestSize() const { return at_ < size_ ? size_ - at_ : 0; }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
};

void FillBytes(Reader& in, uint8_t* out, int32_t& length, int32_t capacity) {
  length = in.Byte() % (capacity + 1);
  for (int32_t i = 0; i < length; ++i) out[i] = in.Byte();
}

}  // namespace

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
  Reader in(data, size);
  core::AppState state;
  core::DataSettings& settings = state.Data;
  const uint8_t flags = in.Byte();
  settings.modeASCII = flags & 1;
  settings.modeBINARY = (flags >> 1) & 1;
  settings.BinBrackets = (flags >> 2) & 1;
  settings.NonChars = (flags >> 3) & 1;
  settings.FilterNP = (flags >> 4) & 1;
  settings.DisableSnR = (flags >> 5) & 1;
  const int32_t bases[] = {2, 8, 10, 16, 0, 3, 36, -1};
  settings.Base = bases[((flags >> 6) & 3) | ((in.Byte() & 1) << 2)];
  state.Log.DateFormat = in.Byte() % 9;
  state.Log.TimeFormat = in.Byte() % 9;

  settings.SnR_count = in.Byte() % 4;
  for (int i = 1; i <= 2; ++i) {
    core::SnRRule& rule = settings.SnR[i];
    const uint8_t mode = in.Byte();
    rule.Rall = (mode % 3) == 0;
    rule.Rfo = (mode % 3) == 1;
    rule.Rlo = (mode % 3) == 2;
    // Short patterns over few distinct bytes, so rules match often.
    FillBytes(in, rule.SearchBytes.data(), rule.SearchLength, 4);
    FillBytes(in, rule.ReplaceBytes.data(), rule.ReplaceLength, 8);
    if (mode & 0x80) {
      const std::string text = "<{TIME_STAMP}>";
      std::copy(text.begin(), text.end(), rule.ReplaceTextBytes.begin());
      rule.ReplaceHasTimeStamp = 1;
    }
  }
  FillBytes(in, settings.PostambleBytesRX.data(), settings.PostambleLengthRX, 15);

  core::DataBlock block;
  if (core::AllocCharBuffer(state, block.Buffer, static_cast<int64_t>(in.RestSize())) != 0) return 0;
  std::copy(in.Rest(), in.Rest() + in.RestSize(), block.Buffer.Data());
  block.Length = static_cast<uint32_t>(in.RestSize());

  const uint32_t length = rx::ProcessReceivedData(state, core::RxSettingsOf(state), block);
  if (length != block.Length || length > block.Buffer.Size()) std::abort();
  return 0;
}
