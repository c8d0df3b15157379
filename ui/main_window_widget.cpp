#include "ui/main_window_widget.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QShowEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <array>

#include "core/messages.h"
#include "ui/receive_view.h"
#include "ui/screen_scale.h"

namespace wavetrace::ui {
namespace {

using namespace core::cmd;

struct ButtonEntry {
  int command;
  const char* caption;
};

// Compact: three rows (connection, sending and logging, view); desktop: one.
constexpr std::array<ButtonEntry, 9> kButtons = {{
    {kPlay, "PLAY"},
    {kStop, "STOP"},
    {kSend, "SEND"},
    {kRepeat, "REPEAT"},
    {kRecord, "RECORD"},
    {kRelay, "RELAY"},
    {kAsciiButton, "ASCII"},
    {kBinaryButton, "BINARY"},
    {kClearButton, "CLEAR"},
}};
constexpr int kButtonColumns = 3;

// Pixel sizes on the 240x320 screen, scaled with the window.
constexpr int kFontPixels = kLayoutFontPixels;
constexpr int kReceiveFontPixels = kLayoutFontPixels;
constexpr int kSpacing = 2;

// Line ends inside a message become blanks: the compact status line has one
// line, and the desktop's wraps by itself.
QString StatusLineText(const std::u16string& text) {
  QString line = QString::fromStdU16String(text);
  line.replace(QLatin1String("\r\n"), QLatin1String(" "));
  line.replace(QLatin1Char('\r'), QLatin1Char(' '));
  line.replace(QLatin1Char('\n'), QLatin1Char(' '));
  return line;
}

}  // namespace

MainWindowWidget::MainWindowWidget(const ViewLayout& layout, QWidget* parent)
    : QMainWindow(parent), layout_(layout), scale_(layout.Desktop ? 1.0 : layout.Scale) {
  // The compact layout's scaled font; the desktop's own on the desktop.
  if (!layout_.Desktop) {
    QFont uiFont = font();
    uiFont.setPixelSize(Scaled(scale_, kFontPixels));
    setFont(uiFont);
  }

  auto* central = new QWidget(this);
  auto* column = new QVBoxLayout(central);
  int spacing = layout_.Desktop ? column->spacing() : Scaled(scale_, kSpacing);
  if (!layout_.Desktop) column->setContentsMargins(spacing, spacing, spacing, spacing);
  column->setSpacing(spacing);

  auto* statusRow = new QHBoxLayout;
  statusRow->setSpacing(spacing);
  status_ = new QLabel(central);
  status_->setObjectName(QStringLiteral("statusLine"));
  status_->setTextFormat(Qt::PlainText);
  status_->setFrameShape(QFrame::StyledPanel);
  if (layout_.Desktop) {
    // Wrapped over as many lines as it needs (three for the longest
    // messages), and selectable, so that an error code can be copied.
    status_->setWordWrap(true);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    status_->setMinimumHeight(status_->fontMetrics().lineSpacing() + 2 * status_->frameWidth() + 2);
  } else {
    // A long error message must not widen the window; the tool tip keeps it whole.
    status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    status_->setMinimumHeight(status_->fontMetrics().height() + 2 * spacing);
  }
  statusRow->addWidget(status_, 1);
  paused_ = new QLabel(QStringLiteral("paused"), central);
  paused_->setObjectName(QStringLiteral("pausedMark"));
  paused_->setFrameShape(QFrame::StyledPanel);
  paused_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  paused_->hide();
  statusRow->addWidget(paused_);
  column->addLayout(statusRow);

  receive_ = new ReceiveView(central);
  receive_->setObjectName(QStringLiteral("receiveWindow"));
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  if (layout_.Desktop) {
    receive_->SetPreferredText(kDesktopColumns, kDesktopLines);
  } else {
    fixed.setPixelSize(Scaled(scale_, kReceiveFontPixels));
  }
  receive_->setFont(fixed);
  column->addWidget(receive_, 1);

  // The strips take their room from the receive window, which alone
  // stretches; full screen keeps them.
  psmStrip_ = new PsmStrip(scale_, central);
  psmStrip_->hide();
  column->addWidget(psmStrip_);
  softwareStrip_ = new SoftwareButtonStrip(scale_, central);
  softwareStrip_->hide();
  column->addWidget(softwareStrip_);
  lineStrip_ = new LineStatusStrip(central);
  lineStrip_->hide();
  column->addWidget(lineStrip_);
  connect(psmStrip_, &PsmStrip::StripCommand, this, &MainWindowWidget::StripCommandRequested);
  connect(softwareStrip_, &SoftwareButtonStrip::StripCommand, this, &MainWindowWidget::StripCommandRequested);

  buttonPanel_ = new QWidget(central);
  auto* panel = new QVBoxLayout(buttonPanel_);
  panel->setContentsMargins(0, 0, 0, 0);
  panel->setSpacing(spacing);

  transmit_ = new QComboBox(buttonPanel_);
  transmit_->setObjectName(QStringLiteral("transmitField"));
  transmit_->setEditable(true);
  // The history list is the model's; the field never adds to it by itself.
  transmit_->setInsertPolicy(QComboBox::NoInsert);
  transmit_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  transmit_->setMinimumContentsLength(8);
  auto* transmitRow = new QHBoxLayout;
  transmitRow->setSpacing(spacing);
  transmitRow->addWidget(transmit_, 1);
  // A small button so that the field keeps its room on a 240 pixel screen.
  sendFileButton_ = new QToolButton(buttonPanel_);
  sendFileButton_->setObjectName(QStringLiteral("sendFileButton"));
  sendFileButton_->setText(QStringLiteral("..."));
  sendFileButton_->setToolTip(QStringLiteral("Send file..."));
  sendFileButton_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  transmitRow->addWidget(sendFileButton_);
  panel->addLayout(transmitRow);
  connect(sendFileButton_, &QToolButton::clicked, this, &MainWindowWidget::SendFileRequested);
  connect(transmit_, &QComboBox::editTextChanged, this, &MainWindowWidget::TransmitTextEdited);
  connect(transmit_, &QComboBox::activated, this, &MainWindowWidget::TransmitHistoryChosen);
  connect(transmit_->lineEdit(), &QLineEdit::returnPressed, this, [this] {
    // Enter in the field is a tap on SEND.
    QPushButton* send = Button(kSend);
    if (send && send->isEnabled()) emit CommandRequested(kSend);
  });

  auto* grid = new QGridLayout;
  grid->setSpacing(spacing);
  for (size_t i = 0; i < kButtons.size(); ++i) {
    const ButtonEntry& entry = kButtons[i];
    auto* button = new QPushButton(QString::fromLatin1(entry.caption), buttonPanel_);
    button->setObjectName(QStringLiteral("button%1").arg(entry.command));
    // Checkable so that a pressed state from the model can be shown.
    button->setCheckable(true);
    if (!layout_.Desktop) button->setMinimumHeight(Scaled(scale_, 24));
    button->setSizePolicy(layout_.Desktop ? QSizePolicy::Preferred : QSizePolicy::Ignored,
                          QSizePolicy::Fixed);
    int command = entry.command;
    connect(button, &QPushButton::clicked, this, [this, command] { OnButtonClicked(command); });
    if (command == kRelay || command == kRecord) {
      // Press and hold (or the right button) opens the Relay or the Logging page.
      button->setContextMenuPolicy(Qt::CustomContextMenu);
      connect(button, &QPushButton::customContextMenuRequested, this,
              command == kRelay ? &MainWindowWidget::RelayOptionsRequested
                                : &MainWindowWidget::LogOptionsRequested);
    }
    int columns = layout_.Desktop ? static_cast<int>(kButtons.size()) : kButtonColumns;
    grid->addWidget(button, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
    buttons_[entry.command] = button;
  }
  panel->addLayout(grid);
  column->addWidget(buttonPanel_);

  setCentralWidget(central);
  BuildMenus();
  // F10 opens the menu bar, as on other desktop programs.
  auto* menuKey = new QShortcut(QKeySequence(Qt::Key_F10), this);
  connect(menuKey, &QShortcut::activated, this, [this] {
    QMenuBar* bar = menuBar();
    if (bar->actions().isEmpty()) return;
    bar->setFocus(Qt::ShortcutFocusReason);
    bar->setActiveAction(bar->actions().front());
  });
}

QAction* MainWindowWidget::AddItem(QMenu* menu, int command, const char* caption, bool checkable) {
  QAction* action = menu->addAction(QString::fromLatin1(caption));
  action->setObjectName(QStringLiteral("action%1").arg(command));
  action->setCheckable(checkable);
  action->setMenuRole(QAction::NoRole);
  connect(action, &QAction::triggered, this, [this, command] { OnActionTriggered(command); });
  actions_[command] = action;
  return action;
}

// Captions carry their mnemonic ("&"): Alt and the letter on the menu bar,
// the letter alone inside a menu. The captions themselves are unchanged.
void MainWindowWidget::BuildMenus() {
  QMenuBar* bar = menuBar();
  auto addMenu = [](auto* parent, const char* title) { return parent->addMenu(QString::fromLatin1(title)); };

  QMenu* program = addMenu(bar, "&Program");
  AddItem(program, kAbout, "&About...");
  AddItem(program, kHelp, "&Help")->setShortcut(QKeySequence(Qt::Key_F1));
  AddItem(program, kRunScript, "&Run script");
  QMenu* config = addMenu(program, "&Config");
  AddItem(config, kConfigLoad, "&Load...");
  AddItem(config, kConfigSave, "&Save");
  AddItem(config, kConfigSaveAs, "Save&As...");
  AddItem(config, kConfigSetDefault, "Set as &Default");
  AddItem(program, kProgramOptions, "&Options");
  program->addSeparator();
  AddItem(program, kExit, "E&xit")->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));

