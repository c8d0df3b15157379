#pragma once

#include <QDialog>
#include <array>

#include "core/app_state.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace wavetrace::ui {

// The "IP Relay" page: the server's four octets, its port, TCP or UDP, and
// "Test". It edits the TCP_relay settings in place; Cancel puts back what
// they were when it opened.
class IpRelayDialog : public QDialog {
  Q_OBJECT

 public:
  explicit IpRelayDialog(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] QLineEdit* OctetField(int i) const { return octets_[static_cast<size_t>(i)]; }
  [[nodiscard]] QLineEdit* PortField() const { return port_; }
  [[nodiscard]] QRadioButton* TcpButton() const { return tcp_; }
  [[nodiscard]] QRadioButton* UdpButton() const { return udp_; }
  [[nodiscard]] QPushButton* TestButton() const { return test_; }

  void done(int result) override;

 private:
  void Clamp(QLineEdit* field, uint32_t& lastSeen, uint32_t maximum);
  void StoreFields();

  core::AppState& state_;
  core::DataSettings opened_;
  std::array<QLineEdit*, 4> octets_{};
  std::array<uint32_t, 5> lastSeen_{};  // the four octets, then the port
  QLineEdit* port_ = nullptr;
  QRadioButton* tcp_ = nullptr;
  QRadioButton* udp_ = nullptr;
  QPushButton* test_ = nullptr;
};

// The Relay page: relaying to another program's window ("Enable",
// "window") and to a network server ("Enable", "tcp/ip"). Every relay
// control is disabled while RELAY is on.
class RelayPageDialog : public QDialog {
  Q_OBJECT

 public:
  explicit RelayPageDialog(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] QCheckBox* WindowEnableBox() const { return windowEnable_; }
  [[nodiscard]] QPushButton* WindowButton() const { return window_; }
  [[nodiscard]] QCheckBox* NetworkEnableBox() const { return networkEnable_; }
  [[nodiscard]] QPushButton* TcpIpButton() const { return tcpIp_; }

  void done(int result) override;

 private:
  void FollowEnableBox();

  core::AppState& state_;
  core::DataSettings opened_;
  int32_t openedWindowRelay_ = 0;
  QCheckBox* windowEnable_ = nullptr;
  QLabel* windowLabel_ = nullptr;
  QPushButton* window_ = nullptr;
  QCheckBox* networkEnable_ = nullptr;
  QLabel* networkLabel_ = nullptr;
  QPushButton* tcpIp_ = nullptr;
};

}  // namespace wavetrace::ui
