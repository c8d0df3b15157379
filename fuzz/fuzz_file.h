#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

namespace wavetrace::fuzz {

// The input written to a file of this process for code that reads files, and
// Out(), a file beside it for what the target saves. Both are removed afterwards.
class FuzzFile {
 public:
  FuzzFile(const uint8_t* data, size_t size) {
    std::ofstream(path_, std::ios::binary).write(reinterpret_cast<const char*>(data), std::streamsize(size));
  }
  ~FuzzFile() {
    std::remove(path_.c_str());
    std::remove(Out().c_str());
  }
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string Out() const { return path_ + ".out"; }

 private:
  std::string path_ = "/tmp/wavetrace-fuzz-" + std::to_string(getpid());
};

}  // namespace wavetrace::fuzz
