#include "relay/relay_page.h"

#include <algorithm>

#include "core/decimal_text.h"

namespace wavetrace::relay {
namespace {

constexpr size_t kOctetChars = 7;

}  // namespace

std::optional<std::u16string> ClampedFieldText(std::u16string_view text, uint32_t& lastSeen,
                                               uint32_t maximum) {
  uint32_t value = core::LeadingDecimal(text);
  if (value == lastSeen) return std::nullopt;
  value = std::min(value, maximum);
  lastSeen = value;
  return core::DecimalText(value);
}

RelayPageControls RelayControls(bool enableTicked, bool relayActive) {
  if (relayActive) return {false, false, false};
  return {true, enableTicked, enableTicked};
}

IpRelayFields ReadIpRelayFields(const core::DataSettings& data) {
  IpRelayFields fields;
  fields.Octets = data.IP;
  fields.Port = core::DecimalText(static_cast<uint32_t>(data.RelayTCP_RemotePort));
  fields.Tcp = data.Relay_SocketType_TCP == 1;
  return fields;
}

void CopyTcpRelaySettings(const core::DataSettings& from, core::DataSettings& to) {
  to.IP = from.IP;
  to.EnableTCPIPrelay = from.EnableTCPIPrelay;
  to.RelayTCP_RemotePort = from.RelayTCP_RemotePort;
  to.Relay_SocketType_TCP = from.Relay_SocketType_TCP;
  to.Relay_SocketType_UDP = from.Relay_SocketType_UDP;
}

void StoreIpRelayFields(const IpRelayFields& fields, core::DataSettings& data) {
  for (size_t i = 0; i < data.IP.size(); ++i) data.IP[i] = fields.Octets[i].substr(0, kOctetChars);
  data.RelayTCP_RemotePort = static_cast<int32_t>(core::LeadingDecimal(fields.Port));
  data.Relay_SocketType_TCP = fields.Tcp ? 1 : 0;
  data.Relay_SocketType_UDP = fields.Tcp ? 0 : 1;
}

}  // namespace wavetrace::relay
