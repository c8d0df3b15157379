#pragma once

#include <string>

namespace wavetrace::platform {

// A pseudo-terminal pair: the program opens the slave by its path like any
// serial device; the master plays the device. Used by the tests and by
// virtual ports.
class PtyPair {
 public:
  PtyPair();
  ~PtyPair();
  PtyPair(const PtyPair&) = delete;
  PtyPair& operator=(const PtyPair&) = delete;

  [[nodiscard]] bool Valid() const { return master_ >= 0; }
  [[nodiscard]] const std::string& SlavePath() const { return slavePath_; }
  // The device side: writes all bytes; false on failure.
  bool Write(const std::string& bytes);
  // Reads what arrives within timeoutMs (stops early once `want` bytes came).
  std::string Read(size_t want, int timeoutMs);
  // The device goes away: the slave side sees a hang-up.
  void CloseMaster();

 private:
  int master_ = -1;
  std::string slavePath_;
};

}  // namespace wavetrace::platform
