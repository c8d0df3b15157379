#include "platform/termios_mapping.h"

#include <array>
#include <utility>

namespace wavetrace::platform {

speed_t StandardSpeed(uint32_t rate) {
  static constexpr std::array<std::pair<uint32_t, speed_t>, 30> kRates = {{
      {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
      {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
      {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
      {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
      {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
      {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
  }};
  for (auto [value, constant] : kRates) {
    if (value == rate) return constant;
  }
  return 0;
}

std::string CheckLineSettings(const LineSettings& settings) {
  if (settings.Baud == 0) return "a line speed of 0 baud is not possible";
  if (settings.DataBits < 5 || settings.DataBits > 8) {
    return std::to_string(settings.DataBits) + " data bits are not possible (5 to 8)";
  }
  if (settings.DsrFlow) return "flow control by DSR is not available on Linux";
  return {};
}

std::string MakeTermios(const LineSettings& settings, const termios& current, TermiosRecord& record) {
  if (std::string problem = CheckLineSettings(settings); !problem.empty()) return problem;

  termios tio = current;
  // Binary: no translation of any byte in either direction, no echo, no
  // signals; a read returns at once with what is queued.
  tio.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON |
                                        IXOFF | IXANY | INPCK | IGNPAR);
  tio.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  tio.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
  tio.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CMSPAR | CSTOPB | CRTSCTS);
  tio.c_cflag |= CREAD | CLOCAL;
  tio.c_cc[VMIN] = 0;
  tio.c_cc[VTIME] = 0;
  tio.c_cc[VSTART] = 17;
  tio.c_cc[VSTOP] = 19;

  static constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
  tio.c_cflag |= kSizes[settings.DataBits - 5];

  switch (settings.ParityMode) {
    case Parity::kNone:
      break;
    case Parity::kOdd:
      tio.c_cflag |= PARENB | PARODD;
      break;
    case Parity::kEven:
      tio.c_cflag |= PARENB;
      break;
    case Parity::kMark:
      tio.c_cflag |= PARENB | CMSPAR | PARODD;
      break;
    case Parity::kSpace:
      tio.c_cflag |= PARENB | CMSPAR;
      break;
  }
  // A UART sends 1.5 stop bits with 5 data bits when told "2".
  if (settings.Stop != StopBits::kOne) tio.c_cflag |= CSTOPB;
  if (settings.XonXoff) tio.c_iflag |= IXON | IXOFF;
  if (settings.CtsFlow) tio.c_cflag |= CRTSCTS;

  record.Rate = settings.Baud;
  record.StandardSpeed = StandardSpeed(settings.Baud);
  record.Custom = record.StandardSpeed == 0;
  if (!record.Custom) {
    cfsetispeed(&tio, record.StandardSpeed);
    cfsetospeed(&tio, record.StandardSpeed);
  }
  record.Tio = tio;
  return {};
}

}  // namespace wavetrace::platform
