#include "automation/function_buttons.h"

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"

namespace wavetrace::automation {
namespace {

using namespace core::cmd;

// Runs the function of a token; false when text is no token.
bool RunToken(core::AppState& state, std::u16string_view text) {
  auto& queue = state.Queue;
  if (text == kFunctionTokens[0]) {
    queue.SendCommand(kScreenOff);
  } else if (text == kFunctionTokens[1]) {
    if (!state.PlayFlag.exchange(true)) queue.SendCommand(kPlay);
  } else if (text == kFunctionTokens[2]) {
    if (state.PlayFlag.exchange(false)) queue.SendCommand(kStop);
  } else if (text == kFunctionTokens[3]) {
    queue.SendCommand(kClearReceiveWindow);
  } else if (text == kFunctionTokens[4]) {
    queue.SendCommand(kExit);
  } else {
    return false;
  }
  return true;
}

}  // namespace

void PressFunctionButton(core::AppState& state, ButtonKind kind, int number) {
  const auto& data = state.Data;
  bool hardware = kind == ButtonKind::kHardware;
  size_t count = hardware ? data.HardwareButtonData.size() : data.SoftwareButtonData.size();
  if (number < 1 || static_cast<size_t>(number) > count) return;
  auto index = static_cast<size_t>(number - 1);
  std::u16string text = hardware ? data.HardwareButtonData[index] : data.SoftwareButtonData[index];
  if (hardware && RunToken(state, text)) return;
  auto& screen = state.Screen;
  if (!screen.TxEnabled() || text.empty()) return;
  screen.SetTxText(text);
  if (screen.TxText().empty()) return;
  screen.SetButtonPressed(kSend, !screen.IsButtonPressed(kSend));
  state.Queue.SendCommand(kSend);
}

void ShowSoftwareButtons(core::AppState& state, bool shown) {
  using namespace core::strip;
  for (int n = 1; n <= kSoftwareButtonCount; ++n) {
    state.Screen.EnableButton(kSoftwareStrip + kFirstSoftwareButton + n - 1, n <= kPressableSoftwareButtons);
  }
  state.Screen.ShowStrip(kSoftwareStrip, shown);
}

std::u16string SoftwareButtonLabel(const core::DataSettings& data, int number) {
  if (number < 1 || number > kPressableSoftwareButtons) return {};
  return data.SoftwareButtonCaption[static_cast<size_t>(number - 1)];
}

void RegisterHardwareButtons(core::AppState& state, bool enable) {
  if (!enable) {
    state.HardwareButtonKeys.reset();
    return;
  }
  if (state.HardwareButtonKeys) return;
  auto keys = std::make_unique<platform::HotKeys>(
      kHotKeyTable, [&queue = state.Queue](int id) { queue.Post(core::MakeMessage(core::kWmHotKey, id)); });
  if (!keys->Unavailable().empty()) {
    core::ShowStatus(state, u"Hardware buttons not acquired: " + core::Utf8ToWide(keys->Unavailable()));
    return;
  }
  if (!keys->Refused().empty()) {
    std::string held;
    for (const std::string& key : keys->Refused()) held += (held.empty() ? "" : ", ") + key;
    core::ShowStatus(state, u"Hot keys held by another program: " + core::Utf8ToWide(held));
  }
  state.HardwareButtonKeys = std::move(keys);
}

void OnHotKey(core::AppState& state, int hotKey) {
  int button = hotKey - core::kFirstHotKey + 1;
  if (button >= 1 && button <= core::kHardwareButtonCount)
    PressFunctionButton(state, ButtonKind::kHardware, button);
}

}  // namespace wavetrace::automation
