#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::platform {

// The open log file: written at its end, readable by others while recording.
class LogFile {
 public:
  // Opens (creating with mode 0644) the file for writing, truncating it only
  // when truncate is set. A FIFO without a reader is refused (ENXIO) rather
  // than waited for. File-size limits and a reader that leaves a FIFO become
  // failed writes (EFBIG, EPIPE), never signals that end the program.
  static SysResult Open(const std::string& path, bool truncate, std::unique_ptr<LogFile>& file);
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Writes all n bytes; what was written before a failure stays written.
  SysResult Write(const uint8_t* bytes, size_t n);
  // The file's size now (0 for a FIFO).
  [[nodiscard]] uint64_t Size() const;

 private:
  explicit LogFile(int fd) : fd_(fd) {}
  int fd_ = -1;
};

}  // namespace wavetrace::platform
