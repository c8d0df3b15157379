#include "app/transmit_options.h"

#include "automation/function_buttons.h"
#include "core/prepared_settings.h"
#include "rx/postamble.h"

namespace wavetrace::app {

TransmitOptionValues TransmitOptionsOf(const core::AppState& state) {
  const auto& data = state.Data;
  return {data.TxRepeatNum,        data.TxRepeatDelay,        data.wcszPostambleKeysTX,
          data.TxClrRCVEtxt,       data.TxSendWholeFile,      data.HardwareButtonData,
          data.SoftwareButtonData, data.SoftwareButtonCaption};
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
  data.HardwareButtonData = values.HardwareButtonData;
  data.SoftwareButtonData = values.SoftwareButtonData;
  data.SoftwareButtonCaption = values.SoftwareButtonCaption;
  automation::ShowSoftwareButtons(state, state.SoftwareButtonsShown);
  core::PublishSettings(state);
}

}  // namespace wavetrace::app
