#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::platform {

// BSD sockets for the network relay, IPv4 only. Every call that can fail
// returns (or fills) a SysResult with the errno of the failing call.

inline constexpr int kNoSocket = -1;
inline constexpr uint32_t kAnyAddress = 0;                // INADDR_ANY, host order
inline constexpr uint32_t kLoopbackAddress = 0x7f000001;  // 127.0.0.1, host order

// An IPv4 address and port, both in host order.
struct Ipv4Endpoint {
  uint32_t Address = 0;
  uint16_t Port = 0;
  bool operator==(const Ipv4Endpoint&) const = default;
};

enum class SocketKind { kStream, kDatagram };

// A TCP (stream) or UDP (datagram) socket, close-on-exec.
SysResult OpenSocket(SocketKind kind, int& fd);
// Closing drops unsent data at once instead of lingering.
SysResult SetNoLinger(int fd);
// Dotted text first; a name is looked up, the first IPv4 answer taken. A
// failed look-up is reported with the errno closest to the resolver's answer.
SysResult ResolveIpv4(const std::string& host, uint32_t& address);
// Connects within timeoutMs (a non-blocking connect and a wait for the
// answer); the socket is blocking again afterwards, connected or not. A wait
// that runs out is ETIMEDOUT.
SysResult ConnectWithin(int fd, const Ipv4Endpoint& to, int timeoutMs);
SysResult BindTo(int fd, const Ipv4Endpoint& local);
SysResult ListenOn(int fd, int backlog);
// Waits for a connection; fills its socket and the peer.
SysResult AcceptFrom(int fd, int& connection, Ipv4Endpoint& peer);
// One send of up to n bytes, to the connected peer (to null) or to an
// address. A peer that has gone gives EPIPE, never SIGPIPE. Returns the
// bytes taken, or -1 with failure filled.
long SendSome(int fd, const uint8_t* data, size_t n, const Ipv4Endpoint* to, SysResult& failure);
// One receive of up to n bytes; from (when not null) gets the sender.
// Returns the bytes read, 0 when the peer ended or the socket was shut down,
// -1 with failure filled.
long ReceiveSome(int fd, uint8_t* data, size_t n, Ipv4Endpoint* from, SysResult& failure);
// Ends both directions; wakes a thread blocked in a receive, send or accept
// on the socket (also an unconnected datagram socket).
void ShutdownSocket(int fd);
void CloseSocket(int fd);
// The address and port the socket is bound to (an ephemeral port after a
// bind to port 0).
SysResult LocalEndpoint(int fd, Ipv4Endpoint& local);
// The kernel's send buffer of the socket, in bytes.
int SendBufferBytes(int fd);

// "a.b.c.d" of an address in host order.
std::string FormatIpv4(uint32_t address);

}  // namespace wavetrace::platform
