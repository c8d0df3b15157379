#include "log/log_record.h"

namespace wavetrace::log {
namespace {

constexpr int32_t kSecondsFormat = 6;

bool StampIsNew(const RecordFormat& format, StampPair stamps) {
  return format.TimeFormat != kSecondsFormat || stamps.Current != stamps.Previous;
}

void AppendTag(std::string& record, const RecordFormat& format, std::string_view tag) {
  record += static_cast<char>(format.Delimiter);
  record += tag;
  record += static_cast<char>(format.Delimiter);
}

}  // namespace

bool ReceiveRecordIsFramed(const RecordFormat& format) {
  return format.LOGtimestamp == 1 || format.LOGtransmitdata == 1;
}

std::string ReceiveRecord(const RecordFormat& format, StampPair stamps, std::string_view data) {
  bool fresh = StampIsNew(format, stamps);
  std::string record;
  record.reserve(data.size() + stamps.Current.size() + 8);
  if (fresh && format.TSremoveCRLF != 1) record += "\r\n";
  if (fresh && format.LOGtimestamp == 1) record += stamps.Current;
  if (format.LOGtransmitdata == 1) AppendTag(record, format, "Rx");
  if (fresh) {
    record += static_cast<char>(format.Delimiter);
    record += ' ';
  }
  record += data;
  return record;
}

std::string TransmitRecord(const RecordFormat& format, StampPair stamps, std::string_view text) {
  std::string record;
  record.reserve(text.size() + stamps.Current.size() + 8);
  if (format.TSremoveCRLF != 1) record += "\r\n";
  if (format.LOGtimestamp == 1 && StampIsNew(format, stamps)) record += stamps.Current;
  AppendTag(record, format, "Tx");
  record += text;
  return record;
}

}  // namespace wavetrace::log
