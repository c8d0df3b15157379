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
  const DataSettings& data = state.Data;
  RxSettings rx;
  rx.modeASCII = data.modeASCII;
  rx.modeBINARY = data.modeBINARY;
  rx.Base = data.Base;
  rx.BinBrackets = data.BinBrackets;
  rx.NonChars = data.NonChars;
  rx.FilterNP = data.FilterNP;
  rx.DisableSnR = data.DisableSnR;
  rx.SnR_count = data.SnR_count;
  rx.SnR = data.SnR;
  rx.PostambleBytesRX = data.PostambleBytesRX;
  rx.PostambleLengthRX = data.PostambleLengthRX;
  rx.Stamp = TimeStampFormatOf(state.Log);
  rx.RxDelayReadThread = data.RxDelayReadThread;
  rx.PauseRxDisplay = data.PauseRxDisplay;
  rx.RxBacklightEvent = data.RxBacklightEvent;
  return rx;
}

TxSettings TxSettingsOf(const AppState& state) {
  const DataSettings& data = state.Data;
  TxSettings tx;
  tx.Base = data.Base;
  tx.TxRepeatNum = data.TxRepeatNum;
  tx.TxRepeatDelay = data.TxRepeatDelay;
  tx.TxClrRCVEtxt = data.TxClrRCVEtxt;
  tx.TxSendWholeFile = data.TxSendWholeFile;
  tx.PostambleBytesTX = data.PostambleBytesTX;
  tx.PostambleLengthTX = data.PostambleLengthTX;
  tx.SelectedBaud = state.Port.SelectedBaud;
  return tx;
}

LogRecordSettings LogRecordSettingsOf(const AppState& state) {
  const LogSettings& log = state.Log;
  LogRecordSettings record;
  record.LOGtimestamp = log.LOGtimestamp;
  record.LOGtransmitdata = log.LOGtransmitdata;
  record.TSremoveCRLF = log.TSremoveCRLF;
  record.Stamp = TimeStampFormatOf(log);
  record.NeverDropLogData = log.NeverDropLogData;
  record.RecordALL = log.RecordALL;
  record.RecordInterval = log.RecordInterval;
  record.RecordDuration = log.RecordDuration;
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