  QMenu* edit = addMenu(bar, "&Edit");
  // A field with the focus keeps its own Ctrl+C and Ctrl+V (Qt lets it
  // override the shortcut); elsewhere they reach these items.
  AddItem(edit, kCopy, "&Copy")->setShortcut(QKeySequence::Copy);
  AddItem(edit, kPaste, "&Paste")->setShortcut(QKeySequence::Paste);
  sendFileAction_ = edit->addAction(QStringLiteral("Send &file..."));
  sendFileAction_->setObjectName(QStringLiteral("actionSendFile"));
  sendFileAction_->setMenuRole(QAction::NoRole);
  connect(sendFileAction_, &QAction::triggered, this, &MainWindowWidget::SendFileRequested);
  QMenu* clear = addMenu(edit, "C&lear...");
  AddItem(clear, kClearReceiveWindow, "&Received window")->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
  AddItem(clear, kClearSendHistory, "Send &history");
  edit->addSeparator();
  AddItem(edit, kReceiveOptions, "&Receive Options");
  AddItem(edit, kTransmitOptions, "&Transmit Options");
  AddItem(edit, kCommProperties, "Co&mmunication Properties");
  edit->addSeparator();
  AddItem(edit, kSendBreak, "Send &Break");
  AddItem(edit, kToggleRts, "RT&S", true);
  AddItem(edit, kToggleDtr, "&DTR", true);

