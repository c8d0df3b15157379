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

RelayPage::RelayPage(core::AppState& state, QWidget* parent)
    : QWidget(parent), state_(state), openedWindowRelay_(state.WindowRelayEnabled) {
  auto* layout = new QVBoxLayout(this);
  windowLabel_ = Caption(QStringLiteral("Relay incoming data to another program's:"), this);
  layout->addWidget(windowLabel_);
  auto* windowRow = new QHBoxLayout;
  window_ = new QPushButton(QStringLiteral("window"), this);
  window_->setObjectName(QStringLiteral("windowButton"));
  windowEnable_ = new QCheckBox(QStringLiteral("Enable"), this);
  windowEnable_->setObjectName(QStringLiteral("windowRelayEnable"));
  windowEnable_->setChecked(state.WindowRelayEnabled == 1);
  windowRow->addWidget(window_);
  windowRow->addWidget(windowEnable_);
  layout->addLayout(windowRow);

  networkLabel_ = Caption(QStringLiteral("Relay incoming data to a network server through:"), this);
  layout->addWidget(networkLabel_);
  auto* networkRow = new QHBoxLayout;
  tcpIp_ = new QPushButton(QStringLiteral("tcp/ip"), this);
  tcpIp_->setObjectName(QStringLiteral("tcpIpButton"));
  networkEnable_ = new QCheckBox(QStringLiteral("Enable"), this);
  networkEnable_->setObjectName(QStringLiteral("networkRelayEnable"));
  networkEnable_->setChecked(state.Data.EnableTCPIPrelay == 1);
  networkRow->addWidget(tcpIp_);
  networkRow->addWidget(networkEnable_);
  layout->addLayout(networkRow);
  layout->addStretch(1);

  connect(networkEnable_, &QCheckBox::clicked, this, [this] {
    state_.Data.EnableTCPIPrelay = networkEnable_->isChecked() ? 1 : 0;
    FollowEnableBox();
  });
  connect(windowEnable_, &QCheckBox::clicked, this, [this] {
    state_.WindowRelayEnabled = windowEnable_->isChecked() ? 1 : 0;
    FollowEnableBox();
  });
  connect(window_, &QPushButton::clicked, this, [this] {
    WindowRelayDialog page(state_, this);
    page.setFont(font());
    page.exec();
  });
  connect(tcpIp_, &QPushButton::clicked, this, [this] {
    IpRelayDialog page(state_, this);
    page.setFont(font());
    page.exec();
  });
  FollowEnableBox();
}

void RelayPage::FollowEnableBox() {
  relay::RelayPageControls network = relay::RelayControls(networkEnable_->isChecked(), state_.RelayActive);
  networkEnable_->setEnabled(network.EnableBox);
  networkLabel_->setEnabled(network.Label);
  tcpIp_->setEnabled(network.Button);
  relay::RelayPageControls window = relay::RelayControls(windowEnable_->isChecked(), state_.RelayActive);
  windowEnable_->setEnabled(window.EnableBox);
  windowLabel_->setEnabled(window.Label);
  window_->setEnabled(window.Button);
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
