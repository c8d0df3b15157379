#include "log/recorder.h"

#include <mutex>
#include <string>

#include "log/log_file.h"
#include "log/log_record.h"
#include "rx/log_cache.h"
#include "rx/time_stamp.h"

namespace wavetrace::log {
namespace {

RecordFormat FormatOf(const core::LogRecordSettings& settings) {
  return {settings.LOGtimestamp, settings.LOGtransmitdata, settings.TSremoveCRLF, settings.Stamp.TimeFormat,
          settings.Stamp.Delimiter};
}

// Refreshes the stamp and hands out the new one with the one before it.
struct Stamps {
  std::string current;
  std::string previous;
  [[nodiscard]] StampPair Pair() const { return {current, previous}; }
};

Stamps NextStamps(core::AppState& state, const core::TimeStampFormat& format) {
  std::lock_guard lock(state.RxDataLock);
  rx::BuildTimeStamp(state, format);
  auto text = [](const auto& stamp) { return std::string(reinterpret_cast<const char*>(stamp.data())); };
  return {text(state.Log.CurrentTimeStamp), text(state.Log.PreviousTimeStamp)};
}

std::string_view AsText(const uint8_t* bytes, uint32_t n) {
  return {reinterpret_cast<const char*>(bytes), n};
}

}  // namespace

void Recorder::ReceivedData(const uint8_t* block, uint32_t n) {
  if (n == 0 || !state_.RecordFlag || !state_.LogOpen) return;
  // One settings record for the whole log record.
  const auto settings = state_.PublishedLog.Load();
  RecordFormat format = FormatOf(*settings);
  bool neverDrop = settings->NeverDropLogData == 1;
  if (!ReceiveRecordIsFramed(format)) {
    Cache(block, n, neverDrop);
    return;
  }
  std::string record = ReceiveRecord(format, NextStamps(state_, settings->Stamp).Pair(), AsText(block, n));
  Cache(reinterpret_cast<const uint8_t*>(record.data()), static_cast<uint32_t>(record.size()), neverDrop);
}

void Recorder::TransmittedData(const uint8_t* text, uint32_t n) {
  if (n == 0 || !state_.RecordFlag || !state_.LogOpen) return;
  const auto settings = state_.PublishedLog.Load();
  RecordFormat format = FormatOf(*settings);
  if (format.LOGtransmitdata != 1) return;
  Stamps stamps;
  if (format.LOGtimestamp == 1) stamps = NextStamps(state_, settings->Stamp);
  std::string record = TransmitRecord(format, stamps.Pair(), AsText(text, n));
  Cache(reinterpret_cast<const uint8_t*>(record.data()), static_cast<uint32_t>(record.size()),
        settings->NeverDropLogData == 1);
}

void Recorder::Flush() {
  FlushCacheToFile(state_);
}

void Recorder::Cache(const uint8_t* bytes, uint32_t n, bool neverDrop) {
  if (!neverDrop) {
    rx::AppendToLogCache(state_, bytes, n);
    return;
  }
  // The cache goes to the file when the record would not fit, and a record
  // larger than the whole cache follows it there directly: nothing is lost
  // however fast the data comes.
  std::lock_guard lock(state_.RxDataLock);
  if (state_.DataLogCacheCount + n >= static_cast<uint32_t>(core::kDataLogCacheBytes)) {
    FlushCacheToFile(state_);
  }
  if (n >= static_cast<uint32_t>(core::kDataLogCacheBytes)) {
    WriteLogFile(state_, bytes, n);
    return;
  }
  rx::AppendWholeToLogCache(state_, bytes, n);
}

void InstallRecorder(core::AppState& state) {
  state.LogRecords = std::make_unique<Recorder>(state);
}

void FlushCacheToFile(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  if (state.DataLogCacheCount == 0 || state.DataLogCache.Empty()) return;
  uint32_t n = std::min<uint32_t>(state.DataLogCacheCount, core::kDataLogCacheBytes);
  WriteLogFile(state, state.DataLogCache.Data(), n);
  rx::ClearLogCache(state);
}

}  // namespace wavetrace::log
