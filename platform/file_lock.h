#pragma once

#include <string>

#include "platform/system_error.h"

namespace wavetrace::platform {

// An exclusive lock on "<file>.lock", held for one read-modify-write of a
// file that several processes share.
class FileLock {
 public:
  explicit FileLock(const std::string& file);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  [[nodiscard]] bool Held() const { return fd_ >= 0; }
  // Why the lock is not held.
  [[nodiscard]] const SysResult& Failure() const { return failure_; }

 private:
  int fd_ = -1;
  SysResult failure_;
};

}  // namespace wavetrace::platform
