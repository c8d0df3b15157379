#include "log/log_page.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>

#include "core/decimal_text.h"
#include "core/published_settings.h"
#include "log/log_names.h"

namespace wavetrace::log {
namespace {

constexpr std::array kDelimiterChoices = {
    DelimiterChoice{',', u" ,     (comma)"},
    DelimiterChoice{'\t', u" <>  (tab)"},
    DelimiterChoice{';', u" ;     (semicolon)"},
    DelimiterChoice{' ', u"\" \"    (blank space)"},
};

constexpr std::array kDateFormatChoices = {
    FormatChoice{1, u"dd-mm-yyyy"},
    FormatChoice{2, u"mm-dd-yyyy"},
    FormatChoice{3, u"yyyy-mm-dd"},
    FormatChoice{4, u"None"},
};

constexpr std::array kTimeFormatChoices = {
    FormatChoice{5, u"hh:mm"},
    FormatChoice{6, u"hh:mm:ss"},
    FormatChoice{7, u"None"},
    FormatChoice{8, u"hh:mm:ss.mmm"},
};

// int32_t& or const int32_t&, as the settings are.
template <typename Log>
auto& SwitchField(Log& log, LogSwitch which) {
  switch (which) {
    case LogSwitch::Timestamp:
      return log.LOGtimestamp;
    case LogSwitch::TransmitData:
      return log.LOGtransmitdata;
    case LogSwitch::Overwrite:
      break;
  }
  return log.LOGoverwrite;
}

}  // namespace

core::LogSettings LogSettingsBackup(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  return state.Log;
}

void RestoreLogSettings(core::AppState& state, const core::LogSettings& backup) {
  {
    std::lock_guard lock(state.RxDataLock);
    core::LogSettings restored = backup;
    restored.CurrentTimeStamp = state.Log.CurrentTimeStamp;
    restored.PreviousTimeStamp = state.Log.PreviousTimeStamp;
    state.Log = restored;
  }
  core::PublishSettings(state);
}

bool LoggingPageEnabled(const core::AppState& state) {
  return !state.RecordFlag;
}

std::u16string StoreLogPath(core::AppState& state, std::u16string_view text) {
  {
    // The update thread reads the path, under this lock, for its messages.
    std::lock_guard lock(state.RxDataLock);
    SplitLogPath(state.Log, text.substr(0, kLogPathFieldChars));
  }
  core::PublishSettings(state);
  return LogPath(state.Log);
}

std::u16string AutoNameLogPath(core::AppState& state, std::u16string_view text) {
  {
    std::lock_guard lock(state.RxDataLock);
    SplitLogPath(state.Log, text.substr(0, kLogPathFieldChars));
    AutoNameLogFile(state.Log);
  }
  core::PublishSettings(state);
  return LogPath(state.Log);
}

void StoreLogSwitch(core::AppState& state, LogSwitch which, bool ticked) {
  SwitchField(state.Log, which) = ticked ? 1 : 0;
  core::PublishSettings(state);
}

bool LogSwitchTicked(const core::LogSettings& log, LogSwitch which) {
  return SwitchField(log, which) != 0;
}

void StoreRecordAll(core::AppState& state, bool ticked) {
  state.Log.RecordALL = ticked ? 1 : 0;
  core::PublishSettings(state);
}

bool RecordPartialEnabled(const core::LogSettings& log) {
  return log.RecordALL == 0;
}

namespace {

// What a number field's text leaves: below 1 nothing is taken and the stored
// value is written back into the field; above maximum the value is held
// there and the field rewritten.
std::optional<int32_t> TakeField(std::u16string_view text, int32_t stored, uint32_t maximum,
                                 std::optional<std::u16string>& rewrite) {
  uint32_t value = core::LeadingDecimal(text);
  if (value < 1) {
    rewrite = core::DecimalText(stored);
    return std::nullopt;
  }
  if (value > maximum) {
    value = maximum;
    rewrite = core::DecimalText(value);
  }
  return static_cast<int32_t>(value);
}

}  // namespace

RecordFieldTexts EditRecordInterval(core::AppState& state, std::u16string_view text) {
  core::LogSettings& log = state.Log;
  RecordFieldTexts rewrite;
  std::optional<int32_t> value =
      TakeField(text, log.RecordInterval, kRecordIntervalMaximum, rewrite.Interval);
  if (!value) return rewrite;
  log.RecordInterval = *value;
  if (log.RecordDuration > log.RecordInterval) {
    log.RecordDuration = log.RecordInterval;
    rewrite.Duration = core::DecimalText(log.RecordDuration);
  }
  core::PublishSettings(state);
  return rewrite;
}

RecordFieldTexts EditRecordDuration(core::AppState& state, std::u16string_view text) {
  core::LogSettings& log = state.Log;
  RecordFieldTexts rewrite;
  std::optional<int32_t> value =
      TakeField(text, log.RecordDuration, static_cast<uint32_t>(log.RecordInterval), rewrite.Duration);
  if (!value) return rewrite;
  log.RecordDuration = *value;
  core::PublishSettings(state);
  return rewrite;
}

std::span<const DelimiterChoice> DelimiterChoices() {
  return kDelimiterChoices;
}

std::optional<size_t> DelimiterChoiceOf(uint8_t delimiter) {
  for (size_t i = 0; i < kDelimiterChoices.size(); ++i) {
    if (kDelimiterChoices[i].Delimiter == delimiter) return i;
  }
  return std::nullopt;
}

void ApplyDelimiterPage(core::AppState& state, std::optional<uint8_t> delimiter, bool removeCrLf) {
  if (delimiter) state.Log.Delimiter = {*delimiter, 0};
  state.Log.TSremoveCRLF = removeCrLf ? 1 : 0;
  core::PublishSettings(state);
}

std::span<const FormatChoice> DateFormatChoices() {
  return kDateFormatChoices;
}

std::span<const FormatChoice> TimeFormatChoices() {
  return kTimeFormatChoices;
}

void StoreDateFormat(core::AppState& state, int32_t value) {
  state.Log.DateFormat = value;
  core::PublishSettings(state);
}

void StoreTimeFormat(core::AppState& state, int32_t value) {
  state.Log.TimeFormat = value;
  core::PublishSettings(state);
}

}  // namespace wavetrace::log
