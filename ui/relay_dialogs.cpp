#include "ui/relay_dialogs.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "relay/network_relay.h"
#include "relay/relay_page.h"
#include "ui/page_parts.h"
#include "ui/window_relay_dialog.h"

namespace wavetrace::ui {
namespace {}  // namespace

IpRelayDialog::IpRelayDialog(core::AppState& state, QWidget* parent)
    : QDialog(parent), state_(state), opened_(state.Data) {
  setWindowTitle(QStringLiteral("IP Relay"));
  const relay::IpRelayFields fields = relay::ReadIpRelayFields(state.Data);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      Caption(QStringLiteral("Forward received data to the following server ip address:"), this));
  auto* address = new QHBoxLayout;
  for (size_t i = 0; i < octets_.size(); ++i) {
    if (i != 0) address->addWidget(new QLabel(QStringLiteral("."), this));
    auto* field = new QLineEdit(QString::fromStdU16String(fields.Octets[i]), this);
    field->setObjectName(QStringLiteral("octet%1").arg(i + 1));
    field->setMaxLength(3);
    address->addWidget(field);
    octets_[i] = field;
  }
  layout->addLayout(address);
  auto* portRow = new QHBoxLayout;
  portRow->addWidget(Caption(QStringLiteral("server port:"), this));
  port_ = new QLineEdit(QString::fromStdU16String(fields.Port), this);
  port_->setObjectName(QStringLiteral("serverPort"));
  port_->setMaxLength(5);
  portRow->addWidget(port_);
  layout->addLayout(portRow);

  auto* type = new QGroupBox(QStringLiteral("Socket type:"), this);
  auto* typeRow = new QHBoxLayout(type);
  tcp_ = new QRadioButton(QStringLiteral("TCP"), type);
  udp_ = new QRadioButton(QStringLiteral("UDP"), type);
  tcp_->setChecked(state.Data.Relay_SocketType_TCP == 1);
  udp_->setChecked(state.Data.Relay_SocketType_UDP == 1);
  typeRow->addWidget(tcp_);
  typeRow->addWidget(udp_);
  layout->addWidget(type);
  test_ = new QPushButton(QStringLiteral("Test"), this);
  test_->setObjectName(QStringLiteral("testServer"));
  layout->addWidget(test_);
  layout->addWidget(OkCancel(this));

  // The fields' values as opened count as seen: only an edit is clamped.
  for (size_t i = 0; i < octets_.size(); ++i) {
    relay::ClampedFieldText(fields.Octets[i], lastSeen_[i], UINT32_MAX);
    connect(octets_[i], &QLineEdit::textChanged, this,
            [this, i] { Clamp(octets_[i], lastSeen_[i], relay::kOctetMaximum); });
  }
  relay::ClampedFieldText(fields.Port, lastSeen_[4], UINT32_MAX);
  connect(port_, &QLineEdit::textChanged, this, [this] { Clamp(port_, lastSeen_[4], relay::kPortMaximum); });
  for (QRadioButton* radio : {tcp_, udp_}) {
    connect(radio, &QRadioButton::clicked, this, [this] {
      state_.Data.Relay_SocketType_TCP = tcp_->isChecked() ? 1 : 0;
      state_.Data.Relay_SocketType_UDP = udp_->isChecked() ? 1 : 0;
    });
  }
  connect(test_, &QPushButton::clicked, this, [this] {
    StoreFields();
    relay::TestRelayServer(state_);
  });
}

void IpRelayDialog::Clamp(QLineEdit* field, uint32_t& lastSeen, uint32_t maximum) {
  auto written = relay::ClampedFieldText(field->text().toStdU16String(), lastSeen, maximum);
  if (!written) return;
  QString text = QString::fromStdU16String(*written);
  if (field->text() != text) field->setText(text);
  field->setCursorPosition(static_cast<int>(text.size()));
}

void IpRelayDialog::StoreFields() {
  relay::IpRelayFields fields;
  for (size_t i = 0; i < octets_.size(); ++i) fields.Octets[i] = octets_[i]->text().toStdU16String();
  fields.Port = port_->text().toStdU16String();
  fields.Tcp = state_.Data.Relay_SocketType_TCP == 1;
  relay::StoreIpRelayFields(fields, state_.Data);
  // The radio buttons keep the two states they stored, even both off.
  state_.Data.Relay_SocketType_UDP = udp_->isChecked() ? 1 : 0;
}

