#include "platform/custom_rate.h"

#include <asm/termbits.h>
#include <sys/ioctl.h>

#include <cerrno>

namespace wavetrace::platform {

int SetCustomRate(int fd, uint32_t rate) {
  struct termios2 tio {};
  if (ioctl(fd, TCGETS2, &tio) != 0) return errno;
  tio.c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT));
  tio.c_cflag |= BOTHER | (BOTHER << IBSHIFT);
  tio.c_ispeed = rate;
  tio.c_ospeed = rate;
  if (ioctl(fd, TCSETS2, &tio) != 0) return errno;
  return 0;
}

uint32_t CurrentRate(int fd) {
  struct termios2 tio {};
  if (ioctl(fd, TCGETS2, &tio) != 0) return 0;
  return tio.c_ospeed;
}

}  // namespace wavetrace::platform
