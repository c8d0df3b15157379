#include "platform/log_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {

SysResult LogFile::Open(const std::string& path, bool truncate, std::unique_ptr<LogFile>& file) {
  file.reset();
  // A write past RLIMIT_FSIZE or into a FIFO whose reader left must fail
  // with EFBIG or EPIPE instead of ending the process.
  signal(SIGXFSZ, SIG_IGN);
  signal(SIGPIPE, SIG_IGN);
  int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (truncate ? O_TRUNC : 0);
  int fd = open(path.c_str(), flags, 0644);
  if (fd < 0) return FailedCall("open");
  // O_NONBLOCK only kept open() from waiting for a FIFO's reader; writes block.
  if (fcntl(fd, F_SETFL, O_APPEND) != 0) {
    SysResult failure = FailedCall("fcntl");
    close(fd);
    return failure;
  }
  file.reset(new LogFile(fd));
  return {};
}

LogFile::~LogFile() {
  if (fd_ >= 0) close(fd_);
}

SysResult LogFile::Write(const uint8_t* bytes, size_t n) {
  while (n > 0) {
    ssize_t written = write(fd_, bytes, n);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return FailedCall("write");
    // A zero-byte write of a non-empty buffer is a full device by another name.
    if (written == 0) return {ENOSPC, "write"};
    bytes += written;
    n -= static_cast<size_t>(written);
  }
  return {};
}

uint64_t LogFile::Size() const {
  struct stat info {};
  if (fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) return 0;
  return static_cast<uint64_t>(info.st_size);
}

}  // namespace wavetrace::platform
