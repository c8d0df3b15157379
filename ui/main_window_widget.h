#pragma once

#include <QMainWindow>
#include <map>
#include <string>

#include "core/main_screen.h"
#include "ui/screen_scale.h"
#include "ui/strips.h"

class QAction;
class QComboBox;
class QGridLayout;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

namespace wavetrace::ui {

class ReceiveView;

// The main screen: status line, receive window, transmit field, command
// buttons and the menu bar. It shows what the model says and reports what
// the user does; it decides nothing itself.
class MainWindowWidget : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindowWidget(const ViewLayout& layout, QWidget* parent = nullptr);

  [[nodiscard]] const ViewLayout& Layout() const { return layout_; }

  // Re-reads buttons, menu items, transmit field, title and layout.
  void RefreshControls(const core::MainScreen& screen);
  // Re-reads the two strips below the receive window: shown, enabled,
  // checked, and the software buttons' labels.
  void RefreshStrips(const core::MainScreen& screen, const SoftwareButtonStrip::Labels& softwareLabels);
  void SetStatus(const std::u16string& text);

  [[nodiscard]] ReceiveView* Receive() const { return receive_; }
  [[nodiscard]] QLabel* StatusLine() const { return status_; }
  // "paused" beside the status line while the receive window is paused.
  [[nodiscard]] QLabel* PausedMark() const { return paused_; }
  [[nodiscard]] QComboBox* TransmitField() const { return transmit_; }
  // Null for a command without a button or menu item.
  [[nodiscard]] QPushButton* Button(int command) const;
  [[nodiscard]] QAction* Action(int command) const;
  // The file picker beside the transmit field and its Edit menu item; both
  // only ask the view for a file, no command is involved.
  [[nodiscard]] QToolButton* SendFileButton() const { return sendFileButton_; }
  [[nodiscard]] QAction* SendFileAction() const { return sendFileAction_; }
  [[nodiscard]] PsmStrip* PortScanStrip() const { return psmStrip_; }
  [[nodiscard]] SoftwareButtonStrip* SoftwareButtons() const { return softwareStrip_; }
  [[nodiscard]] LineStatusStrip* LineStatus() const { return lineStrip_; }

  // The menu's Copy and Paste, which work on the focused widget.
  void CopyFromFocus();
  void PasteIntoTransmitField();

 signals:
  void CommandRequested(int command);
  // A control of a strip: the strip's key plus the control's number.
  void StripCommandRequested(int key);
  void TransmitTextEdited(const QString& text);
  void TransmitHistoryChosen(int index);
  void SendFileRequested();
  void RelayOptionsRequested();
  void LogOptionsRequested();
  void CloseRequested();
  void FirstShown();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void BuildMenus();
  QAction* AddItem(QMenu* menu, int command, const char* caption, bool checkable = false);
  void OnActionTriggered(int command);
  void OnButtonClicked(int command);
  void RefreshTransmitField(const core::MainScreen& screen);
  void ApplyFocus(int control);

  ViewLayout layout_;
  double scale_;
  QLabel* status_ = nullptr;
  QLabel* paused_ = nullptr;
  ReceiveView* receive_ = nullptr;
  QComboBox* transmit_ = nullptr;
  QToolButton* sendFileButton_ = nullptr;
  QAction* sendFileAction_ = nullptr;
  PsmStrip* psmStrip_ = nullptr;
  SoftwareButtonStrip* softwareStrip_ = nullptr;
  LineStatusStrip* lineStrip_ = nullptr;
  QWidget* buttonPanel_ = nullptr;
  std::map<int, QPushButton*> buttons_;
  std::map<int, QAction*> actions_;
  int renderedFocus_ = 0;
  bool shownOnce_ = false;
};

// How large a dialog over widget's window may be: the main window's size in
// the compact layout (a panel has no more), the screen's usable area on the
// desktop.
QSize DialogRoom(const QWidget& widget);

}  // namespace wavetrace::ui
