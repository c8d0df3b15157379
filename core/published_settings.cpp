#include "core/published_settings.h"

#include <memory>

#include "core/app_state.h"

namespace wavetrace::core {

namespace {

// A record cut from the settings block that holds its fields, with the time
// stamp's format, which comes from the log settings wherever it is used.
template <typename Record, typename Fields>
Record StampedRecord(const Fields& fields, const LogSettings& log) {
  Record record;
  static_cast<Fields&>(record) = fields;
  record.Stamp = {log.DateFormat, log.TimeFormat, log.Delimiter[0]};
  return record;
}

}  // namespace

RxSettings RxSettingsOf(const AppState& state) {
  return StampedRecord<RxSettings, ReceiveViewSettings>(state.Data, state.Log);
}

TxSettings TxSettingsOf(const AppState& state) {
  TxSettings tx;
  static_cast<TransmitSettings&>(tx) = state.Data;
  tx.Base = state.Data.Base;
  tx.SelectedBaud = state.Port.SelectedBaud;
  return tx;
}

LogRecordSettings LogRecordSettingsOf(const AppState& state) {
  return StampedRecord<LogRecordSettings, LogRecordFields>(state.Log, state.Log);
}

WindowRelaySettings WindowRelaySettingsOf(const AppState& state) {
  return {state.WindowRelayEnabled, state.Data.TRANSLATE_KEYBOARD_CODES};
}

void PublishSettings(AppState& state) {
  state.PublishedRx.Store(std::make_shared<const RxSettings>(RxSettingsOf(state)));
  state.PublishedTx.Store(std::make_shared<const TxSettings>(TxSettingsOf(state)));
  state.PublishedLog.Store(std::make_shared<const LogRecordSettings>(LogRecordSettingsOf(state)));
  state.PublishedWindowRelay.Store(std::make_shared<const WindowRelaySettings>(WindowRelaySettingsOf(state)));
}

bool SettingsArePublished(const AppState& state) {
  return *state.PublishedRx.Load() == RxSettingsOf(state) &&
         *state.PublishedTx.Load() == TxSettingsOf(state) &&
         *state.PublishedLog.Load() == LogRecordSettingsOf(state) &&
         *state.PublishedWindowRelay.Load() == WindowRelaySettingsOf(state);
}

}  // namespace wavetrace::core
