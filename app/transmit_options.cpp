#include "app/transmit_options.h"

#include "core/prepared_settings.h"
#include "core/shared_field.h"
#include "rx/postamble.h"

namespace wavetrace::app {

TransmitOptionValues TransmitOptionsOf(const core::AppState& state) {
  const auto& data = state.Data;
  return {data.TxRepeatNum, data.TxRepeatDelay, data.wcszPostambleKeysTX, data.TxClrRCVEtxt,
          data.TxSendWholeFile};
}

void ApplyTransmitOptions(core::AppState& state, const TransmitOptionValues& values) {
  auto& data = state.Data;
  core::StoreShared(data.TxRepeatNum, values.TxRepeatNum);
  core::StoreShared(data.TxRepeatDelay, values.TxRepeatDelay);
  core::StoreShared(data.TxClrRCVEtxt, values.TxClrRCVEtxt);
  core::StoreShared(data.TxSendWholeFile, values.TxSendWholeFile);
  data.wcszPostambleKeysTX = values.PostambleKeysTX.substr(0, rx::kPostambleApplyChars);
  std::array<uint8_t, core::DataSettings::kPostambleChars> bytes{};
  int32_t length = core::ParsePostambleText(data.wcszPostambleKeysTX, core::kPostambleLoadBytes, bytes);
  // The transmit thread reads the bytes and the length; the length goes last.
  core::StoreShared(data.PostambleLengthTX, 0);
  data.PostambleBytesTX = bytes;
  core::StoreShared(data.PostambleLengthTX, length);
}

}  // namespace wavetrace::app
