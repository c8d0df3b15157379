#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/allocation.h"
#include "core/buffer.h"
#include "core/published_settings.h"

namespace wavetrace::rx {

// Characters the receive postamble field accepts.
inline constexpr size_t kPostambleFieldChars = 16;
// Characters read back from the field when the page is applied (a 14-slot
// buffer with its terminator); a longer field loses its tail then.
inline constexpr size_t kPostambleApplyChars = 13;

// Stage 4: appends the parsed receive postamble to the block. The block is
// copied up to its first zero byte, the postamble's bytes follow there, and
// the rest is zero; the length is the old length plus PostambleLengthRX
// whatever the copy kept. Returns false when the new buffer cannot be had,
// leaving the block without the postamble.
bool AppendPostamble(const core::RxSettings& settings, core::BlockAllocator& memory, core::DataBlock& block);

// Bytes and length from wcszPostambleKeysRX, as the configuration loader
// rebuilds them.
void ReparsePostambleRX(core::DataSettings& data);

// The Filters page's apply: keeps at most 13 characters of the field as the
// keys text and derives the parsed bytes and PostambleLengthRX from them.
void ApplyPostambleField(core::DataSettings& data, std::u16string_view field);

// The named keys of the "Add..." list.
struct PostambleKey {
  std::u16string_view Name;
  std::u16string_view Text;
};
std::span<const PostambleKey> PostambleKeys();

// "Add...": appends the key's text when the field stays below 17 characters.
// Returns false (field unchanged) otherwise or for an unknown index.
bool AddPostambleKey(std::u16string& field, size_t keyIndex);

}  // namespace wavetrace::rx
