#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace wavetrace::core {

// The small wide string used for keywords, driver names and paths: null-safe,
// with a character search that answers -1, and in-place upper-casing (every
// keyword comparison upper-cases first).
class WideString {
 public:
  WideString() = default;
  WideString(const char16_t* text) : text_(text ? text : u"") {}  // NOLINT: implicit by design
  WideString(std::u16string_view text) : text_(text) {}           // NOLINT
  explicit WideString(std::u16string text) : text_(std::move(text)) {}

  // Length of a possibly null, zero-terminated text.
  static size_t Length(const char16_t* text);

  [[nodiscard]] size_t Length() const { return text_.size(); }
  [[nodiscard]] bool Empty() const { return text_.empty(); }
  [[nodiscard]] const std::u16string& Str() const { return text_; }
  [[nodiscard]] std::u16string_view View() const { return text_; }
  [[nodiscard]] const char16_t* CStr() const { return text_.c_str(); }

  void Copy(const char16_t* text) { text_ = text ? text : u""; }
  void Append(std::u16string_view text) { text_.append(text); }
  void Append(const char16_t* text) {
    if (text) text_.append(text);
  }
  [[nodiscard]] int Compare(std::u16string_view other) const { return text_.compare(other); }
  bool operator==(const WideString& other) const = default;

  // Index of the first ch at or after start, or -1.
  [[nodiscard]] int Find(char16_t ch, size_t start = 0) const;
  // Index of the first occurrence of text at or after start, or -1.
  [[nodiscard]] int Find(std::u16string_view text, size_t start = 0) const;

  // Upper-cases ASCII and Latin-1 letters in place (the code page's letters).
  WideString& UpperCaseInPlace();
  // The text in the 8-bit code page (a scratch copy for byte-oriented APIs).
  [[nodiscard]] std::string Narrow() const;

 private:
  std::u16string text_;
};

char16_t ToUpper(char16_t ch);

}  // namespace wavetrace::core
