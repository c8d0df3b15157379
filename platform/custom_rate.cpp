#include "platform/custom_rate.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace wavetrace::platform {

SysResult SetCustomRate(int fd, uint32_t rate) {
  struct termios2 tio {};
  if (ioctl(fd, TCGETS2, &tio) != 0) return FailedCall("TCGETS2");
  tio.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT));
  tio.c_cflag |= BOTHER | (BOTHER << IBSHIFT);
  tio.c_ispeed = rate;
  tio.c_ospeed = rate;
  if (ioctl(fd, TCSETS2, &tio) != 0) return FailedCall("TCSETS2");
  return {};
}

uint32_t CurrentRate(int fd) {
  struct termios2 tio {};
  if (ioctl(fd, TCGETS2, &tio) != 0) return 0;
  return tio.c_ospeed;
}

}  // namespace wavetrace::platform
