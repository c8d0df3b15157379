#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/app_state.h"

namespace wavetrace::log {

// The rules of the Logging page and of the advanced logging sheet (recording
// mode, delimiter, date and time). Every function that stores a setting
// publishes the settings afterwards.

// --- what Cancel puts back ---------------------------------------------------

// The logging settings as they stand, for a page to put back on Cancel. The
// two stamps, which the receive and transmit threads keep, are read under the
// receive-data lock and never put back.
core::LogSettings LogSettingsBackup(core::AppState& state);
void RestoreLogSettings(core::AppState& state, const core::LogSettings& backup);

// --- the Logging page ----------------------------------------------------------

// The path field ("Log data to the following file:") takes up to 127
// characters: folder and file name together.
inline constexpr size_t kLogPathFieldChars = 127;

// While RECORD is on, nothing on the page can be changed.
bool LoggingPageEnabled(const core::AppState& state);

// The path as typed or browsed (cut to the field's length), split into folder
// and file name (SplitLogPath). Returns the field's new text.
std::u16string StoreLogPath(core::AppState& state, std::u16string_view text);
// "AutoName": the field's text split as above, then an automatic file name in
// that folder. Returns the field's new text.
std::u16string AutoNameLogPath(core::AppState& state, std::u16string_view text);

enum class LogSwitch { Timestamp, TransmitData, Overwrite };
// A check box of the page, stored at once.
void StoreLogSwitch(core::AppState& state, LogSwitch which, bool ticked);
bool LogSwitchTicked(const core::LogSettings& log, LogSwitch which);

// --- the recording mode page -----------------------------------------------------

inline constexpr uint32_t kRecordIntervalMaximum = 9999;  // seconds
inline constexpr int kRecordFieldChars = 4;

// "Record all data"; while it is ticked the interval and duration fields are
// disabled.
void StoreRecordAll(core::AppState& state, bool ticked);
bool RecordPartialEnabled(const core::LogSettings& log);

// Texts to write back into the fields after an edit (the up-down controls
// follow them); no text leaves a field as the user left it.
struct RecordFieldTexts {
  std::optional<std::u16string> Interval;
  std::optional<std::u16string> Duration;
};
// The interval field edited: its text read as an unsigned number. Below 1 the
// field gets the stored interval back; otherwise the value (at most 9999) is
// stored, and a longer duration is lowered to it.
RecordFieldTexts EditRecordInterval(core::AppState& state, std::u16string_view text);
// The duration field edited: stored within 1..RecordInterval; a value outside
// gets the field rewritten.
RecordFieldTexts EditRecordDuration(core::AppState& state, std::u16string_view text);

// --- the delimiter page ----------------------------------------------------------

struct DelimiterChoice {
  uint8_t Delimiter;
  std::u16string_view Caption;
};
// The four radio buttons, in order.
std::span<const DelimiterChoice> DelimiterChoices();
// The radio that shows a delimiter; none for a delimiter outside the four.
std::optional<size_t> DelimiterChoiceOf(uint8_t delimiter);

// The page edits staged values and stores them on OK only. A delimiter of
// nullopt (no radio checked) keeps the delimiter as it is.
void ApplyDelimiterPage(core::AppState& state, std::optional<uint8_t> delimiter, bool removeCrLf);

// --- the date and time page -----------------------------------------------------

struct FormatChoice {
  int32_t Value;
  std::u16string_view Caption;
};
// DateFormat 1..4 and TimeFormat 5..8 (8: with milliseconds), in order.
std::span<const FormatChoice> DateFormatChoices();
std::span<const FormatChoice> TimeFormatChoices();
// A radio button of either group, stored at once.
void StoreDateFormat(core::AppState& state, int32_t value);
void StoreTimeFormat(core::AppState& state, int32_t value);

}  // namespace wavetrace::log
