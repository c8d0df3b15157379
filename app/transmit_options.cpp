#include "app/transmit_options.h"

#include "core/prepared_settings.h"
#include "rx/postamble.h"

namespace wavetrace::app {

TransmitOptionValues TransmitOptionsOf(const core::AppState& state) {
  const auto& data = state.Data;
  return {data.TxRepeatNum, data.TxRepeatDelay, data.wcszPostambleKeysTX, data.TxClrRCVEtxt,
          data.TxSendWholeFile};
}

void ApplyTransmitOptions(core::AppState& state, const TransmitOptionValues& values) {
  auto& data = state.Data;
  data.TxRepeatNum = values.TxRepeatNum;
  data.TxRepeatDelay = values.TxRepeatDelay;
  data.TxClrRCVEtxt = values.TxClrRCVEtxt;
  data.TxSendWholeFile = values.TxSendWholeFile;
  data.wcszPostambleKeysTX = values.PostambleKeysTX.substr(0, rx::kPostambleApplyChars);
  data.PostambleLengthTX =
      core::ParsePostambleText(data.wcszPostambleKeysTX, core::kPostambleLoadBytes, data.PostambleBytesTX);
  core::PublishSettings(state);
}

}  // namespace wavetrace::app
