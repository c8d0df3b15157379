#pragma once

#include <chrono>
#include <climits>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "platform/socket.h"

namespace wavetrace::testing {

// A TCP or UDP server on 127.0.0.1 at an ephemeral port that keeps what it
// receives. TCP: one connection is accepted; the server closes it after
// closeAfter bytes (the rest of the stream is not read). Reply answers it.
class LoopbackServer {
 public:
  explicit LoopbackServer(platform::SocketKind kind, size_t closeAfter = SIZE_MAX)
      : tcp_(kind == platform::SocketKind::kStream), closeAfter_(closeAfter) {
    platform::OpenSocket(kind, fd_);
    platform::BindTo(fd_, {platform::kLoopbackAddress, 0});
    platform::LocalEndpoint(fd_, local_);
    if (tcp_) platform::ListenOn(fd_, 4);
    thread_ = std::thread([this] { Serve(); });
  }
  ~LoopbackServer() {
    platform::ShutdownSocket(fd_);
    {
      std::lock_guard lock(mutex_);
      if (connection_ != platform::kNoSocket) platform::ShutdownSocket(connection_);
    }
    thread_.join();
    if (connection_ != platform::kNoSocket) platform::CloseSocket(connection_);
    platform::CloseSocket(fd_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  [[nodiscard]] uint16_t Port() const { return local_.Port; }
  [[nodiscard]] std::string Received() {
    std::lock_guard lock(mutex_);
    return received_;
  }
  // Waits until at least bytes have arrived.
  bool WaitFor(size_t bytes, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    std::unique_lock lock(mutex_);
    return arrived_.wait_for(lock, limit, [&] { return received_.size() >= bytes; });
  }
  // Sends to the connected TCP client.
  void Reply(const std::string& data) {
    platform::SysResult ignored;
    std::lock_guard lock(mutex_);
    platform::SendSome(connection_, reinterpret_cast<const uint8_t*>(data.data()), data.size(), nullptr,
                       ignored);
  }

 private:
  void Serve() {
    int from = fd_;
    if (tcp_) {
      platform::Ipv4Endpoint peer;
      int connection = platform::kNoSocket;
      if (!platform::AcceptFrom(fd_, connection, peer)) return;
      std::lock_guard lock(mutex_);
      connection_ = from = connection;
    }
    uint8_t buffer[65536];
    for (;;) {
      platform::SysResult failure;
      long n = platform::ReceiveSome(from, buffer, sizeof buffer, nullptr, failure);
      if (n <= 0) break;  // the client ended, or the server is being taken down
      std::lock_guard lock(mutex_);
      received_.append(reinterpret_cast<const char*>(buffer), static_cast<size_t>(n));
      arrived_.notify_all();
      if (received_.size() >= closeAfter_) {
        // Closed with data unread: the client's next sends are refused.
        platform::CloseSocket(connection_);
        connection_ = platform::kNoSocket;
        break;
      }
    }
  }

  bool tcp_;
  size_t closeAfter_;
  int fd_ = platform::kNoSocket;
  int connection_ = platform::kNoSocket;
  platform::Ipv4Endpoint local_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::string received_;
  std::thread thread_;
};

// A TCP port on 127.0.0.1 that nothing listens on.
inline uint16_t ClosedPort() {
  int fd = platform::kNoSocket;
  platform::Ipv4Endpoint local;
  platform::OpenSocket(platform::SocketKind::kStream, fd);
  platform::BindTo(fd, {platform::kLoopbackAddress, 0});
  platform::LocalEndpoint(fd, local);
  platform::CloseSocket(fd);
  return local.Port;
}

}  // namespace wavetrace::testing