void IpRelayDialog::done(int result) {
  if (result == QDialog::Accepted) {
    StoreFields();
  } else {
    relay::CopyTcpRelaySettings(opened_, state_.Data);
  }
  QDialog::done(result);
}

namespace {

// One half of the Relay page: its caption, then the button that opens its
// settings beside its "Enable" box.
RelayPage::Half AddHalf(QVBoxLayout* layout, const QString& caption, const QString& buttonText,
                        const QString& name, bool enabled, QWidget* page) {
  RelayPage::Half half;
  half.Label = Caption(caption, page);
  layout->addWidget(half.Label);
  auto* row = new QHBoxLayout;
  half.Button = new QPushButton(buttonText, page);
  half.Button->setObjectName(name + QStringLiteral("Button"));
  half.Enable = new QCheckBox(QStringLiteral("Enable"), page);
  half.Enable->setObjectName(name + QStringLiteral("RelayEnable"));
  half.Enable->setChecked(enabled);
  row->addWidget(half.Button);
  row->addWidget(half.Enable);
  layout->addLayout(row);
  return half;
}

// Opens a relay's settings dialog over the page, in the page's font.
template <typename Dialog>
void OpenSettings(core::AppState& state, QWidget* page) {
  Dialog dialog(state, page);
  dialog.setFont(page->font());
  dialog.exec();
}

}  // namespace

RelayPage::RelayPage(core::AppState& state, QWidget* parent)
    : QWidget(parent), state_(state), openedWindowRelay_(state.WindowRelayEnabled) {
  auto* layout = new QVBoxLayout(this);
  window_ = AddHalf(layout, QStringLiteral("Relay incoming data to another program's:"),
                    QStringLiteral("window"), QStringLiteral("window"), state.WindowRelayEnabled == 1, this);
  network_ =
      AddHalf(layout, QStringLiteral("Relay incoming data to a network server through:"),
              QStringLiteral("tcp/ip"), QStringLiteral("network"), state.Data.EnableTCPIPrelay == 1, this);
  layout->addStretch(1);

  connect(network_.Enable, &QCheckBox::clicked, this, [this] {
    state_.Data.EnableTCPIPrelay = network_.Enable->isChecked() ? 1 : 0;
    FollowEnableBox();
  });
  connect(window_.Enable, &QCheckBox::clicked, this, [this] {
    state_.WindowRelayEnabled = window_.Enable->isChecked() ? 1 : 0;
    FollowEnableBox();
  });
  connect(window_.Button, &QPushButton::clicked, this,
          [this] { OpenSettings<WindowRelayDialog>(state_, this); });
  connect(network_.Button, &QPushButton::clicked, this,
          [this] { OpenSettings<IpRelayDialog>(state_, this); });
  FollowEnableBox();
}

void RelayPage::FollowEnableBox() {
  for (const Half* half : {&network_, &window_}) {
    relay::RelayPageControls controls = relay::RelayControls(half->Enable->isChecked(), state_.RelayActive);
    half->Enable->setEnabled(controls.EnableBox);
    half->Label->setEnabled(controls.Label);
    half->Button->setEnabled(controls.Button);
  }
}

void RelayPage::Revert() {
  state_.WindowRelayEnabled = openedWindowRelay_;
}

RelayPageDialog::RelayPageDialog(core::AppState& state, QWidget* parent)
    : QDialog(parent), state_(state), opened_(state.Data) {
  setWindowTitle(QStringLiteral("Relay"));
  auto* layout = new QVBoxLayout(this);
  page_ = new RelayPage(state, this);
  layout->addWidget(page_, 1);
  layout->addWidget(OkCancel(this));
}

void RelayPageDialog::done(int result) {
  if (result != QDialog::Accepted) {
    relay::CopyTcpRelaySettings(opened_, state_.Data);
    page_->Revert();
  }
  core::PublishSettings(state_);
  QDialog::done(result);
}

}  // namespace wavetrace::ui
