#include "app/reference_screens.h"

#include <array>
#include <cstdio>

#include "core/code_page.h"

namespace wavetrace::app {
namespace {

constexpr char16_t kNoGlyph = u'\x0001';
constexpr uint8_t kNoBreakSpaceRow = 160;

constexpr std::array<const char*, 32> kControlNames = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL",
                                                       "BS",  "HT",  "LF",  "VT",  "FF",  "CR",  "SO",  "SI",
                                                       "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB",
                                                       "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

// The cursor keys whose virtual key codes are 37..40.
constexpr std::array<const char*, 4> kCursorKeys = {"LEFT", "UP", "RIGT", "DOWN"};

std::u16string Row(int value) {
  char numbers[16];
  std::snprintf(numbers, sizeof numbers, "%03d    %02X", value, value);
  std::u16string row;
  if (value == 0 || value == ' ') {
    row = u"         " + core::BytesToWide(numbers) + u"     " + (value == 0 ? u"NUL" : u"Sp");
  } else {
    char16_t glyph = core::ByteToWide(static_cast<uint8_t>(value));
    if (value < ' ' || value == 127) glyph = kNoGlyph;
    if (value == kNoBreakSpaceRow) glyph = u'p';
    row = u"   " + std::u16string(1, glyph) + u"     " + core::BytesToWide(numbers);
    if (value < ' ') {
      char name[8];
      std::snprintf(name, sizeof name, "%-3s", kControlNames[static_cast<size_t>(value)]);
      row += u"     " + core::BytesToWide(name);
    } else if (value >= 37 && value <= 40) {
      row += u"     " + core::BytesToWide(kCursorKeys[static_cast<size_t>(value - 37)]);
    }
  }
  return row + u" ";
}

}  // namespace

std::vector<std::u16string> AsciiChartRows(bool variantB) {
  std::vector<std::u16string> rows;
  rows.reserve(kAsciiChartRows);
  for (int value = 0; value < kAsciiChartRows; ++value) {
    std::u16string row = Row(value);
    rows.push_back(variantB ? row.substr(1) : row);
  }
  return rows;
}

bool AsciiChartVariantB(const core::AppState& state) {
  return state.Data.RxFullScreen != 0;
}

PinoutPicture PinoutPictureFor(int screenWidth) {
  return screenWidth < 241 ? PinoutPicture::kPortrait : PinoutPicture::kLandscape;
}

}  // namespace wavetrace::app
