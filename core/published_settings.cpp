#include "core/published_settings.h"

#include <memory>

#include "core/app_state.h"

namespace wavetrace::core {

namespace {

TimeStampFormat TimeStampFormatOf(const LogSettings& log) {
  return {log.DateFormat, log.TimeFormat, log.Delimiter[0]};
}

}  // namespace

RxSettings RxSettingsOf(const AppState& state) {
  RxSettings rx;
  static_cast<ReceiveViewSettings&>(rx) = state.Data;
  rx.Stamp = TimeStampFormatOf(state.Log);
  return rx;
}

TxSettings TxSettingsOf(const AppState& state) {
  TxSettings tx;
  static_cast<TransmitSettings&>(tx) = state.Data;
  tx.Base = state.Data.Base;
  tx.SelectedBaud = state.Port.SelectedBaud;
  return tx;
}

LogRecordSettings LogRecordSettingsOf(const AppState& state) {
  LogRecordSettings record;
  static_cast<LogRecordFields&>(record) = state.Log;
  record.Stamp = TimeStampFormatOf(state.Log);
  return record;
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
