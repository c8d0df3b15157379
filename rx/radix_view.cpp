#include "rx/radix_view.h"

#include <array>
#include <cstring>

#include "core/allocation.h"
#include "rx/bracket_escapes.h"

namespace wavetrace::rx {
namespace {

constexpr size_t kMaxCell = 10;

// Every byte value rendered once per block; the block loop then only copies
// fixed-width cells, which keeps the view close to memory speed.
struct RadixTable {
  std::array<std::array<uint8_t, kMaxCell>, 256> Cells{};
  std::array<bool, 256> Passes{};
  size_t Width = 0;
};

int32_t DigitsFor(int32_t radix) {
  if (radix == 2) return 8;
  if (radix == 8 || radix == 10) return 3;
  return 2;
}

void BuildTable(const core::DataSettings& data, RadixTable& table) {
  const int32_t radix = EffectiveBase(data);
  const int32_t digits = DigitsFor(radix);
  const bool brackets = data.BinBrackets == 0;
  table.Width = static_cast<size_t>(digits) + (brackets ? 2 : 0);
  for (int value = 0; value < 256; ++value) {
    auto& cell = table.Cells[value];
    size_t at = 0;
    if (brackets) cell[at++] = '[';
    int rest = value;
    for (int d = digits - 1; d >= 0; --d) {
      cell[at + d] = static_cast<uint8_t>("0123456789ABCDEF"[rest % radix]);
      rest /= radix;
    }
    at += digits;
    if (brackets) cell[at] = ']';
    table.Passes[value] = data.NonChars == 1 && value >= 33 && value <= 126;
  }
}

template <size_t Width>
size_t Render(const RadixTable& table, const uint8_t* in, uint32_t length, uint8_t* out) {
  uint8_t* cursor = out;
  for (uint32_t i = 0; i < length; ++i) {
    const uint8_t byte = in[i];
    if (table.Passes[byte]) {
      *cursor++ = byte;
    } else {
      std::memcpy(cursor, table.Cells[byte].data(), Width);
      cursor += Width;
    }
  }
  return static_cast<size_t>(cursor - out);
}

}  // namespace

int32_t RadixBytesPerByte(int32_t radix) {
  if (radix == 2) return 10;
  if (radix == 8 || radix == 10) return 5;
  return 4;
}

uint32_t ConvertToRadix(core::AppState& state, core::DataBlock& block) {
  const int32_t radix = EffectiveBase(state.Data);
  core::CharBuffer view;
  const int64_t size = int64_t{block.Length} * RadixBytesPerByte(radix);
  if (core::AllocCharBuffer(state, view, size) != 0) return block.Length;

  RadixTable table;
  BuildTable(state.Data, table);
  const uint8_t* in = block.Buffer.Data();
  uint8_t* out = view.Data();
  size_t written = 0;
  switch (table.Width) {
    case 2:
      written = Render<2>(table, in, block.Length, out);
      break;
    case 3:
      written = Render<3>(table, in, block.Length, out);
      break;
    case 4:
      written = Render<4>(table, in, block.Length, out);
      break;
    case 5:
      written = Render<5>(table, in, block.Length, out);
      break;
    case 8:
      written = Render<8>(table, in, block.Length, out);
      break;
    default:
      written = Render<10>(table, in, block.Length, out);
      break;
  }
  core::FreeBuffer(state, block.Buffer);
  block.Buffer = std::move(view);
  block.Length = static_cast<uint32_t>(written);
  return block.Length;
}

}  // namespace wavetrace::rx
