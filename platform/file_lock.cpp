#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {

FileLock::FileLock(const std::string& file) {
  fd_ = open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd_ < 0) {
    failure_ = FailedCall("open");
    return;
  }
  int rc;
  do {
    rc = flock(fd_, LOCK_EX);
  } while (rc != 0 && errno == EINTR);
  if (rc != 0) {
    failure_ = FailedCall("flock");
    close(fd_);
    fd_ = -1;
  }
}

FileLock::~FileLock() {
  if (fd_ >= 0) close(fd_);
}

}  // namespace wavetrace::platform
