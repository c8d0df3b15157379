#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/settings.h"

namespace wavetrace::relay {

inline constexpr uint32_t kOctetMaximum = 255;
inline constexpr uint32_t kPortMaximum = 65535;

// An edited number field of the IP Relay page (an octet, or the port): its
// text read as an unsigned decimal. When the value differs from lastSeen it
// becomes the new lastSeen and the field's new text ("%u" of the value
// clamped to maximum) is returned, to be written back with the caret at its
// end; otherwise nothing changes.
std::optional<std::u16string> ClampedFieldText(std::u16string_view text, uint32_t& lastSeen,
                                               uint32_t maximum);

// Either half of the Relay page (window, network): which controls take
// clicks. The label and the button follow the half's "Enable" box; while
// RELAY is on, nothing does.
struct RelayPageControls {
  bool EnableBox = true;  // "Enable"
  bool Label = true;      // "Relay incoming data to ..."
  bool Button = true;     // "window", "tcp/ip"
};
RelayPageControls RelayControls(bool enableTicked, bool relayActive);

// The TCP_relay settings as the IP Relay page edits them.
struct IpRelayFields {
  std::array<std::u16string, 4> Octets;
  std::u16string Port;
  bool Tcp = true;
};
IpRelayFields ReadIpRelayFields(const core::DataSettings& data);
// The TCP_relay keys of from into to (what Cancel puts back).
void CopyTcpRelaySettings(const core::DataSettings& from, core::DataSettings& to);
// The fields into the settings: each octet cut to 7 characters, the port as
// an unsigned decimal, both radio buttons' states.
void StoreIpRelayFields(const IpRelayFields& fields, core::DataSettings& data);

}  // namespace wavetrace::relay
