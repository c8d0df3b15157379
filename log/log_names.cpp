#include "log/log_names.h"

#include <cstdio>

#include "core/code_page.h"
#include "rx/time_stamp.h"
#include "platform/files.h"

namespace wavetrace::log {

std::u16string DocumentsDir() {
  return core::Utf8ToWide(platform::DocumentsFolder()) + u"/";
}

void InitLogSettings(core::LogSettings& log) {
  log = core::LogSettings{};
  log.wszLogDir = DocumentsDir();
  AutoNameLogFile(log);
}

void AutoNameLogFile(core::LogSettings& log, const platform::LocalTime& now) {
  // Every format but 2 and 3 (a stamp without a date too) names the day first.
  rx::DateOrder order = log.DateFormat == 2   ? rx::DateOrder::kMonthFirst
                        : log.DateFormat == 3 ? rx::DateOrder::kYearFirst
                                              : rx::DateOrder::kDayFirst;
  std::string date = rx::FormatDate(order, now, '-');
  // Names always carry the hour and minute, so two recordings on one day
  // never share a file by accident.
  char name[64];
  std::snprintf(name, sizeof name, "%s-t%02d%02d.log.txt", date.c_str(), now.Hour, now.Minute);
  log.wszLogFile = core::Utf8ToWide(name);
}

void AutoNameLogFile(core::LogSettings& log) {
  AutoNameLogFile(log, platform::GetLocalTime());
}

void SplitLogPath(core::LogSettings& log, std::u16string_view path) {
  size_t slash = path.rfind(u'/');
  if (slash == std::u16string_view::npos) {
    log.wszLogDir = DocumentsDir();
    log.wszLogFile = std::u16string(path);
  } else {
    log.wszLogDir = std::u16string(path.substr(0, slash + 1));
    log.wszLogFile = std::u16string(path.substr(slash + 1));
  }
  if (log.wszLogFile.empty()) AutoNameLogFile(log);
}

std::u16string LogPath(const core::LogSettings& log) {
  return log.wszLogDir + log.wszLogFile;
}

}  // namespace wavetrace::log
