#include "rx/postamble.h"

#include <algorithm>
#include <array>

#include "core/allocation.h"
#include "core/prepared_settings.h"
#include "rx/bounded_copy.h"

namespace wavetrace::rx {
namespace {

// The arrow entries are the arrow keys' codes, which as data are the
// characters '%', '&', '\'' and '('; the transmit side shares them.
constexpr std::array<PostambleKey, 9> kKeys = {{
    {u"Enter", u"[0D]"},
    {u"LineFeed", u"[0A]"},
    {u"Comma", u","},
    {u"Tab", u"[09]"},
    {u"Down", u"[28]"},
    {u"Right", u"[27]"},
    {u"Left", u"[25]"},
    {u"Up", u"[26]"},
    {u"Esc", u"[1B]"},
}};

}  // namespace

bool AppendPostamble(const core::RxSettings& settings, core::BlockAllocator& memory, core::DataBlock& block) {
  const auto postambleLength = static_cast<uint32_t>(std::clamp<int32_t>(
      settings.PostambleLengthRX, 0, static_cast<int32_t>(settings.PostambleBytesRX.size())));
  core::CharBuffer joined;
  if (memory.Alloc(joined, int64_t{block.Length} + postambleLength) != 0) return false;
  uint8_t* cursor = AppendUntilZero(joined.Data(), block.Buffer.Data(), block.Length);
  AppendUntilZero(cursor, settings.PostambleBytesRX.data(), postambleLength);
  memory.Free(block.Buffer);
  block.Buffer = std::move(joined);
  block.Length += postambleLength;
  return true;
}

void ReparsePostambleRX(core::DataSettings& data) {
  data.PostambleLengthRX =
      core::ParsePostambleText(data.wcszPostambleKeysRX, core::kPostambleLoadBytes, data.PostambleBytesRX);
}

void ApplyPostambleField(core::DataSettings& data, std::u16string_view field) {
  data.wcszPostambleKeysRX = field.substr(0, kPostambleApplyChars);
  data.PostambleLengthRX =
      core::ParsePostambleText(data.wcszPostambleKeysRX, kPostambleApplyChars, data.PostambleBytesRX);
}

std::span<const PostambleKey> PostambleKeys() {
  return kKeys;
}

bool AddPostambleKey(std::u16string& field, size_t keyIndex) {
  if (keyIndex >= kKeys.size()) return false;
  const std::u16string_view text = kKeys[keyIndex].Text;
  if (field.size() + text.size() >= kPostambleFieldChars + 1) return false;
  field += text;
  return true;
}

}  // namespace wavetrace::rx
