#include "ui/qt_view.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QSocketNotifier>
#include <QSystemTrayIcon>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include "app/button_page.h"
#include "app/comm_properties.h"
#include "app/line_control.h"
#include "app/port_scan_page.h"
#include "app/receive_options.h"
#include "app/startup.h"
#include "app/transmit_options.h"
#include "automation/function_buttons.h"
#include "config/program_options.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/files.h"
#include "ui/about_dialog.h"
#include "ui/comm_properties_dialog.h"
#include "ui/file_dialog_fit.h"
#include "ui/log_dialogs.h"
#include "ui/main_window_widget.h"
#include "ui/program_options_dialog.h"
#include "ui/receive_options_dialog.h"
#include "ui/receive_view.h"
#include "ui/reference_screens.h"
#include "ui/screen_scale.h"
#include "ui/transmit_options_dialog.h"
#include "ui/tray_icon.h"

namespace wavetrace::ui {
namespace {

QMessageBox::Icon ToQtIcon(core::BoxIcon icon) {
  switch (icon) {
    case core::BoxIcon::kInformation:
      return QMessageBox::Information;
    case core::BoxIcon::kWarning:
      return QMessageBox::Warning;
    case core::BoxIcon::kStop:
      return QMessageBox::Critical;
    case core::BoxIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QString BoxText(std::u16string_view text) {
  QString result = QString::fromStdU16String(std::u16string(text));
  result.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  return result;
}

}  // namespace

QtView::QtView(core::AppState& state, QObject* parent) : QObject(parent), state_(state) {
  QScreen* screen = QGuiApplication::primaryScreen();
  const QRect available = screen ? screen->availableGeometry() : QRect();
  if (screen) {
    screenHeight_ = screen->geometry().height();
    connect(screen, &QScreen::geometryChanged, this,
            [this](const QRect& rect) { screenHeight_ = rect.height(); });
  }
  // The window file is read before start-up has settled the folder.
  std::string folder =
      state_.ConfigFolder.empty() ? platform::ConfigFolder() : core::WideToUtf8(state_.ConfigFolder);
  placement_ = app::LoadWindowPlacement(folder);
  const QSize screenSize = screen ? screen->geometry().size() : QSize();
  layout_ = app::ChooseLayout(screenSize.width(), screenSize.height(), placement_.Layout,
                              static_cast<app::WindowLayout>(state_.Switches.Layout));
  const bool desktop = layout_ == app::WindowLayout::kDesktop;

  // The compact layout follows the desktop's font size (and so its scale).
  ScreenFit fit = FitToScreen(available.size(), QFontInfo(DesktopFont()).pixelSize());
  const ViewLayout layout{desktop, desktop ? 1.0 : fit.Scale};
  scale_ = layout.Scale;
  ApplyApplicationLook(layout);
  window_ = std::make_unique<MainWindowWidget>(layout);
  window_->resize(desktop ? window_->sizeHint().boundedTo(available.size()) : fit.WindowSize);
  if (auto frame = app::RestoredFrame(
          placement_, layout_, {available.x(), available.y(), available.width(), available.height()})) {
    window_->setGeometry(frame->X, frame->Y, frame->Width, frame->Height);
  }
  // The line status strip reads the port on the GUI thread, the main thread.
  window_->LineStatus()->SetReader([this] { return app::OpenPortLineStatus(state_); });
  connect(window_.get(), &MainWindowWidget::CommandRequested, this,
          [this](int command) { state_.Queue.PostCommand(command); });
  connect(window_.get(), &MainWindowWidget::StripCommandRequested, this,
          [this](int key) { state_.Queue.Post(core::MakeMessage(core::kWmStripCommand, key)); });
  connect(window_.get(), &MainWindowWidget::CloseRequested, this,
          [this] { state_.Queue.PostCommand(core::cmd::kExit); });
  connect(window_.get(), &MainWindowWidget::TransmitTextEdited, this,
          [this](const QString& text) { state_.Screen.SetTxText(text.toStdU16String()); });
  connect(window_.get(), &MainWindowWidget::TransmitHistoryChosen, this,
          [this](int index) { state_.Screen.SetTxSelection(index); });
  connect(window_.get(), &MainWindowWidget::SendFileRequested, this, &QtView::ChooseFileToSend);
  // Press and hold on RELAY or RECORD: the receive options at their page.
  connect(window_.get(), &MainWindowWidget::RelayOptionsRequested, this,
          [this] { ShowReceiveOptions(static_cast<int>(app::RxOptionsPage::kRelay)); });
  connect(window_.get(), &MainWindowWidget::LogOptionsRequested, this,
          [this] { ShowReceiveOptions(static_cast<int>(app::RxOptionsPage::kLogging)); });
  connect(window_.get(), &MainWindowWidget::FirstShown, this, &QtView::OnFirstShown);

  if (QSystemTrayIcon::isSystemTrayAvailable()) {
    tray_ = new TrayIcon(this);
    connect(tray_, &TrayIcon::LeftClicked, this,
            [this] { state_.Queue.Post(core::MakeMessage(core::kWmTrayCallback, 0, core::kWmLButtonDown)); });
  }

  // The queue's wake-up descriptor stays unwatched until the loop runs, so
  // that a box shown during start-up does not serve the queue early.
  notifier_ = new QSocketNotifier(state_.Queue.WakeFd(), QSocketNotifier::Read, this);
  notifier_->setEnabled(false);
  connect(notifier_, &QSocketNotifier::activated, this, &QtView::PumpQueue);
  timer_ = new QTimer(this);
  timer_->setSingleShot(true);
  connect(timer_, &QTimer::timeout, this, &QtView::PumpQueue);
}

QtView::~QtView() {
  if (waitCursor_) QGuiApplication::restoreOverrideCursor();
}

int QtView::RunMessageLoop() {
  notifier_->setEnabled(true);
  // What start-up queued (the window's first show among it) is served now.
  PumpQueue();
  if (loopEnded_) return state_.Queue.QuitCode();
  return QCoreApplication::exec();
}

void QtView::PumpQueue() {
  if (loopEnded_) return;
  // A modal box inside may serve the queue again and even end the loop.
  bool running = state_.Queue.DispatchPending();
  if (!running) {
    EndLoop();
    return;
  }
  if (!loopEnded_) ArmTimer();
}

void QtView::ArmTimer() {
  // The queue's timers are due inside DispatchPending; wake up for the next.
  int delay = state_.Queue.NextTimerDelayMs();
  if (delay < 0) {
    timer_->stop();
  } else {
    timer_->start(delay);
  }
}

void QtView::SavePlacement() {
  if (state_.ConfigFolder.empty() || window_->isMaximized() || window_->isFullScreen()) return;
  const QRect frame = window_->geometry();
  placement_.FrameLayout = layout_;
  placement_.Frame = {frame.x(), frame.y(), frame.width(), frame.height()};
  app::SaveWindowPlacement(core::WideToUtf8(state_.ConfigFolder), placement_);
}

void QtView::EndLoop() {
  if (loopEnded_) return;
  loopEnded_ = true;
  SavePlacement();
  notifier_->setEnabled(false);
  timer_->stop();
  QCoreApplication::exit(state_.Queue.QuitCode());
}

bool QtView::WindowExists() const {
  return state_.MainWindowExists && !state_.ShuttingDown;
}

QWidget* QtView::BoxParent() const {
  return window_->isVisible() ? window_.get() : nullptr;
}

QSize QtView::DialogRoom() const {
  return ui::DialogRoom(*window_);
}

void QtView::ShowMessageBox(std::u16string_view title, std::u16string_view text, core::BoxIcon icon) {
  if (interrupted_) return;  // the program is ending: no one waits for an answer
  QMessageBox box(ToQtIcon(icon), QString::fromStdU16String(std::u16string(title)), BoxText(text),
                  QMessageBox::Ok, BoxParent());
  box.setTextFormat(Qt::PlainText);
  // Fonts do not pass on to windows by themselves; boxes match the screen.
  box.setFont(window_->font());
  // The user must be able to answer a box raised in the middle of a long task.
  bool waiting = waitCursor_;
  if (waiting) QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
  box.exec();
  if (waiting) QGuiApplication::restoreOverrideCursor();
}

bool QtView::SetClipboardText(std::u16string_view text) {
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (!clipboard) return false;
  QString value = QString::fromStdU16String(std::u16string(text));
  clipboard->setText(value);
  return clipboard->text() == value;
}

void QtView::SetWaitCursor(bool wait) {
  if (QThread::currentThread() != thread()) {
    QMetaObject::invokeMethod(
        this, [this, wait] { SetWaitCursor(wait); }, Qt::QueuedConnection);
    return;
  }
  if (wait == waitCursor_) return;
  waitCursor_ = wait;
  if (wait) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}

void QtView::RenderScreenChanges() {
  // A change made while rendering (the first show writes the welcome text)
  // is taken after the events in hand, so that the edits stay in order.
  if (rendering_) {
    renderAgain_ = true;
    return;
  }
  rendering_ = true;
  do {
    renderAgain_ = false;
    std::vector<core::ScreenEvent> events = state_.Screen.TakeEvents();
    if (events.empty()) continue;
    ReceiveView* receive = window_->Receive();
    bool followEnd = receive->AtEnd();
    bool receiveChanged = false;
    for (const auto& event : events) {
      if (event.Type == core::ScreenEvent::Kind::kRxEdit || event.Type == core::ScreenEvent::Kind::kRxReset) {
        receiveChanged = true;
      }
      ApplyEvent(event);
    }
    if (receiveChanged && followEnd) receive->ScrollToEnd();
  } while (renderAgain_);
  rendering_ = false;
}

void QtView::ApplyEvent(const core::ScreenEvent& event) {
  using Kind = core::ScreenEvent::Kind;
  switch (event.Type) {
    case Kind::kStatus:
      window_->SetStatus(event.Text);
      break;
    case Kind::kRxEdit:
      window_->Receive()->ReplaceRange(event.From, event.To, event.Text);
      break;
    case Kind::kRxReset:
      window_->Receive()->ResetText(event.Text);
      break;
    case Kind::kControls:
      RefreshControls();
      break;
    case Kind::kShowWindow:
      ShowWindow(event.From != 0);
      break;
    case Kind::kActivate:
      Activate();
      break;
  }
}

void QtView::RefreshControls() {
  window_->RefreshControls(state_.Screen);
  SoftwareButtonStrip::Labels labels;
  for (size_t i = 0; i < labels.size(); ++i)
    labels[i] = automation::SoftwareButtonLabel(state_.Data, static_cast<int>(i) + 1);
  window_->RefreshStrips(state_.Screen, labels);
  if (tray_) tray_->SetState(state_.Screen.TrayState(), QString::fromStdU16String(state_.Screen.Title()));
}

void QtView::ShowWindow(bool shown) {
  if (!shown) {
    window_->hide();
    return;
  }
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void QtView::Activate() {
  if (window_->isMinimized()) window_->showNormal();
  ShowWindow(true);
}

void QtView::OnFirstShown() {
  app::OnFirstPaint(state_);
  RenderScreenChanges();
}

void QtView::ShowAbout(std::u16string_view releaseLine, bool automationMode) {
  AboutDialog dialog(releaseLine, automationMode, BoxParent());
  dialog.exec();
}

void QtView::ShowProgramOptions() {
  auto& options = state_.ProgramOptions;
  ProgramOptionValues values;
  values.DEFAULTcfg = options.DEFAULTcfg;
  values.MULTIinst = options.MULTIinst;
  values.AcquireHWbuttons = options.AcquireHWbuttons;
  values.DisableIcon = options.DisableIcon;
  values.Layout = placement_.Layout;
  ProgramOptionsDialog dialog(values, BoxParent());
  dialog.setFont(window_->font());
  if (dialog.exec() != QDialog::Accepted) return;
  values = dialog.Values();
  // The layout counts from the next start, as the page says.
  placement_.Layout = values.Layout;
  SavePlacement();
  options.DEFAULTcfg = values.DEFAULTcfg;
  options.MULTIinst = values.MULTIinst;
  options.AcquireHWbuttons = values.AcquireHWbuttons;
  options.DisableIcon = values.DisableIcon;
  automation::RegisterHardwareButtons(state_, options.AcquireHWbuttons == 1);
  bool saved = config::SaveProgramOptions(state_) == 0;
  core::ShowStatus(state_, saved ? u"Program Options saved." : u"Program Options could not be saved.");
}

void QtView::ShowTransmitOptions() {
  TransmitOptionsDialog dialog(app::TransmitOptionsOf(state_), app::ButtonStringChoices(state_), BoxParent());
  dialog.setFont(window_->font());
  // On a small screen the pages take the window's room, not more.
  dialog.resize(dialog.sizeHint().boundedTo(DialogRoom()));
  if (dialog.exec() != QDialog::Accepted) return;
  app::ApplyTransmitOptions(state_, dialog.Values());
}

bool QtView::ShowReceiveOptions(int page) {
  ReceiveOptionsDialog dialog(state_, static_cast<app::RxOptionsPage>(page), BoxParent());
  dialog.setFont(window_->font());
  // On a small screen the pages take the window's room, not more.
  dialog.resize(dialog.sizeHint().boundedTo(DialogRoom()));
  dialog.exec();
  return true;
}

bool QtView::ShowAsciiChart(bool variantB) {
  AsciiChartDialog dialog(app::AsciiChartRows(variantB), window_.get());
  dialog.setFont(window_->font());
  // A reference screen takes the whole window.
  dialog.resize(window_->size());
  dialog.exec();
  return true;
}

bool QtView::ShowPinouts() {
  PinoutsDialog dialog(scale_, window_.get());
  dialog.setFont(window_->font());
  dialog.resize(window_->size());
  if (!dialog.PicturesLoaded()) core::ShowErrorBox(state_, u"Pinouts Dialog: BMP's failed to load.", {});
  dialog.exec();
  return true;
}

QString QtView::PickExistingFile(const QString& title, const QString& folder) {
  QFileDialog dialog(BoxParent(), title, folder);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  FitFileDialog(dialog, window_->font(), DialogRoom());
  if (dialog.exec() != QDialog::Accepted) return {};
  const QStringList chosen = dialog.selectedFiles();
  return chosen.isEmpty() ? QString() : chosen.front();
}

void QtView::ChooseFileToSend() {
  const QString path = PickExistingFile(QStringLiteral("Send file..."), sendFileFolder_);
  if (path.isEmpty()) return;
  sendFileFolder_ = QFileInfo(path).absolutePath();
  // The field names the file; SEND then transmits the file instead of text.
  const QString field = QStringLiteral("[File::") + path + QLatin1Char(']');
  state_.Screen.SetTxText(field.toStdU16String());
}

std::u16string QtView::ChooseScriptFile() {
  // The folder of the last script (chosen here or named at start), else the
  // configuration folder.
  if (scriptFolder_.isEmpty()) {
    const std::u16string& named = state_.Switches.ScriptPath;
    scriptFolder_ = named.empty() ? QString::fromStdU16String(state_.ConfigFolder)
                                  : QFileInfo(QString::fromStdU16String(named)).absolutePath();
  }
  const QString path = PickExistingFile(QStringLiteral("Run script"), scriptFolder_);
  if (path.isEmpty()) return {};
  scriptFolder_ = QFileInfo(path).absolutePath();
  return path.toStdU16String();
}

bool QtView::OpenManual(const std::string& path, std::string_view fragment) {
  QUrl url = QUrl::fromLocalFile(QString::fromStdString(path));
  url.setFragment(QString::fromUtf8(fragment.data(), static_cast<qsizetype>(fragment.size())));
  return QDesktopServices::openUrl(url);
}

void QtView::ShowCommProperties() {
  CommPropertiesDialog dialog(state_.Port, state_.PortDevicePath, app::OpenPortScanPage(state_), BoxParent());
  dialog.setFont(window_->font());
  // On a small screen the pages take the window's room, not more.
  dialog.resize(dialog.sizeHint().boundedTo(DialogRoom()));
  if (dialog.exec() != QDialog::Accepted) {
    app::CancelPortScanPage(state_, dialog.PortScan());
    return;
  }
  core::PortSettings edited = state_.Port;
  dialog.WriteValues(edited);
  app::ApplyPortPages(state_, edited);
  app::ApplyPortScanPage(state_, dialog.PortScan());
}

void QtView::InterruptModal() {
  interrupted_ = true;
  QMetaObject::invokeMethod(
      this,
      [] {
        while (QWidget* modal = QApplication::activeModalWidget()) {
          if (!modal->close()) break;
        }
      },
      Qt::QueuedConnection);
}

std::u16string QtView::ChooseConfigFile(bool save, std::u16string_view start) {
  const QString startPath = QString::fromUtf16(start.data(), static_cast<qsizetype>(start.size()));
  const QFileInfo startInfo(startPath);
  const bool startIsFolder = !save || startInfo.isDir();
  QFileDialog dialog(BoxParent(), save ? QStringLiteral("SaveAs...") : QStringLiteral("Load..."),
                     startIsFolder ? startPath : startInfo.absolutePath());
  dialog.setNameFilters({QStringLiteral("Configuration files (*.cfg.txt)"), QStringLiteral("All files (*)")});
  dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  FitFileDialog(dialog, window_->font(), DialogRoom());
  if (!startIsFolder) dialog.selectFile(startInfo.fileName());
  if (dialog.exec() != QDialog::Accepted) return {};
  const QStringList chosen = dialog.selectedFiles();
  return chosen.isEmpty() ? std::u16string() : chosen.front().toStdU16String();
}

}  // namespace wavetrace::ui
