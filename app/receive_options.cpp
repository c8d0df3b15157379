#include "app/receive_options.h"

#include "rx/postamble.h"

namespace wavetrace::app {

ReceiveOptionValues ReceiveOptionsOf(const core::AppState& state) {
  const auto& data = state.Data;
  return {data.FilterNP, data.NonChars, data.BinBrackets, data.DisableSnR, data.wcszPostambleKeysRX};
}

void ApplyReceiveOptions(core::AppState& state, const ReceiveOptionValues& values) {
  auto& data = state.Data;
  data.FilterNP = values.FilterNP;
  data.NonChars = values.NonChars;
  data.BinBrackets = values.BinBrackets;
  data.DisableSnR = values.DisableSnR;
  rx::ApplyPostambleField(data, values.PostambleKeysRX);
  core::PublishSettings(state);
}

void ApplyReplacePage(core::AppState& state, const rx::RuleFields& fields) {
  rx::ApplyRulePage(state.Data, fields);
  core::PublishSettings(state);
}

}  // namespace wavetrace::app
