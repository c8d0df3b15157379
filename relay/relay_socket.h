#pragma once

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/socket.h"

namespace wavetrace::relay {

inline constexpr int32_t RelayStateClosed = 0;
inline constexpr int32_t RelayStateClosing = 1;
inline constexpr int32_t RelayStateCreated = 2;
inline constexpr int32_t RelayStateConnected = 3;
inline constexpr int32_t RelayStateListening = 4;

// The codes the object stores for its own refusals. The texts print them as
// "WSA error code"; on Linux they are the errno values of the same meaning.
inline constexpr int kErrorSocketOpen = EACCES;  // a socket is already open
inline constexpr int kErrorNoData = EFAULT;      // nothing to send
inline constexpr int kErrorInvalid = EINVAL;     // bad type or port
inline constexpr int kErrorNoSocket = ENOTSOCK;
inline constexpr int kErrorConnected = EISCONN;
inline constexpr int kErrorNotConnected = ENOTCONN;

// One TCP or UDP socket with a worker thread that receives (or accepts) and
// a queue of the blocks that came back. The relay uses the client side
// (Create, Connect, Send); the server side (Listen) and the readers are part
// of the object for whoever derives from it.
//
// Threads: Create, Connect, Listen, Close and destruction belong to one
// thread; Send may run on another at the same time (a Close during a Send
// makes the Send fail); the worker appends to the queue, readers take from it.
class RelaySocket {
 public:
  static constexpr int32_t kTcp = 1;
  static constexpr int32_t kUdp = 2;
  static constexpr int32_t kDefaultBlockSize = 4096;
  static constexpr int kConnectTimeoutMs = 7000;
  // The worker stops receiving while this much waits unread; the sender is
  // then held back by the transport (TCP) or its datagrams are dropped by the
  // kernel (UDP). Nothing already queued is ever dropped.
  static constexpr uint32_t kQueueLimitBytes = 64u << 20;

  RelaySocket();
  virtual ~RelaySocket();
  RelaySocket(const RelaySocket&) = delete;
  RelaySocket& operator=(const RelaySocket&) = delete;

  // type kTcp or kUdp; blockSize 0 means kDefaultBlockSize.
  bool Create(int32_t type, int32_t blockSize);
  // Dotted text or a name; TCP waits at most the connect time-out. UDP only
  // records the destination.
  bool Connect(const std::string& host, uint32_t port);
  // All length bytes, or -1 (the bytes already sent are not reported). A UDP
  // socket with no destination yet sends nothing and returns 0.
  long Send(const uint8_t* data, long length);
  long SendString(const std::string& text);
  // The text and the line ending of the line-ending mode.
  long SendLine(const std::string& text);
  // Server side: binds to the port on address (any local address unless
  // given) and accepts (TCP) or receives (UDP) on the worker.
  bool Listen(uint32_t port, int backlog, uint32_t address = platform::kAnyAddress);
  void Close();

  // Copies queued bytes into buffer, up to capacity; returns the count.
  uint32_t ReadQueued(uint8_t* buffer, long capacity);
  // One line up to and including its terminator (LF, or NUL in line-ending
  // mode 0) as wide text; false (text empty) while no whole line is queued.
  bool ReadQueuedLine(std::u16string& text);

  [[nodiscard]] bool IsConnected() const { return state_ == RelayStateConnected; }
  [[nodiscard]] int32_t State() const { return state_; }
  [[nodiscard]] int LastError() const { return lastError_; }
  [[nodiscard]] uint32_t QueuedBytes() const;
  // 0: NUL, 1: CR LF (the default), 2: LF.
  void SetLineEnding(int32_t mode) { lineEnding_ = mode; }
  void SetConnectTimeoutMs(int ms) { connectTimeoutMs_ = ms; }
  void SetQueueLimit(uint32_t bytes) { queueLimit_ = bytes; }
  // Where the socket is bound (the port a Listen to port 0 got).
  [[nodiscard]] platform::Ipv4Endpoint LocalEndpoint() const;

 protected:
  // Called on the worker after a block was queued.
  virtual void OnDataQueued() {}
  // Non-zero: the block was consumed and is not queued.
  virtual int OnReceive(const uint8_t* /*data*/, long /*length*/) { return 0; }
  // Non-zero keeps an accepted connection (it then belongs to the callee);
  // otherwise it is shut down and closed at once.
  virtual int OnAccept(int /*socket*/) { return 0; }
  // 0: the TCP connection ended; 1: UDP receiving ended, or a bound UDP
  // socket was told of a reset; 2: listening ended.
  virtual void OnClosed(int /*reason*/) {}
  // Closes the socket and ends the workers. A derived object that overrides
  // the handlers calls it first in its own destructor, so no handler runs on
  // a half-destroyed object.
  void StopWorkers();

 private:
  struct ReceivedBlock {
    std::unique_ptr<uint8_t[]> Start;
    uint32_t Length = 0;    // bytes not yet read
    uint32_t Position = 0;  // read position inside Start
  };

  void StartWorker();
  void Worker();
  void ReceiveLoop();
  void AcceptLoop();
  void Fail(int code) { lastError_ = code; }
  bool Fail(const platform::SysResult& result);
  // Takes count bytes from the queue head into out (may be null: dropped).
  uint32_t TakeQueued(uint8_t* out, uint32_t count);
  // Waits for the workers, six times 1000 ms at most each; false when one
  // is still running after that (it is then left to finish alone).
  bool WaitForWorkers();

  std::atomic<int> socket_{platform::kNoSocket};
  std::atomic<int32_t> type_{kTcp};
  std::atomic<int32_t> state_{RelayStateClosed};
  platform::Ipv4Endpoint remote_;
  platform::Ipv4Endpoint peer_;  // guarded by queueMutex_
  std::atomic<bool> dataSeen_{false};
  std::thread receiveWorker_;
  std::thread acceptWorker_;
  std::atomic<int32_t> receiveRun_{0};  // 0 not running, 1 stopping, 2 running
  std::atomic<int32_t> acceptRun_{0};
  std::atomic<int32_t> lineEnding_{1};
  std::atomic<int> lastError_{0};
  int32_t blockSize_ = kDefaultBlockSize;
  int connectTimeoutMs_ = kConnectTimeoutMs;
  std::atomic<uint32_t> queueLimit_{kQueueLimitBytes};

  mutable std::mutex queueMutex_;
  std::condition_variable queueSpace_;
  std::deque<ReceivedBlock> queue_;
  uint32_t queuedBytes_ = 0;

  std::mutex sendMutex_;    // a Send in progress; the socket is closed only under it
  std::mutex workerMutex_;  // the two thread objects
  std::condition_variable workerEnded_;
};

}  // namespace wavetrace::relay
