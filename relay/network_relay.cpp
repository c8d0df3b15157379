#include "relay/network_relay.h"

#include <cstdio>

#include "core/code_page.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "platform/system_error.h"
#include "relay/window_relay.h"

namespace wavetrace::relay {
namespace {

constexpr char16_t kRelayCaption[] = u"IP Relay";
constexpr size_t kOctetChars = 7;

std::u16string Printf(const char* format, auto... values) {
  char text[512];
  std::snprintf(text, sizeof text, format, values...);
  return core::BytesToWide(text);
}

int32_t SocketType(const core::DataSettings& data) {
  return data.Relay_SocketType_TCP == 1 ? RelaySocket::kTcp : RelaySocket::kUdp;
}

uint32_t RelayPort(const core::DataSettings& data) {
  return static_cast<uint32_t>(data.RelayTCP_RemotePort);
}

void SetRelayButton(core::AppState& state, bool on) {
  state.RelayActive = on;
  state.Screen.SetButtonPressed(core::cmd::kRelay, on);
}

// A failed activation: RELAY off, the main window in front, the box, then
// the status text so far.
void ActivationFailed(core::AppState& state, const std::u16string& box, const std::u16string& status) {
  SetRelayButton(state, false);
  state.Screen.Activate();
  if (state.View) state.View->SetWaitCursor(false);
  core::ShowMessageBox(state, kRelayCaption, box, core::BoxIcon::kStop);
  core::ShowStatus(state, status);
}

}  // namespace

std::u16string WsaErrorText(int code) {
  std::u16string text = Printf("WSA error code=%d (0x%0x)", code, static_cast<unsigned>(code));
  if (code != 0) text += u" [" + core::BytesToWide(platform::ErrorText(code)) + u"]";
  return text;
}

std::string RelayHost(const core::DataSettings& data) {
  std::string host;
  for (size_t i = 0; i < data.IP.size(); ++i) {
    if (i != 0) host += '.';
    host += core::WideToBytes(data.IP[i].substr(0, kOctetChars));
  }
  return host;
}

std::u16string RelayServerText(const core::DataSettings& data) {
  return core::BytesToWide(RelayHost(data)) + Printf(":%u", RelayPort(data));
}

std::shared_ptr<const NetworkRelay::Session> NetworkRelay::Load() const {
  std::lock_guard lock(mutex_);
  return RelaySocketPtr;
}

void NetworkRelay::Store(std::shared_ptr<const Session> session) {
  std::lock_guard lock(mutex_);
  RelaySocketPtr = std::move(session);
}

void NetworkRelay::TakeBlock(const uint8_t* block, uint32_t n) {
  RelaySendBlock(state_, block, n);
}

void InstallNetworkRelay(core::AppState& state) {
  state.NetworkRelay = std::make_unique<NetworkRelay>(state);
}

NetworkRelay* NetworkRelayOf(core::AppState& state) {
  // Only InstallNetworkRelay fills the field.
  return static_cast<NetworkRelay*>(state.NetworkRelay.get());
}

void RelayActivate(core::AppState& state) {
  const core::DataSettings& data = state.Data;
  bool network = data.EnableTCPIPrelay == 1;
  bool window = state.WindowRelayEnabled == 1;
  if (!window && !network) {
    SetRelayButton(state, false);
    RelayDeactivate(state);
    return;
  }
  std::u16string status = u"RELAY.\r\n";
  if (window && !network) status = u"Relay to WINDOW.\r\n";
  if (!window && network) status = u"TCP/IP relay.\r\n";
  NetworkRelay* relay = NetworkRelayOf(state);
  if (network && relay) {
    if (auto old = relay->Load()) {
      relay->Store(nullptr);
      old->Socket->Close();
    }
    auto socket = std::make_shared<RelaySocket>();
    if (state.View) state.View->SetWaitCursor(true);
    if (!socket->Create(SocketType(data), 0)) {
      ActivationFailed(
          state,
          u"Failed to create socket.  Try restarting Wavetrace Pro.  " + WsaErrorText(socket->LastError()),
          status);
      return;
    }
    std::string host = RelayHost(data);
    if (!socket->Connect(host, RelayPort(data))) {
      ActivationFailed(state,
                       u"Failed to connect to server: [" + core::BytesToWide(host) + u"]   " +
                           WsaErrorText(socket->LastError()),
                       status);
      return;
    }
    std::u16string server = RelayServerText(data);
    if (!socket->IsConnected()) {
      SetRelayButton(state, false);
      state.Screen.Activate();
      if (state.View) state.View->SetWaitCursor(false);
      core::ShowStatus(state, status + u"Failed to connect to [" + server + u"]");
      return;
    }
    if (state.View) state.View->SetWaitCursor(false);
    status += u"Connection opened to [" + server + u"]";
    relay->Store(std::make_shared<const NetworkRelay::Session>(NetworkRelay::Session{socket, server}));
  }
  if (window) {
    WindowRelayStart start = ActivateWindowRelay(state, network);
    status += start.Lines;
    // With nowhere to type, a relay to the window alone does not go on.
    if (!start.Working && !network) SetRelayButton(state, false);
  }
  core::ShowStatus(state, status);
}

void RelayDeactivate(core::AppState& state) {
  bool network = state.Data.EnableTCPIPrelay == 1;
  bool window = state.WindowRelayEnabled == 1;
  std::u16string status = u"RELAY deactivated.\r\n";
  if (window && !network) status = u"Relay to WINDOW deactivated.\r\n";
  if (!window && network) status = u"TCP/IP relay deactivated.\r\n";
  if (!window && !network) status += u"Nothing to do.\r\nGoto -> Edit : Receive Options : Relay tab";
  bool windowGone = false;
  status += DeactivateWindowRelay(state, network, windowGone);
  // The socket goes whatever the setting says now (a loaded configuration
  // may have changed it while RELAY was on); closing it on this thread ends
  // its worker and any send the receive thread has under way.
  if (NetworkRelay* relay = NetworkRelayOf(state)) {
    if (auto session = relay->Load()) {
      relay->Store(nullptr);
      session->Socket->Close();
    }
  }
  if (network) {
    status += u"Connection closed to [" + RelayServerText(state.Data) + u"]";
    if (window && windowGone) status += u"\r\nGoto -> Edit : Receive Options : Relay tab";
  }
  core::ShowStatus(state, status);
}

void RelaySendBlock(core::AppState& state, const uint8_t* bytes, uint32_t n) {
  if (!state.RelayActive || n == 0) return;
  NetworkRelay* relay = NetworkRelayOf(state);
  auto session = relay ? relay->Load() : nullptr;
  if (!session || !session->Socket->IsConnected()) return;
  long sent = session->Socket->Send(bytes, static_cast<long>(n));
  if (sent != -1) return;
  core::ShowStatus(state, u"Failed to send data to server: [" + session->Server + u"], nSentbytes=" +
                              Printf("%u.  ", static_cast<uint32_t>(sent)) +
                              WsaErrorText(session->Socket->LastError()));
}

void TestRelayServer(core::AppState& state) {
  const core::DataSettings& data = state.Data;
  RelaySocket socket;
  std::u16string host = core::BytesToWide(RelayHost(data));
  if (!socket.Create(SocketType(data), 0)) {
    core::ShowMessageBox(state, kRelayCaption,
                         u"Failed to create socket.  " + WsaErrorText(socket.LastError()),
                         core::BoxIcon::kStop);
    return;
  }
  if (!socket.Connect(RelayHost(data), RelayPort(data)) || !socket.IsConnected()) {
    core::ShowMessageBox(state, kRelayCaption,
                         u"Failed to connect to server: [" + host + u"]  " + WsaErrorText(socket.LastError()),
                         core::BoxIcon::kStop);
    return;
  }
  if (socket.SendString("R U there?") == -1) {
    core::ShowMessageBox(
        state, kRelayCaption,
        u"Failed to send string to server: [" + host + u"]  " + WsaErrorText(socket.LastError()),
        core::BoxIcon::kStop);
    return;
  }
  core::ShowMessageBox(state, kRelayCaption, u"CONNECTED !   Sent: \"R U there?\" message.",
                       core::BoxIcon::kInformation);
  socket.Close();
}

}  // namespace wavetrace::relay
