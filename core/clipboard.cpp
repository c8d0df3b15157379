#include "core/clipboard.h"

namespace wavetrace::core {

int CopyTextToClipboard(AppState& state, std::u16string_view text) {
  FrontEnd* view = state.View;
  if (!view || !view->WindowExists()) return 0;
  if (!view->BoxesNeedMainThread() || state.Queue.OnMainThread()) return view->SetClipboardText(text) ? 1 : 0;
  return static_cast<int>(state.Queue.RunOnMainThread([&] { return int64_t{view->SetClipboardText(text)}; }));
}

}  // namespace wavetrace::core
