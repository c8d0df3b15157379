#include "log/record_command.h"

#include <cstdio>
#include <mutex>

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "log/log_file.h"
#include "log/log_names.h"
#include "log/recorder.h"
#include "platform/clock.h"

namespace wavetrace::log {
namespace {

constexpr int kIntervalNoticeMs = 50;

std::u16string Format(const char* format, auto... values) {
  char text[128];
  std::snprintf(text, sizeof text, format, values...);
  return core::Utf8ToWide(text);
}

void ShowRecordButton(core::AppState& state, bool on) {
  state.RecordFlag = on;
  state.Screen.SetButtonPressed(core::cmd::kRecord, on);
}

}  // namespace

std::u16string SizeText(std::u16string_view label, uint64_t size) {
  auto bytes = static_cast<double>(size);
  std::u16string text = u"[" + std::u16string(label) + u": ";
  if (size < 10000) return text + Format("%.0f Bytes]", bytes);
  if (size < 1000000) return text + Format("%.2f KB]", bytes / 1000);
  return text + Format("%.2f MB]", bytes / 1000000);
}

bool RecordOn(core::AppState& state) {
  platform::SysResult failure;
  if (OpenLogFile(state, failure) != 0) {
    ShowRecordButton(state, false);
    core::ShowStatusError(state, u"Failed to open Log File:\r\n" + LogPath(state.Log), failure);
    return false;
  }
  ShowRecordButton(state, true);
  const core::LogSettings& log = state.Log;
  std::u16string text;
  if (log.RecordALL == 1) {
    state.LogOpen = true;
    text = u"RECORD all data, activated.\r\n";
  } else {
    text = Format("RECORD data @ %d sec. intervals, for %d sec. duration.\r\n", log.RecordInterval,
                  log.RecordDuration);
  }
  text += u"[" + LogPath(log) + u"]\r\n" + SizeText(u"Starting Size", state.LogFileSize);
  core::ShowStatus(state, text);
  return true;
}

void RecordOff(core::AppState& state) {
  uint64_t size = 0;
  {
    std::lock_guard lock(state.RxDataLock);
    state.LogOpen = false;
    state.RecordFlag = false;
    FlushCacheToFile(state);
    size = CloseLogFile(state);
  }
  ShowRecordButton(state, false);
  std::u16string text;
  if (state.Log.RecordALL == 1) {
    text = u"RECORD all data, deactivated.\r\n";
  } else {
    // Gives the interval recorder time to see RECORD off and end its wait.
    platform::SleepMs(kIntervalNoticeMs);
    text = u"RECORD data @ intervals, deactivated.\r\n";
  }
  text += SizeText(u"LogFile Size", size) + u"\r\n[" + LogPath(state.Log) + u"]";
  core::ShowStatus(state, text);
}

void ToggleRecord(core::AppState& state) {
  if (state.RecordFlag) {
    RecordOff(state);
  } else {
    RecordOn(state);
  }
}

}  // namespace wavetrace::log
