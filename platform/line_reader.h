#pragma once

#include <functional>
#include <string>
#include <thread>

#include "platform/wake_event.h"

namespace wavetrace::platform {

// Reads lines from a descriptor (standard input) on a thread of its own and
// hands each one, without its line end, to onLine. Stops at end of input or
// when destroyed.
class LineReader {
 public:
  LineReader(int fd, std::function<void(const std::string& line)> onLine);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

 private:
  int fd_;
  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace wavetrace::platform
