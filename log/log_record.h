#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/settings.h"

namespace wavetrace::log {

// What a log record's layout depends on, named by configuration key.
struct RecordFormat {
  int32_t LOGtimestamp = 0;
  int32_t LOGtransmitdata = 0;
  int32_t TSremoveCRLF = 0;
  int32_t TimeFormat = 6;
  uint8_t Delimiter = ',';
};

// The stamp just built and the one before it.
struct StampPair {
  std::string_view Current;
  std::string_view Previous;
};

// Whether a received record carries more than the data itself.
bool ReceiveRecordIsFramed(const RecordFormat& format);

// A received block's record: CR LF (unless TSremoveCRLF), the stamp (with
// LOGtimestamp), Delimiter "Rx" Delimiter (with LOGtransmitdata), Delimiter
// and a blank, then the data. With TimeFormat 6 all but the tag are left out
// while the stamp has not changed, so one second's data continues one line.
std::string ReceiveRecord(const RecordFormat& format, StampPair stamps, std::string_view data);

// A transmitted text's record: CR LF (unless TSremoveCRLF), the stamp (with
// LOGtimestamp; with TimeFormat 6 only when it changed), Delimiter "Tx"
// Delimiter, then the text. Unlike the received record no blank follows.
std::string TransmitRecord(const RecordFormat& format, StampPair stamps, std::string_view text);

}  // namespace wavetrace::log
