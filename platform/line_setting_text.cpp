#include "platform/line_setting_text.h"

#include <cctype>
#include <cstdio>

namespace wavetrace::platform {

bool ParseLineSetting(const std::string& text, LineSettings& line) {
  LineSettings parsed = line;
  unsigned long baud = 0;
  int dataBits = 0;
  char parity = 0;
  char stop[8] = {};
  if (std::sscanf(text.c_str(), "%lu,%d,%c,%7s", &baud, &dataBits, &parity, stop) != 4) return false;
  parsed.Baud = static_cast<uint32_t>(baud);
  parsed.DataBits = dataBits;
  switch (std::toupper(static_cast<unsigned char>(parity))) {
    case 'N':
      parsed.ParityMode = Parity::kNone;
      break;
    case 'O':
      parsed.ParityMode = Parity::kOdd;
      break;
    case 'E':
      parsed.ParityMode = Parity::kEven;
      break;
    case 'M':
      parsed.ParityMode = Parity::kMark;
      break;
    case 'S':
      parsed.ParityMode = Parity::kSpace;
      break;
    default:
      return false;
  }
  std::string stopText = stop;
  if (stopText == "1") {
    parsed.Stop = StopBits::kOne;
  } else if (stopText == "1.5") {
    parsed.Stop = StopBits::kOneAndHalf;
  } else if (stopText == "2") {
    parsed.Stop = StopBits::kTwo;
  } else {
    return false;
  }
  if (baud == 0 || baud > 4000000 || !CheckLineSettings(parsed).empty()) return false;
  line = parsed;
  return true;
}

std::string FormatLineSetting(const LineSettings& line) {
  static constexpr char kParity[] = {'N', 'O', 'E', 'M', 'S'};
  const char* stop = line.Stop == StopBits::kOne ? "1" : line.Stop == StopBits::kTwo ? "2" : "1.5";
  return std::to_string(line.Baud) + "," + std::to_string(line.DataBits) + "," +
         kParity[static_cast<int>(line.ParityMode)] + "," + stop;
}

}  // namespace wavetrace::platform
