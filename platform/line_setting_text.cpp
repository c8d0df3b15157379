#include "platform/line_setting_text.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <string_view>

namespace wavetrace::platform {
namespace {

// Both directions read these tables, in the order of the enumerations.
constexpr std::string_view kParityLetters = "NOEMS";
constexpr std::array<std::string_view, 3> kStopTexts = {"1", "1.5", "2"};

}  // namespace

bool ParseLineSetting(const std::string& text, LineSettings& line) {
  LineSettings parsed = line;
  unsigned long baud = 0;
  int dataBits = 0;
  char parity = 0;
  char stop[8] = {};
  if (std::sscanf(text.c_str(), "%lu,%d,%c,%7s", &baud, &dataBits, &parity, stop) != 4) return false;
  parsed.Baud = static_cast<uint32_t>(baud);
  parsed.DataBits = dataBits;
  const size_t parityIndex =
      kParityLetters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(parity))));
  if (parityIndex == std::string_view::npos) return false;
  parsed.ParityMode = static_cast<Parity>(parityIndex);
  size_t stopIndex = 0;
  while (stopIndex < kStopTexts.size() && kStopTexts[stopIndex] != stop) ++stopIndex;
  if (stopIndex == kStopTexts.size()) return false;
  parsed.Stop = static_cast<StopBits>(stopIndex);
  if (baud == 0 || baud > 4000000 || !CheckLineSettings(parsed).empty()) return false;
  line = parsed;
  return true;
}

std::string FormatLineSetting(const LineSettings& line) {
  return std::to_string(line.Baud) + "," + std::to_string(line.DataBits) + "," +
         kParityLetters[static_cast<size_t>(line.ParityMode)] + "," +
         std::string(kStopTexts[static_cast<size_t>(line.Stop)]);
}

}  // namespace wavetrace::platform
