#include "core/main_screen.h"

#include <algorithm>

namespace wavetrace::core {
namespace {
// Past this much unrendered text the view is told to re-read the whole
// receive window instead of replaying every edit.
constexpr size_t kMaxPendingEventBytes = 8u << 20;
}  // namespace

MainScreen::MainScreen() = default;

void MainScreen::SetListener(std::function<void()> listener) {
  std::lock_guard lock(mutex_);
  listener_ = std::move(listener);
}

void MainScreen::SetEventsEnabled(bool enabled) {
  std::lock_guard lock(mutex_);
  eventsEnabled_ = enabled;
  events_.clear();
  eventBytes_ = 0;
  rxResync_ = false;
}

void MainScreen::SetRxTap(std::function<void(std::u16string_view)> tap) {
  std::lock_guard lock(mutex_);
  rxTap_ = std::move(tap);
}

std::vector<ScreenEvent> MainScreen::TakeEvents() {
  std::lock_guard lock(mutex_);
  std::vector<ScreenEvent> taken;
  taken.swap(events_);
  eventBytes_ = 0;
  if (rxResync_) {
    // The edits were dropped; keep the other events in order, then one reset.
    std::erase_if(taken, [](const ScreenEvent& e) { return e.Type == ScreenEvent::Kind::kRxEdit; });
    taken.push_back(ScreenEvent{ScreenEvent::Kind::kRxReset, 0, 0, rxText_});
    rxResync_ = false;
  }
  return taken;
}

bool MainScreen::Record(ScreenEvent event) {
  if (!eventsEnabled_) return false;
  if (event.Type == ScreenEvent::Kind::kRxEdit) {
    if (rxResync_) return true;
    if (eventBytes_ + event.Text.size() * 2 > kMaxPendingEventBytes) {
      rxResync_ = true;
      return true;
    }
  }
  if (event.Type == ScreenEvent::Kind::kControls && !events_.empty() &&
      events_.back().Type == ScreenEvent::Kind::kControls) {
    return true;
  }
  eventBytes_ += event.Text.size() * 2;
  events_.push_back(std::move(event));
  return true;
}

void MainScreen::Notify(bool notify) {
  if (!notify) return;
  std::function<void()> listener;
  {
    std::lock_guard lock(mutex_);
    listener = listener_;
  }
  if (listener) listener();
}

int32_t MainScreen::ClampPos(int32_t pos) const {
  auto len = static_cast<int32_t>(rxText_.size());
  if (pos < 0 || pos > len) return len;
  return pos;
}

void MainScreen::SetStatus(std::u16string_view text) {
  bool notify;
  {
    std::lock_guard lock(mutex_);
    status_ = text;
    notify = Record({ScreenEvent::Kind::kStatus, 0, 0, status_});
  }
  Notify(notify);
}

std::u16string MainScreen::Status() const {
  std::lock_guard lock(mutex_);
  return status_;
}

std::u16string MainScreen::RxText() const {
  std::lock_guard lock(mutex_);
  return rxText_;
}

int32_t MainScreen::RxLength() const {
  std::lock_guard lock(mutex_);
  return static_cast<int32_t>(rxText_.size());
}

void MainScreen::RxSetSelection(int32_t from, int32_t to) {
  std::lock_guard lock(mutex_);
  if (from == -1) {  // deselect, the caret stays
    selFrom_ = selTo_;
    return;
  }
  selFrom_ = ClampPos(from);
  selTo_ = ClampPos(to);
}

void MainScreen::RxClearSelection() {
  std::lock_guard lock(mutex_);
  selFrom_ = selTo_;
}

void MainScreen::RxSetCaretToEnd() {
  std::lock_guard lock(mutex_);
  selFrom_ = selTo_ = static_cast<int32_t>(rxText_.size());
}

std::pair<int32_t, int32_t> MainScreen::RxSelection() const {
  std::lock_guard lock(mutex_);
  return {selFrom_, selTo_};
}

void MainScreen::RxReplaceSelection(std::u16string_view text) {
  bool notify;
  {
    std::lock_guard lock(mutex_);
    int32_t from = std::min(selFrom_, selTo_);
    int32_t to = std::max(selFrom_, selTo_);
    rxText_.replace(static_cast<size_t>(from), static_cast<size_t>(to - from), text);
    selFrom_ = selTo_ = from + static_cast<int32_t>(text.size());
    if (rxTap_ && !text.empty()) rxTap_(text);
    notify = Record({ScreenEvent::Kind::kRxEdit, from, to, std::u16string(text)});
  }
  Notify(notify);
}

void MainScreen::RxInsertAtCaret(std::u16string_view text) {
  RxClearSelection();
  RxReplaceSelection(text);
}

void MainScreen::RxClear() {
  bool notify;
  {
    std::lock_guard lock(mutex_);
    auto len = static_cast<int32_t>(rxText_.size());
    rxText_.clear();
    selFrom_ = selTo_ = 0;
    shownCount_ = 0;
    notify = Record({ScreenEvent::Kind::kRxEdit, 0, len, {}});
  }
  Notify(notify);
}

void MainScreen::RxSetRedraw(bool on) {
  std::lock_guard lock(mutex_);
  redraw_ = on;
}

bool MainScreen::RxRedraw() const {
  std::lock_guard lock(mutex_);
  return redraw_;
}

int32_t MainScreen::ShownCount() const {
  std::lock_guard lock(mutex_);
  return shownCount_;
}

void MainScreen::SetShownCount(int32_t count) {
  std::lock_guard lock(mutex_);
  shownCount_ = count;
}

#define WAVETRACE_CONTROL_SETTER(body)                         \
  bool notify;                                                 \
  {                                                            \
    std::lock_guard lock(mutex_);                              \
    body;                                                      \
    notify = Record({ScreenEvent::Kind::kControls, 0, 0, {}}); \
  }                                                            \
  Notify(notify)

void MainScreen::SetTxText(std::u16string_view text) {
  WAVETRACE_CONTROL_SETTER(txText_ = text);
}

std::u16string MainScreen::TxText() const {
  std::lock_guard lock(mutex_);
  return txText_;
}

void MainScreen::SetTxEnabled(bool enabled) {
  WAVETRACE_CONTROL_SETTER(txEnabled_ = enabled);
}

bool MainScreen::TxEnabled() const {
  std::lock_guard lock(mutex_);
  return txEnabled_;
}

void MainScreen::SetTxHistory(std::vector<std::u16string> items) {
  WAVETRACE_CONTROL_SETTER(txHistory_ = std::move(items); txSelection_ = -1);
}

std::vector<std::u16string> MainScreen::TxHistory() const {
  std::lock_guard lock(mutex_);
  return txHistory_;
}

void MainScreen::SetTxSelection(int index) {
  // Choosing an entry of the drop-down puts its text in the field.
  WAVETRACE_CONTROL_SETTER(txSelection_ =
                               (index >= 0 && index < static_cast<int>(txHistory_.size())) ? index : -1;
                           if (txSelection_ >= 0) txText_ = txHistory_[static_cast<size_t>(txSelection_)]);
}

int MainScreen::TxSelection() const {
  std::lock_guard lock(mutex_);
  return txSelection_;
}

void MainScreen::EnableButton(int command, bool enabled) {
  WAVETRACE_CONTROL_SETTER(buttons_[command].enabled = enabled);
}

bool MainScreen::IsButtonEnabled(int command) const {
  std::lock_guard lock(mutex_);
  auto it = buttons_.find(command);
  return it == buttons_.end() || it->second.enabled;
}

void MainScreen::SetButtonPressed(int command, bool pressed) {
  WAVETRACE_CONTROL_SETTER(buttons_[command].pressed = pressed);
}

bool MainScreen::IsButtonPressed(int command) const {
  std::lock_guard lock(mutex_);
  auto it = buttons_.find(command);
  return it != buttons_.end() && it->second.pressed;
}

void MainScreen::SetFocus(int control) {
  WAVETRACE_CONTROL_SETTER(focus_ = control);
}

int MainScreen::Focus() const {
  std::lock_guard lock(mutex_);
  return focus_;
}

void MainScreen::GreyMenuItem(int command, bool grey) {
  WAVETRACE_CONTROL_SETTER(menu_[command].grey = grey);
}

bool MainScreen::IsMenuItemGrey(int command) const {
  std::lock_guard lock(mutex_);
  auto it = menu_.find(command);
  return it != menu_.end() && it->second.grey;
}

void MainScreen::CheckMenuItem(int command, bool checked) {
  WAVETRACE_CONTROL_SETTER(menu_[command].checked = checked);
}

bool MainScreen::IsMenuItemChecked(int command) const {
  std::lock_guard lock(mutex_);
  auto it = menu_.find(command);
  return it != menu_.end() && it->second.checked;
}

void MainScreen::ShowStrip(int strip, bool shown) {
  WAVETRACE_CONTROL_SETTER(strips_[strip] = shown);
}

bool MainScreen::StripShown(int strip) const {
  std::lock_guard lock(mutex_);
  auto it = strips_.find(strip);
  return it != strips_.end() && it->second;
}

void MainScreen::SetTitle(std::u16string_view title) {
  WAVETRACE_CONTROL_SETTER(title_ = title);
}

std::u16string MainScreen::Title() const {
  std::lock_guard lock(mutex_);
  return title_;
}

void MainScreen::ShowWindow(bool shown) {
  bool notify;
  {
    std::lock_guard lock(mutex_);
    shown_ = shown;
    notify = Record({ScreenEvent::Kind::kShowWindow, shown ? 1 : 0, 0, {}});
  }
  Notify(notify);
}

bool MainScreen::WindowShown() const {
  std::lock_guard lock(mutex_);
  return shown_;
}

void MainScreen::Activate() {
  bool notify;
  {
    std::lock_guard lock(mutex_);
    notify = Record({ScreenEvent::Kind::kActivate, 0, 0, {}});
  }
  Notify(notify);
}

void MainScreen::SetTrayState(int state) {
  WAVETRACE_CONTROL_SETTER(trayState_ = state);
}

int MainScreen::TrayState() const {
  std::lock_guard lock(mutex_);
  return trayState_;
}

#undef WAVETRACE_CONTROL_SETTER

}  // namespace wavetrace::core
