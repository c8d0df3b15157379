#pragma once

#include <functional>
#include <string>
#include <thread>

#include "platform/wake_event.h"

namespace wavetrace::platform {

// Reads lines from a descriptor (standard input) on a thread of its own and
// hands each one, without its line end, to onLine. At end of input (after the
// last line, ended or not) it calls onEnd and stops; it also stops when
// destroyed.
class LineReader {
 public:
  LineReader(int fd, std::function<void(const std::string& line)> onLine, std::function<void()> onEnd = {});
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

 private:
  int fd_;
  WakeEvent stop_;
  std::thread thread_;
};

}  // namespace wavetrace::platform
