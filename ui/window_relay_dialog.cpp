#include "ui/window_relay_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace wavetrace::ui {

WindowRelayDialog::WindowRelayDialog(core::AppState& state, QWidget* parent)
    : QDialog(parent),
      state_(state),
      openedTarget_(state.RelayTargetWindow),
      openedClassNames_(state.Data.ShowClassNames),
      openedVirtualKeyboard_(state.WindowRelayVirtualKeyboard) {
  setWindowTitle(QStringLiteral("Relay to WINDOW"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      new QLabel(QStringLiteral("Forward received data to the\nfollowing selected window:"), this));
  list_ = new QListWidget(this);
  list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  layout->addWidget(list_, 1);
  reason_ = new QLabel(this);
  reason_->setWordWrap(true);
  layout->addWidget(reason_);
  auto* row = new QHBoxLayout;
  classNames_ = new QCheckBox(QStringLiteral("Show Class names"), this);
  classNames_->setChecked(state.Data.ShowClassNames == 1);
  refresh_ = new QPushButton(QStringLiteral("Refresh"), this);
  row->addWidget(classNames_);
  row->addWidget(refresh_);
  layout->addLayout(row);
  virtualKeyboard_ = new QCheckBox(QStringLiteral("Type through a virtual keyboard (/dev/uinput)"), this);
  virtualKeyboard_->setChecked(state.WindowRelayVirtualKeyboard == 1);
  virtualKeyboard_->setEnabled(relay::VirtualKeyboardOffered());
  layout->addWidget(virtualKeyboard_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);

  connect(list_, &QListWidget::currentRowChanged, this,
          [this](int index) { relay::ChooseWindow(state_, windows_, index); });
  connect(classNames_, &QCheckBox::clicked, this, [this](bool checked) {
    state_.Data.ShowClassNames = checked ? 1 : 0;
    Fill();
  });
  connect(refresh_, &QPushButton::clicked, this, &WindowRelayDialog::Fill);
  connect(virtualKeyboard_, &QCheckBox::clicked, this,
          [this](bool checked) { state_.WindowRelayVirtualKeyboard = checked ? 1 : 0; });
  Fill();
}

void WindowRelayDialog::Fill() {
  windows_ = relay::FillWindowList(state_);
  const QSignalBlocker quiet(list_);
  list_->clear();
  for (const std::u16string& text : windows_.Texts) list_->addItem(QString::fromStdU16String(text));
  list_->setCurrentRow(relay::SelectedWindow(windows_, state_.RelayTargetWindow));
  reason_->setText(QString::fromStdString(windows_.Unavailable));
  reason_->setVisible(!windows_.Unavailable.empty());
}

void WindowRelayDialog::done(int result) {
  if (result != QDialog::Accepted) {
    state_.RelayTargetWindow = openedTarget_;
    state_.Data.ShowClassNames = openedClassNames_;
    state_.WindowRelayVirtualKeyboard = openedVirtualKeyboard_;
  }
  core::PublishSettings(state_);
  QDialog::done(result);
}

}  // namespace wavetrace::ui
