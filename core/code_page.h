#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace wavetrace::core {

// The program's 8-bit code page: Windows-1252, made bijective by mapping its
// five undefined bytes (0x81, 0x8D, 0x8F, 0x90, 0x9D) to the C1 controls of
// the same value. Every byte string survives the trip to wide text and back,
// and one byte is always one character.
char16_t ByteToWide(uint8_t byte);
// The byte for a character, or -1 when the code page has none.
int WideToByte(char16_t ch);

std::u16string BytesToWide(std::string_view bytes);
std::u16string BytesToWide(const uint8_t* bytes, size_t count);
// Characters outside the code page become '?'.
std::string WideToBytes(std::u16string_view text);

// File names and the command line are UTF-8 on Linux.
std::u16string Utf8ToWide(std::string_view utf8);
std::string WideToUtf8(std::u16string_view text);

}  // namespace wavetrace::core
