#include "log/log_names.h"

#include <cstdio>

#include "core/code_page.h"
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
  char date[32];
  switch (log.DateFormat) {
    case 2:
      std::snprintf(date, sizeof date, "%02d-%02d-%d", now.Month, now.Day, now.Year);
      break;
    case 3:
      std::snprintf(date, sizeof date, "%d-%02d-%02d", now.Year, now.Month, now.Day);
      break;
    default:
      std::snprintf(date, sizeof date, "%02d-%02d-%d", now.Day, now.Month, now.Year);
      break;
  }
  // Names always carry the hour and minute, so two recordings on one day
  // never share a file by accident.
  char name[64];
  std::snprintf(name, sizeof name, "%s-t%02d%02d.log.txt", date, now.Hour, now.Minute);
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
