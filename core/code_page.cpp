#include "core/code_page.h"

#include <array>

namespace wavetrace::core {
namespace {

constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

char16_t ByteToWide(uint8_t byte) {
  if (byte >= 0x80 && byte < 0xA0) return kHighControls[byte - 0x80];
  return byte;
}

int WideToByte(char16_t ch) {
  if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF)) return ch;
  for (size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == ch) return static_cast<int>(0x80 + i);
  }
  return -1;
}

std::u16string BytesToWide(const uint8_t* bytes, size_t count) {
  std::u16string text(count, u'\0');
  for (size_t i = 0; i < count; ++i) text[i] = ByteToWide(bytes[i]);
  return text;
}

std::u16string BytesToWide(std::string_view bytes) {
  return BytesToWide(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

std::string WideToBytes(std::u16string_view text) {
  std::string bytes(text.size(), '\0');
  for (size_t i = 0; i < text.size(); ++i) {
    int byte = WideToByte(text[i]);
    bytes[i] = static_cast<char>(byte < 0 ? '?' : byte);
  }
  return bytes;
}

std::u16string Utf8ToWide(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) {
    auto lead = static_cast<uint8_t>(utf8[i]);
    uint32_t cp = 0xFFFD;
    size_t len = 1;
    if (lead < 0x80) {
      cp = lead;
    } else if ((lead >> 5) == 0x6) {
      len = 2, cp = lead & 0x1F;
    } else if ((lead >> 4) == 0xE) {
      len = 3, cp = lead & 0x0F;
    } else if ((lead >> 3) == 0x1E) {
      len = 4, cp = lead & 0x07;
    }
    bool valid = len == 1 ? lead < 0x80 : i + len <= utf8.size();
    for (size_t k = 1; valid && k < len; ++k) {
      auto cont = static_cast<uint8_t>(utf8[i + k]);
      if ((cont >> 6) != 0x2) valid = false;
      cp = (cp << 6) | (cont & 0x3F);
    }
    if (!valid) {
      cp = 0xFFFD;
      len = 1;
    }
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
    i += len;
  }
  return out;
}

std::string WideToUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t cp = text[i];
    if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text[++i] - 0xDC00);
    } else if (cp >= 0xD800 && cp < 0xE000) {
      cp = 0xFFFD;
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

}  // namespace wavetrace::core
