#include "serial/uart_model.h"

#include <algorithm>
#include <vector>

namespace wavetrace::serial {
namespace {

using platform::LineSettings;
using platform::Parity;
using platform::StopBits;

double StopLength(StopBits stop) {
  return stop == StopBits::kOne ? 1.0 : stop == StopBits::kOneAndHalf ? 1.5 : 2.0;
}

int ParityBit(uint32_t data, int dataBits, Parity parity) {
  int ones = __builtin_popcount(data & ((1u << dataBits) - 1));
  switch (parity) {
    case Parity::kOdd:
      return ones % 2 == 0 ? 1 : 0;
    case Parity::kEven:
      return ones % 2;
    case Parity::kMark:
      return 1;
    default:
      return 0;
  }
}

// The line as levels over time: each segment holds its level until its end.
struct Waveform {
  std::vector<double> ends;
  std::vector<int> levels;

  void Add(int level, double duration) {
    double start = ends.empty() ? 0.0 : ends.back();
    if (!levels.empty() && levels.back() == level) {
      ends.back() = start + duration;
      return;
    }
    ends.push_back(start + duration);
    levels.push_back(level);
  }
  [[nodiscard]] double End() const { return ends.empty() ? 0.0 : ends.back(); }
  // Idle (1) before the first bit and after the last.
  [[nodiscard]] int LevelAt(double t) const {
    if (t < 0 || t >= End()) return 1;
    auto it = std::upper_bound(ends.begin(), ends.end(), t);
    return levels[static_cast<size_t>(it - ends.begin())];
  }
  // The first falling edge at or after t, or a negative value.
  [[nodiscard]] double NextFallingEdge(double t) const {
    // Segments ending at or before t cannot hold it.
    auto first = static_cast<size_t>(std::upper_bound(ends.begin(), ends.end(), t) - ends.begin());
    for (size_t i = first; i < ends.size(); ++i) {
      double start = i == 0 ? 0.0 : ends[i - 1];
      int before = i == 0 ? 1 : levels[i - 1];
      if (levels[i] == 0 && before == 1 && start >= t) return start;
    }
    return -1;
  }
};

Waveform Send(std::string_view bytes, const LineSettings& line) {
  Waveform wave;
  double bit = 1.0 / line.Baud;
  for (unsigned char byte : bytes) {
    wave.Add(0, bit);
    for (int i = 0; i < line.DataBits; ++i) wave.Add((byte >> i) & 1, bit);
    if (line.ParityMode != Parity::kNone) wave.Add(ParityBit(byte, line.DataBits, line.ParityMode), bit);
    wave.Add(1, bit * StopLength(line.Stop));
  }
  return wave;
}

}  // namespace

bool SameFraming(const LineSettings& a, const LineSettings& b) {
  return a.Baud == b.Baud && a.DataBits == b.DataBits && a.ParityMode == b.ParityMode && a.Stop == b.Stop;
}

double BitsPerFrame(const LineSettings& line) {
  return 1 + line.DataBits + (line.ParityMode == Parity::kNone ? 0 : 1) + StopLength(line.Stop);
}

std::string TranscodeUart(std::string_view bytes, const LineSettings& sender, const LineSettings& receiver,
                          UartErrors* errors) {
  if (SameFraming(sender, receiver)) {
    // A line of 5, 6 or 7 data bits carries only those bits of each byte.
    std::string out(bytes);
    if (receiver.DataBits < 8) {
      auto mask = static_cast<char>((1u << receiver.DataBits) - 1);
      for (char& c : out) c &= mask;
    }
    return out;
  }
  if (sender.Baud == 0 || receiver.Baud == 0) return {};
  Waveform wave = Send(bytes, sender);
  const double bit = 1.0 / receiver.Baud;
  std::string out;
  double t = 0;
  for (;;) {
    double edge = wave.NextFallingEdge(t);
    if (edge < 0) break;
    if (wave.LevelAt(edge + 0.5 * bit) != 0) {  // a glitch, not a start bit
      t = edge + 0.5 * bit;
      continue;
    }
    uint32_t data = 0;
    double sample = edge + 1.5 * bit;
    for (int i = 0; i < receiver.DataBits; ++i, sample += bit)
      data |= static_cast<uint32_t>(wave.LevelAt(sample)) << i;
    bool parityGood = true;
    if (receiver.ParityMode != Parity::kNone) {
      parityGood = wave.LevelAt(sample) == ParityBit(data, receiver.DataBits, receiver.ParityMode);
      sample += bit;
    }
    // Every stop bit the receiver expects must be there: a frame that comes
    // too soon after the last is a framing error.
    double stopLength = StopLength(receiver.Stop);
    bool framed = wave.LevelAt(sample) == 1;
    if (stopLength > 1.0) {
      sample += (stopLength - 1.0) * bit;
      framed = framed && wave.LevelAt(sample) == 1;
    }
    if (errors) {
      errors->Parity += parityGood ? 0 : 1;
      errors->Frame += framed ? 0 : 1;
    }
    out.push_back(parityGood && framed ? static_cast<char>(data) : '\0');
    t = sample;
  }
  return out;
}

}  // namespace wavetrace::serial
