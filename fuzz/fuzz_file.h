#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace wavetrace::fuzz {

// The input written to a temporary file for code that reads files, and Out(),
// a file beside it for what the target saves. Both are removed afterwards.
class FuzzFile {
 public:
  FuzzFile(const uint8_t* data, size_t size) {
    char pattern[] = "/tmp/wavetrace-fuzz-XXXXXX";
    int fd = mkstemp(pattern);
    // A regular file takes the whole write at once.
    if (fd < 0 || write(fd, data, size) != static_cast<ssize_t>(size)) std::abort();
    close(fd);
    path_ = pattern;
  }
  ~FuzzFile() {
    std::remove(path_.c_str());
    std::remove(Out().c_str());
  }
  FuzzFile(const FuzzFile&) = delete;
  FuzzFile& operator=(const FuzzFile&) = delete;
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string Out() const { return path_ + ".out"; }

 private:
  std::string path_;
};

}  // namespace wavetrace::fuzz