  QMenu* display = addMenu(bar, "&Display");
  AddItem(display, kScreenOff, "&ScreenOff");
  AddItem(display, kFullscreen, "&Fullscreen", true);
  AddItem(display, kBacklightOnReceive, "&Backlight ON receive", true);
  display->addSeparator();
  // One radix at a time: radio marks.
  auto* radix = new QActionGroup(this);
  radix->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
  for (auto [command, caption] : {std::pair{kDecimal, "&Decimal"}, std::pair{kHex, "&Hex"},
                                  std::pair{kOctal, "&Octal"}, std::pair{kBinary, "Bi&nary"}}) {
    radix->addAction(AddItem(display, command, caption, true));
  }
  display->addSeparator();
  AddItem(display, kPauseRxDisplay, "&Pause Received window", true);
  AddItem(display, kSoftwareButtons, "Soft&ware Buttons", true);
  AddItem(display, kLineStatus, "&Line Status", true);
  display->addSeparator();
  AddItem(display, kAsciiChart, "&ASCII Chart");
  AddItem(display, kCommPinouts, "&Comm. Pinouts");
}

QPushButton* MainWindowWidget::Button(int command) const {
  auto it = buttons_.find(command);
  return it == buttons_.end() ? nullptr : it->second;
}

QAction* MainWindowWidget::Action(int command) const {
  auto it = actions_.find(command);
  return it == actions_.end() ? nullptr : it->second;
}

void MainWindowWidget::OnActionTriggered(int command) {
  QAction* action = Action(command);
  // The check mark is the model's: undo Qt's own toggle until the model says.
  if (action && action->isCheckable()) action->setChecked(!action->isChecked());
  switch (command) {
    case kCopy:
      CopyFromFocus();
      return;
    case kPaste:
      PasteIntoTransmitField();
      return;
    default:
      emit CommandRequested(command);
  }
}

void MainWindowWidget::OnButtonClicked(int command) {
  QPushButton* button = Button(command);
  // As with the check marks, the pressed state waits for the model.
  if (button) button->setChecked(!button->isChecked());
  emit CommandRequested(command);
}

