#include "platform/socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace wavetrace::platform {
namespace {

sockaddr_in ToSockaddr(const Ipv4Endpoint& endpoint) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(endpoint.Port);
  address.sin_addr.s_addr = htonl(endpoint.Address);
  return address;
}

Ipv4Endpoint FromSockaddr(const sockaddr_in& address) {
  return {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
}

// The resolver's answers are not errno values; take the nearest one so the
// report carries a readable system text.
int ResolverErrno(int answer, int systemErrno) {
  switch (answer) {
    case EAI_SYSTEM:
      return systemErrno;
    case EAI_AGAIN:
      return EAGAIN;
    case EAI_MEMORY:
      return ENOMEM;
    default:
      return ENXIO;  // no such host, or no IPv4 address for it
  }
}

SysResult SetBlocking(int fd, bool blocking) {
  int flags = fcntl(fd, F_GETFL);
  if (flags < 0) return FailedCall("fcntl");
  flags = blocking ? (flags & ~O_NONBLOCK) : (flags | O_NONBLOCK);
  if (fcntl(fd, F_SETFL, flags) < 0) return FailedCall("fcntl");
  return {};
}

}  // namespace

SysResult OpenSocket(SocketKind kind, int& fd) {
  bool stream = kind == SocketKind::kStream;
  fd =
      socket(AF_INET, (stream ? SOCK_STREAM : SOCK_DGRAM) | SOCK_CLOEXEC, stream ? IPPROTO_TCP : IPPROTO_UDP);
  if (fd < 0) {
    fd = kNoSocket;
    return FailedCall("socket");
  }
  return {};
}

SysResult SetNoLinger(int fd) {
  linger value{0, 0};
  if (setsockopt(fd, SOL_SOCKET, SO_LINGER, &value, sizeof value) != 0) return FailedCall("setsockopt");
  return {};
}

SysResult ResolveIpv4(const std::string& host, uint32_t& address) {
  in_addr parsed{};
  if (inet_pton(AF_INET, host.c_str(), &parsed) == 1) {
    address = ntohl(parsed.s_addr);
    return {};
  }
  addrinfo hints{};
  hints.ai_family = AF_INET;
  addrinfo* answer = nullptr;
  errno = 0;
  int result = getaddrinfo(host.c_str(), nullptr, &hints, &answer);
  if (result != 0 || answer == nullptr) {
    if (answer) freeaddrinfo(answer);
    return {ResolverErrno(result, errno), "getaddrinfo"};
  }
  address = ntohl(reinterpret_cast<const sockaddr_in*>(answer->ai_addr)->sin_addr.s_addr);
  freeaddrinfo(answer);
  return {};
}

SysResult ConnectWithin(int fd, const Ipv4Endpoint& to, int timeoutMs) {
  if (SysResult r = SetBlocking(fd, false); !r) return r;
  sockaddr_in address = ToSockaddr(to);
  SysResult outcome;
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    if (errno != EINPROGRESS) {
      outcome = FailedCall("connect");
    } else {
      pollfd wait{fd, POLLOUT, 0};
      int ready;
      do {
        ready = poll(&wait, 1, timeoutMs);
      } while (ready < 0 && errno == EINTR);
      if (ready < 0) {
        outcome = FailedCall("poll");
      } else if (ready == 0) {
        outcome = {ETIMEDOUT, "connect"};
      } else {
        int error = 0;
        socklen_t length = sizeof error;
        if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) {
          outcome = FailedCall("getsockopt");
        } else if (error != 0) {
          outcome = {error, "connect"};
        }
      }
    }
  }
  SysResult blocking = SetBlocking(fd, true);
  return outcome ? blocking : outcome;
}

SysResult BindTo(int fd, const Ipv4Endpoint& local) {
  sockaddr_in address = ToSockaddr(local);
  if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return FailedCall("bind");
  return {};
}

SysResult ListenOn(int fd, int backlog) {
  if (listen(fd, backlog) != 0) return FailedCall("listen");
  return {};
}

SysResult AcceptFrom(int fd, int& connection, Ipv4Endpoint& peer) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  do {
    connection = accept4(fd, reinterpret_cast<sockaddr*>(&address), &length, SOCK_CLOEXEC);
  } while (connection < 0 && errno == EINTR);
  if (connection < 0) {
    connection = kNoSocket;
    return FailedCall("accept");
  }
  peer = FromSockaddr(address);
  return {};
}

long SendSome(int fd, const uint8_t* data, size_t n, const Ipv4Endpoint* to, SysResult& failure) {
  sockaddr_in address{};
  if (to) address = ToSockaddr(*to);
  ssize_t sent;
  do {
    sent = sendto(fd, data, n, MSG_NOSIGNAL, to ? reinterpret_cast<const sockaddr*>(&address) : nullptr,
                  to ? sizeof address : 0);
  } while (sent < 0 && errno == EINTR);
  if (sent < 0) failure = FailedCall("send");
  return sent;
}

long ReceiveSome(int fd, uint8_t* data, size_t n, Ipv4Endpoint* from, SysResult& failure) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  ssize_t got;
  do {
    got = recvfrom(fd, data, n, 0, reinterpret_cast<sockaddr*>(&address), &length);
  } while (got < 0 && errno == EINTR);
  if (got < 0) {
    failure = FailedCall("recv");
  } else if (from && length >= sizeof address) {
    *from = FromSockaddr(address);
  }
  return got;
}

void ShutdownSocket(int fd) {
  shutdown(fd, SHUT_RDWR);
}

void CloseSocket(int fd) {
  close(fd);
}

SysResult LocalEndpoint(int fd, Ipv4Endpoint& local) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) return FailedCall("getsockname");
  local = FromSockaddr(address);
  return {};
}

int SendBufferBytes(int fd) {
  int bytes = 0;
  socklen_t length = sizeof bytes;
  if (getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &bytes, &length) != 0) return 0;
  return bytes;
}

std::string FormatIpv4(uint32_t address) {
  return std::to_string(address >> 24) + "." + std::to_string((address >> 16) & 0xff) + "." +
         std::to_string((address >> 8) & 0xff) + "." + std::to_string(address & 0xff);
}

}  // namespace wavetrace::platform
