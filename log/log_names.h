#pragma once

#include <string>
#include <string_view>

#include "core/settings.h"
#include "platform/clock.h"

namespace wavetrace::log {

// The user's documents folder followed by "/": where a log file named
// without a folder goes.
std::u16string DocumentsDir();

// The defaults of the logging settings, the documents folder and an
// automatic file name.
void InitLogSettings(core::LogSettings& log);

// wszLogFile from the date (by DateFormat: 2 month-day-year, 3
// year-month-day, any other day-month-year) and the hour and minute, as in
// "05-11-2026-t1708.log.txt".
void AutoNameLogFile(core::LogSettings& log, const platform::LocalTime& now);
void AutoNameLogFile(core::LogSettings& log);

// Splits a typed or chosen path at its last "/": the folder keeps the "/",
// a path without one goes to the documents folder, and an empty file name
// gets an automatic one.
void SplitLogPath(core::LogSettings& log, std::u16string_view path);

// Folder and file name together.
std::u16string LogPath(const core::LogSettings& log);

}  // namespace wavetrace::log
