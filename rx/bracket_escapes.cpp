#include "rx/bracket_escapes.h"

namespace wavetrace::rx {

int32_t EffectiveBase(int32_t base) {
  switch (base) {
    case 2:
    case 8:
    case 10:
    case 16:
      return base;
    default:
      return 16;
  }
}

int32_t ParseBracketEscapes(const core::AppState& state, std::span<uint8_t> text, int32_t radix) {
  return core::ParseBracketEscapes(text, radix == 0 ? EffectiveBase(state.Data.Base) : radix);
}

int32_t ParseBracketEscapes(const core::AppState& state, std::string& text, int32_t radix) {
  auto bytes = std::span(reinterpret_cast<uint8_t*>(text.data()), text.size());
  const int32_t length = ParseBracketEscapes(state, bytes, radix);
  text.resize(static_cast<size_t>(length));
  return length;
}

}  // namespace wavetrace::rx
