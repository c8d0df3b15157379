#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace wavetrace::fuzz {

// The input written to a temporary file for code that reads files.
class FuzzFile {
 public:
  FuzzFile(const uint8_t* data, size_t size) {
    char pattern[] = "/tmp/wavetrace-fuzz-XXXXXX";
    int fd = mkstemp(pattern);
    if (fd < 0) std::abort();
    path_ = pattern;
    size_t done = 0;
    while (done < size) {
      ssize_t n = write(fd, data + done, size - done);
      if (n <= 0) std::abort();
      done += static_cast<size_t>(n);
    }
    close(fd);
  }
  ~FuzzFile() { std::remove(path_.c_str()); }
  FuzzFile(const FuzzFile&) = delete;
  FuzzFile& operator=(const FuzzFile&) = delete;
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace wavetrace::fuzz
