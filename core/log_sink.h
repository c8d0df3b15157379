#pragma once

#include <cstdint>

namespace wavetrace::core {

// Where the receive and transmit paths, which sit below the log, hand their
// data for the log file. The log implements it and start-up installs it in
// AppState; without one nothing is logged.
class LogSink {
 public:
  virtual ~LogSink() = default;
  // A processed block, on the receive thread: logged when recording and the
  // log is open to data (interval recording opens and closes it).
  virtual void ReceivedData(const uint8_t* block, uint32_t n) = 0;
  // The transmit text as it stands before escape parsing, on the transmit
  // thread: logged when transmitted data is logged too.
  virtual void TransmittedData(const uint8_t* text, uint32_t n) = 0;
  // Writes what the log cache holds to the file and empties it: the update
  // thread's periodic flush, and its last one at exit.
  virtual void Flush() = 0;
};

}  // namespace wavetrace::core
