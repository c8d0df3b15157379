#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "core/app_state.h"
#include "relay/relay_socket.h"

namespace wavetrace::relay {

// "WSA error code=111 (0x6f) [Connection refused]": the code in decimal and
// hex, then the system's own text when there is a code.
std::u16string WsaErrorText(int code);
// "%s.%s.%s.%s" of IP_01..IP_04, each cut to its 7 characters.
std::string RelayHost(const core::DataSettings& data);
// "a.b.c.d:port" of the settings.
std::u16string RelayServerText(const core::DataSettings& data);

// The network relay: the relay socket (RelaySocketPtr) and the server it was
// opened to, as one record that the main thread replaces at activation and
// deactivation and the receive thread loads once per block.
class NetworkRelay final : public core::BlockSink {
 public:
  struct Session {
    std::shared_ptr<RelaySocket> Socket;
    std::u16string Server;  // "a.b.c.d:port" for the send-failure text
  };

  explicit NetworkRelay(core::AppState& state) : state_(state) {}
  void TakeBlock(const uint8_t* block, uint32_t n) override;

  [[nodiscard]] std::shared_ptr<const Session> Load() const;
  void Store(std::shared_ptr<const Session> session);

 private:
  core::AppState& state_;
  mutable std::mutex mutex_;
  std::shared_ptr<const Session> RelaySocketPtr;
};

// Puts the network relay into state (before the receive thread runs).
void InstallNetworkRelay(core::AppState& state);
// The relay of state, or null before InstallNetworkRelay.
NetworkRelay* NetworkRelayOf(core::AppState& state);

// The RELAY toggle turned on (RelayActive already set) or off. Main thread.
void RelayActivate(core::AppState& state);
void RelayDeactivate(core::AppState& state);
// One processed block to the server; receive thread.
void RelaySendBlock(core::AppState& state, const uint8_t* bytes, uint32_t n);

// "Test" of the IP Relay page: connects to the server of the settings with a
// socket of its own and sends "R U there?"; the outcome in a box.
void TestRelayServer(core::AppState& state);

}  // namespace wavetrace::relay
