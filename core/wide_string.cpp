#include "core/wide_string.h"

#include "core/code_page.h"

namespace wavetrace::core {

size_t WideString::Length(const char16_t* text) {
  if (!text) return 0;
  size_t n = 0;
  while (text[n]) ++n;
  return n;
}

int WideString::Find(char16_t ch, size_t start) const {
  auto pos = text_.find(ch, start);
  return pos == std::u16string::npos ? -1 : static_cast<int>(pos);
}

int WideString::Find(std::u16string_view text, size_t start) const {
  auto pos = text_.find(text, start);
  return pos == std::u16string::npos ? -1 : static_cast<int>(pos);
}

char16_t ToUpper(char16_t ch) {
  if (ch >= u'a' && ch <= u'z') return static_cast<char16_t>(ch - 32);
  // Latin-1 lower-case letters, except the division sign and y-diaeresis.
  if (ch >= 0xE0 && ch <= 0xFE && ch != 0xF7) return static_cast<char16_t>(ch - 32);
  if (ch == 0xFF) return 0x178;
  if (ch == 0x161 || ch == 0x153 || ch == 0x17E) return static_cast<char16_t>(ch - 1);
  return ch;
}

WideString& WideString::UpperCaseInPlace() {
  for (auto& ch : text_) ch = ToUpper(ch);
  return *this;
}

std::string WideString::Narrow() const {
  return WideToBytes(text_);
}

}  // namespace wavetrace::core
