#pragma once

#include <chrono>
#include <climits>
#include <condition_variable>
#include <mutex>
#include <string>

#include "relay/relay_socket.h"

namespace wavetrace::testing {

// A TCP or UDP server on 127.0.0.1 at an ephemeral port, on the relay socket's
// server side, that keeps what it receives. TCP: each accepted connection is
// read on the accepting worker until it ends, or until closeAfter bytes have
// come in all (the rest of the stream is then not read). Reply answers it.
class LoopbackServer : public relay::RelaySocket {
 public:
  explicit LoopbackServer(platform::SocketKind kind, size_t closeAfter = SIZE_MAX) : closeAfter_(closeAfter) {
    Create(kind == platform::SocketKind::kStream ? kTcp : kUdp, kBufferBytes);
    Listen(0, 4, platform::kLoopbackAddress);
  }
  ~LoopbackServer() override {
    {
      std::lock_guard lock(mutex_);
      stopping_ = true;
      if (connection_ != platform::kNoSocket) platform::ShutdownSocket(connection_);
    }
    StopWorkers();
  }

  [[nodiscard]] uint16_t Port() const { return LocalEndpoint().Port; }
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

 protected:
  // UDP: each datagram is kept instead of queued.
  int OnReceive(const uint8_t* data, long length) override {
    Keep(data, length);
    return 1;
  }
  int OnAccept(int connection) override {
    {
      std::lock_guard lock(mutex_);
      if (stopping_) return 0;
      connection_ = connection;
    }
    uint8_t buffer[kBufferBytes];
    platform::SysResult failure;
    long n = 0;
    while ((n = platform::ReceiveSome(connection, buffer, sizeof buffer, nullptr, failure)) > 0) {
      if (!Keep(buffer, n)) break;
    }
    // Closed with data unread: the client's next sends are refused.
    std::lock_guard lock(mutex_);
    platform::CloseSocket(connection);
    connection_ = platform::kNoSocket;
    return 1;
  }

 private:
  static constexpr int32_t kBufferBytes = 65536;

  // Appends; false once closeAfter bytes have come.
  bool Keep(const uint8_t* data, long length) {
    std::lock_guard lock(mutex_);
    received_.append(reinterpret_cast<const char*>(data), static_cast<size_t>(length));
    arrived_.notify_all();
    return received_.size() < closeAfter_;
  }

  size_t closeAfter_;
  bool stopping_ = false;
  int connection_ = platform::kNoSocket;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::string received_;
};

// A TCP port on 127.0.0.1 that nothing listens on (any longer).
inline uint16_t ClosedPort() {
  return LoopbackServer(platform::SocketKind::kStream).Port();
}

}  // namespace wavetrace::testing