void MainWindowWidget::CopyFromFocus() {
  QWidget* focus = QApplication::focusWidget();
  if (!focus) return;
  // The combo box holds the focus for its edit part.
  if (focus == transmit_) focus = transmit_->lineEdit();
  // Whatever has the focus copies its own selection, if it can.
  QMetaObject::invokeMethod(focus, "copy");
}

void MainWindowWidget::PasteIntoTransmitField() {
  QLineEdit* edit = transmit_->lineEdit();
  QWidget* focus = QApplication::focusWidget();
  if (focus != transmit_ && focus != edit) {
    transmit_->setFocus(Qt::OtherFocusReason);
    edit->clear();
  }
  edit->paste();
}

void MainWindowWidget::SetStatus(const std::u16string& text) {
  QString line = StatusLineText(text);
  status_->setText(line);
  // The desktop's status line shows the whole text itself.
  if (!layout_.Desktop) status_->setToolTip(line);
}

void MainWindowWidget::RefreshTransmitField(const core::MainScreen& screen) {
  QSignalBlocker blocker(transmit_);
  QStringList items;
  for (const auto& item : screen.TxHistory()) items << QString::fromStdU16String(item);
  QStringList current;
  for (int i = 0; i < transmit_->count(); ++i) current << transmit_->itemText(i);
  if (items != current) {
    transmit_->clear();
    transmit_->addItems(items);
  }
  int selection = screen.TxSelection();
  if (transmit_->currentIndex() != selection) transmit_->setCurrentIndex(selection);
  QString text = QString::fromStdU16String(screen.TxText());
  if (transmit_->currentText() != text) transmit_->setEditText(text);
  transmit_->setEnabled(screen.TxEnabled());
  // While a send runs the field is locked, and so is choosing a file for it.
  sendFileButton_->setEnabled(screen.TxEnabled());
  sendFileAction_->setEnabled(screen.TxEnabled());
}

void MainWindowWidget::ApplyFocus(int control) {
  if (control == renderedFocus_) return;
  renderedFocus_ = control;
  QWidget* target = nullptr;
  switch (control) {
    case core::control::kReceiveWindow:
      target = receive_;
      break;
    case core::control::kTransmitField:
      target = transmit_;
      break;
    default:
      target = Button(control);
      break;
  }
  if (target && target->isEnabled()) target->setFocus(Qt::OtherFocusReason);
}

void MainWindowWidget::RefreshControls(const core::MainScreen& screen) {
  for (auto& [command, button] : buttons_) {
    button->setEnabled(screen.IsButtonEnabled(command));
    button->setChecked(screen.IsButtonPressed(command));
  }
  for (auto& [command, action] : actions_) {
    action->setEnabled(!screen.IsMenuItemGrey(command));
    if (action->isCheckable()) action->setChecked(screen.IsMenuItemChecked(command));
  }
  RefreshTransmitField(screen);
  setWindowTitle(QString::fromStdU16String(screen.Title()));
  // Full screen gives the receive window the room of the controls below it.
  buttonPanel_->setVisible(!screen.IsMenuItemChecked(kFullscreen));
  paused_->setVisible(screen.IsMenuItemChecked(kPauseRxDisplay));
  ApplyFocus(screen.Focus());
}

void MainWindowWidget::RefreshStrips(const core::MainScreen& screen,
                                     const SoftwareButtonStrip::Labels& softwareLabels) {
  psmStrip_->Refresh(screen);
  softwareStrip_->Refresh(screen, softwareLabels);
  lineStrip_->setVisible(screen.StripShown(core::strip::kLineStatusStrip));
}

QSize DialogRoom(const QWidget& widget) {
  const QWidget* window = widget.window();
  while (window->parentWidget()) window = window->parentWidget()->window();
  auto* main = qobject_cast<const MainWindowWidget*>(window);
  QScreen* screen = window->screen();
  if (!main || !main->Layout().Desktop || !screen) return window->size();
  return screen->availableGeometry().size();
}

void MainWindowWidget::closeEvent(QCloseEvent* event) {
  // Closing is the Exit command: the shutdown decides when the window goes.
  event->ignore();
  emit CloseRequested();
}

void MainWindowWidget::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (shownOnce_ || event->spontaneous()) return;
  shownOnce_ = true;
  emit FirstShown();
}

}  // namespace wavetrace::ui
