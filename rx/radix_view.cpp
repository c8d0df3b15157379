#include "rx/radix_view.h"

#include <array>
#include <cstring>

#include "core/allocation.h"
#include "rx/bracket_escapes.h"

namespace wavetrace::rx {
namespace {

// Every byte value rendered at compile time for each radix and bracket
// choice; the block loop then only copies fixed-width cells, which keeps the
// view close to memory speed.
template <size_t Width>
using CellTable = std::array<std::array<uint8_t, Width>, 256>;

template <int Radix, int Digits, bool Brackets>
constexpr auto MakeCells() {
  constexpr size_t kWidth = Digits + (Brackets ? 2 : 0);
  CellTable<kWidth> cells{};
  for (int value = 0; value < 256; ++value) {
    size_t at = 0;
    if (Brackets) cells[value][at++] = '[';
    int rest = value;
    for (int d = Digits - 1; d >= 0; --d) {
      cells[value][at + d] = static_cast<uint8_t>("0123456789ABCDEF"[rest % Radix]);
      rest /= Radix;
    }
    at += Digits;
    if (Brackets) cells[value][at] = ']';
  }
  return cells;
}

template <int Radix, int Digits, bool Brackets>
inline constexpr auto kCells = MakeCells<Radix, Digits, Brackets>();

// With NonChars 1 the bytes '!'..'~' pass as they are.
template <bool VisiblePass, size_t Width>
size_t Render(const CellTable<Width>& cells, const uint8_t* in, uint32_t length, uint8_t* out) {
  uint8_t* cursor = out;
  uint32_t i = 0;
  if constexpr (!VisiblePass && Width <= 4) {
    // Two cells per store: the hex view's common case.
    for (; i + 1 < length; i += 2) {
      uint8_t pair[2 * Width];
      std::memcpy(pair, cells[in[i]].data(), Width);
      std::memcpy(pair + Width, cells[in[i + 1]].data(), Width);
      std::memcpy(cursor, pair, sizeof pair);
      cursor += sizeof pair;
    }
  }
  for (; i < length; ++i) {
    const uint8_t byte = in[i];
    if (VisiblePass && static_cast<uint8_t>(byte - 33) < 94) {
      *cursor++ = byte;
    } else {
      std::memcpy(cursor, cells[byte].data(), Width);
      cursor += Width;
    }
  }
  return static_cast<size_t>(cursor - out);
}

template <int Radix, int Digits>
size_t RenderIn(const core::RxSettings& settings, const uint8_t* in, uint32_t length, uint8_t* out) {
  const bool brackets = settings.BinBrackets == 0;
  const bool visiblePass = settings.NonChars == 1;
  if (brackets) {
    const auto& cells = kCells<Radix, Digits, true>;
    return visiblePass ? Render<true>(cells, in, length, out) : Render<false>(cells, in, length, out);
  }
  const auto& cells = kCells<Radix, Digits, false>;
  return visiblePass ? Render<true>(cells, in, length, out) : Render<false>(cells, in, length, out);
}

}  // namespace

int32_t RadixBytesPerByte(int32_t radix) {
  if (radix == 2) return 10;
  if (radix == 8 || radix == 10) return 5;
  return 4;
}

uint32_t ConvertToRadix(const core::RxSettings& settings, core::BlockAllocator& memory,
                        core::DataBlock& block) {
  const int32_t radix = EffectiveBase(settings.Base);
  core::CharBuffer view;
  const int64_t size = int64_t{block.Length} * RadixBytesPerByte(radix);
  if (memory.Alloc(view, size) != 0) return block.Length;

  const uint8_t* in = block.Buffer.Data();
  uint8_t* out = view.Data();
  size_t written = 0;
  switch (radix) {
    case 2:
      written = RenderIn<2, 8>(settings, in, block.Length, out);
      break;
    case 8:
      written = RenderIn<8, 3>(settings, in, block.Length, out);
      break;
    case 10:
      written = RenderIn<10, 3>(settings, in, block.Length, out);
      break;
    default:
      written = RenderIn<16, 2>(settings, in, block.Length, out);
      break;
  }
  memory.Free(block.Buffer);
  block.Buffer = std::move(view);
  block.Length = static_cast<uint32_t>(written);
  return block.Length;
}

}  // namespace wavetrace::rx
