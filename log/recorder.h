#pragma once

#include <memory>

#include "core/app_state.h"
#include "core/log_sink.h"

namespace wavetrace::log {

// The log records of received and transmitted data, cached and flushed to
// the log file.
class Recorder final : public core::LogSink {
 public:
  explicit Recorder(core::AppState& state) : state_(state) {}
  void ReceivedData(const uint8_t* block, uint32_t n) override;
  void TransmittedData(const uint8_t* text, uint32_t n) override;
  void Flush() override;

 private:
  void Cache(const uint8_t* bytes, uint32_t n, bool neverDrop);
  core::AppState& state_;
};

// Installs the program's recorder in the state.
void InstallRecorder(core::AppState& state);

// Writes what the cache holds and empties it, under the receive-data lock.
void FlushCacheToFile(core::AppState& state);

}  // namespace wavetrace::log
