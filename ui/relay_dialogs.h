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
// control is disabled while RELAY is on. It edits the settings in place; the
// sheet or dialog that holds it puts them back on Cancel (Revert for what is
// not a data setting).
class RelayPage : public QWidget {
  Q_OBJECT

 public:
  // One relay's caption, settings button and "Enable" box.
  struct Half {
    QLabel* Label = nullptr;
    QPushButton* Button = nullptr;
    QCheckBox* Enable = nullptr;
  };

  explicit RelayPage(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] QCheckBox* WindowEnableBox() const { return window_.Enable; }
  [[nodiscard]] QPushButton* WindowButton() const { return window_.Button; }
  [[nodiscard]] QCheckBox* NetworkEnableBox() const { return network_.Enable; }
  [[nodiscard]] QPushButton* TcpIpButton() const { return network_.Button; }
  // Puts back the window relay's switch as it was when the page opened.
  void Revert();

 private:
  void FollowEnableBox();

  core::AppState& state_;
  int32_t openedWindowRelay_ = 0;
  Half window_;
  Half network_;
};

// The Relay page on its own, with OK and Cancel: Cancel puts back the relay
// settings as they were when it opened.
class RelayPageDialog : public QDialog {
  Q_OBJECT

 public:
  explicit RelayPageDialog(core::AppState& state, QWidget* parent = nullptr);

  [[nodiscard]] RelayPage* Page() const { return page_; }
  [[nodiscard]] QCheckBox* WindowEnableBox() const { return page_->WindowEnableBox(); }
  [[nodiscard]] QPushButton* WindowButton() const { return page_->WindowButton(); }
  [[nodiscard]] QCheckBox* NetworkEnableBox() const { return page_->NetworkEnableBox(); }
  [[nodiscard]] QPushButton* TcpIpButton() const { return page_->TcpIpButton(); }

  void done(int result) override;

 private:
  core::AppState& state_;
  core::DataSettings opened_;
  RelayPage* page_ = nullptr;
};

}  // namespace wavetrace::ui
