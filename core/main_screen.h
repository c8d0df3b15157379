#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace wavetrace::core {

// Controls of the main screen besides the command buttons (which go by their
// command number).
namespace control {
inline constexpr int kReceiveWindow = 7100;
inline constexpr int kTransmitField = 7101;
inline constexpr int kStatusLine = 7102;
}  // namespace control

// One change for the views, in the order the changes were made.
struct ScreenEvent {
  enum class Kind {
    kStatus,      // Text: the new status line
    kRxEdit,      // receive window: [From, To) replaced by Text
    kRxReset,     // receive window: whole text is now Text (view lost track)
    kControls,    // button, menu, field or tray state changed: re-read the model
    kShowWindow,  // From: 1 show, 0 hide
    kActivate,    // bring the window to the front
  };
  Kind Type;
  int32_t From = 0;
  int32_t To = 0;
  std::u16string Text;
};

// The main screen without a screen: every rule about what is shown, enabled,
// greyed or checked is a rule on this model, which the Qt view and the
// headless view render. Thread-safe: worker threads report through it.
class MainScreen {
 public:
  MainScreen();

  // --- change notification -------------------------------------------------
  // Called (outside the model's lock) after each change while events are on.
  void SetListener(std::function<void()> listener);
  // A view that renders changes turns events on; without one nothing piles up.
  void SetEventsEnabled(bool enabled);
  std::vector<ScreenEvent> TakeEvents();
  // Hands every text put into the receive window to tap as well, on the
  // editing thread and in the order of the edits, so that a stream can follow
  // the window without its refresh pacing. tap must not block.
  void SetRxTap(std::function<void(std::u16string_view)> tap);

  // --- status line ---------------------------------------------------------
  void SetStatus(std::u16string_view text);
  [[nodiscard]] std::u16string Status() const;

  // --- receive window (a multi-line edit control) --------------------------
  [[nodiscard]] std::u16string RxText() const;
  [[nodiscard]] int32_t RxLength() const;
  // Selection [from, to); to = -1 means the end; the caret sits at `to`.
  void RxSetSelection(int32_t from, int32_t to);
  void RxSelectAll() { RxSetSelection(0, -1); }
  // Collapses the selection to the caret.
  void RxClearSelection();
  void RxSetCaretToEnd();
  [[nodiscard]] std::pair<int32_t, int32_t> RxSelection() const;
  void RxReplaceSelection(std::u16string_view text);
  // Clears the selection and inserts at the caret.
  void RxInsertAtCaret(std::u16string_view text);
  // Empties the text and sets the shown count to 0.
  void RxClear();
  void RxSetRedraw(bool on);
  [[nodiscard]] bool RxRedraw() const;
  [[nodiscard]] int32_t ShownCount() const;
  void SetShownCount(int32_t count);

  // --- transmit field with its history drop-down ---------------------------
  void SetTxText(std::u16string_view text);
  [[nodiscard]] std::u16string TxText() const;
  void SetTxEnabled(bool enabled);
  [[nodiscard]] bool TxEnabled() const;
  void SetTxHistory(std::vector<std::u16string> items);
  [[nodiscard]] std::vector<std::u16string> TxHistory() const;
  // Index of the selected history entry, -1 for none; selecting an entry puts
  // its text in the field.
  void SetTxSelection(int index);
  [[nodiscard]] int TxSelection() const;

  // --- buttons (by command number) -----------------------------------------
  void EnableButton(int command, bool enabled);
  [[nodiscard]] bool IsButtonEnabled(int command) const;
  void SetButtonPressed(int command, bool pressed);
  [[nodiscard]] bool IsButtonPressed(int command) const;
  void SetFocus(int control);
  [[nodiscard]] int Focus() const;

  // --- menu items (by command number) --------------------------------------
  void GreyMenuItem(int command, bool grey);
  [[nodiscard]] bool IsMenuItemGrey(int command) const;
  void CheckMenuItem(int command, bool checked);
  [[nodiscard]] bool IsMenuItemChecked(int command) const;

  // --- strips below the receive window (by their key, core::strip) --------
  void ShowStrip(int strip, bool shown);
  [[nodiscard]] bool StripShown(int strip) const;

  // --- window and tray -----------------------------------------------------
  void SetTitle(std::u16string_view title);
  [[nodiscard]] std::u16string Title() const;
  void ShowWindow(bool shown);
  [[nodiscard]] bool WindowShown() const;
  void Activate();
  // Tray icon: 0 none, 1 idle, 2 active.
  void SetTrayState(int state);
  [[nodiscard]] int TrayState() const;

 private:
  struct ButtonState {
    bool enabled = true;
    bool pressed = false;
  };
  struct MenuState {
    bool grey = false;
    bool checked = false;
  };

  // Records an event (with the lock held) and returns whether to notify.
  bool Record(ScreenEvent event);
  void Notify(bool notify);
  int32_t ClampPos(int32_t pos) const;

  mutable std::mutex mutex_;
  std::function<void()> listener_;
  std::function<void(std::u16string_view)> rxTap_;
  bool eventsEnabled_ = false;
  std::vector<ScreenEvent> events_;
  size_t eventBytes_ = 0;
  bool rxResync_ = false;

  std::u16string status_;
  std::u16string rxText_;
  int32_t selFrom_ = 0;
  int32_t selTo_ = 0;
  bool redraw_ = true;
  int32_t shownCount_ = 0;

  std::u16string txText_;
  bool txEnabled_ = true;
  std::vector<std::u16string> txHistory_;
  int txSelection_ = -1;

  std::map<int, ButtonState> buttons_;
  std::map<int, MenuState> menu_;
  std::map<int, bool> strips_;
  int focus_ = 0;
  std::u16string title_;
  bool shown_ = false;
  int trayState_ = 0;
};

}  // namespace wavetrace::core
