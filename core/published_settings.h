#pragma once

#include <array>
#include <cstdint>

#include "core/settings.h"

namespace wavetrace::core {

struct AppState;

// The settings a worker thread reads, as published by the main thread: each
// record is a slice of a settings block (fields named by their configuration
// key) plus what it takes from elsewhere. Each worker loads its record once
// per unit of work and never reads the settings blocks of AppState.

// The date and time parts of a stamp (section DataLog).
struct TimeStampFormat {
  int32_t DateFormat = 1;
  int32_t TimeFormat = 6;
  uint8_t Delimiter = ',';

  bool operator==(const TimeStampFormat&) const = default;
};

// Read by the receive thread (once per block: the pipeline, the dispatcher,
// the read delay) and by the receive-window update thread (once per cycle).
struct RxSettings : ReceiveViewSettings {
  TimeStampFormat Stamp;

  bool operator==(const RxSettings&) const = default;
};

// Read by the transmit thread, once per send (a repeat run reads it again
// before each send).
struct TxSettings : TransmitSettings {
  int32_t Base = 16;  // of the escapes
  uint32_t SelectedBaud = 9600;

  bool operator==(const TxSettings&) const = default;
};

// Read by the log recorder (on the receive and transmit threads, once per
// record) and by the interval recording thread (once per run of windows).
struct LogRecordSettings : LogRecordFields {
  TimeStampFormat Stamp;

  bool operator==(const LogRecordSettings&) const = default;
};

// Read by the window relay on the receive thread, once per block.
struct WindowRelaySettings {
  int32_t WindowRelayEnabled = 0;
  int32_t TRANSLATE_KEYBOARD_CODES = 0;

  bool operator==(const WindowRelaySettings&) const = default;
};

RxSettings RxSettingsOf(const AppState& state);
TxSettings TxSettingsOf(const AppState& state);
LogRecordSettings LogRecordSettingsOf(const AppState& state);
WindowRelaySettings WindowRelaySettingsOf(const AppState& state);

// The one way settings reach other threads. The main thread is the only
// writer of the settings blocks; every path that changes them (a command, an
// option page's apply, a configuration load, a script) ends in this call,
// which builds fresh records and swaps them in.
void PublishSettings(AppState& state);

// Whether the published records match the settings blocks as they stand: a
// change that was not published yet makes this false.
bool SettingsArePublished(const AppState& state);

}  // namespace wavetrace::core
