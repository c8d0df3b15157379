#include "relay/relay_socket.h"

#include <algorithm>
#include <chrono>
#include <cstring>

#include "core/code_page.h"

namespace wavetrace::relay {
namespace {

using platform::kNoSocket;

constexpr size_t kHostChars = 256;
constexpr int kWorkerWaits = 6;
constexpr std::chrono::milliseconds kWorkerWait{1000};

}  // namespace

RelaySocket::RelaySocket() = default;

RelaySocket::~RelaySocket() {
  StopWorkers();
  std::lock_guard lock(queueMutex_);
  queue_.clear();
  queuedBytes_ = 0;
}

bool RelaySocket::Fail(const platform::SysResult& result) {
  lastError_ = result.Errno;
  return false;
}

bool RelaySocket::Create(int32_t type, int32_t blockSize) {
  if (socket_ != kNoSocket) {
    if (state_ != RelayStateClosed) return Fail({kErrorSocketOpen, "create"});
    // The far side ended the connection; its descriptor is still ours.
    Close();
  }
  if (type != kTcp && type != kUdp) return Fail({kErrorInvalid, "create"});
  int fd = kNoSocket;
  auto kind = type == kTcp ? platform::SocketKind::kStream : platform::SocketKind::kDatagram;
  if (platform::SysResult r = platform::OpenSocket(kind, fd); !r) return Fail(r);
  if (type == kTcp) {
    if (platform::SysResult r = platform::SetNoLinger(fd); !r) {
      platform::CloseSocket(fd);
      return Fail(r);
    }
  }
  blockSize_ = blockSize == 0 ? kDefaultBlockSize : blockSize;
  {
    std::lock_guard lock(queueMutex_);
    queue_.clear();
    queuedBytes_ = 0;
  }
  type_ = type;
  socket_ = fd;
  state_ = RelayStateCreated;
  if (type == kUdp) dataSeen_ = false;
  return true;
}

bool RelaySocket::Connect(const std::string& host, uint32_t port) {
  if (socket_ == kNoSocket) return Fail({kErrorNoSocket, "connect"});
  int32_t type = type_;
  if ((type == kTcp && state_ > RelayStateCreated) || (type == kUdp && state_ > RelayStateConnected)) {
    return Fail({kErrorConnected, "connect"});
  }
  if (port > 65535) return Fail({kErrorInvalid, "connect"});
  uint32_t address = 0;
  if (platform::SysResult r = platform::ResolveIpv4(host.substr(0, kHostChars), address); !r) return Fail(r);
  remote_ = {address, static_cast<uint16_t>(port)};
  if (type == kUdp) {
    dataSeen_ = true;
    state_ = RelayStateConnected;
    return true;
  }
  if (platform::SysResult r = platform::ConnectWithin(socket_, remote_, connectTimeoutMs_); !r)
    return Fail(r);
  state_ = RelayStateConnected;
  StartWorker();
  return true;
}

long RelaySocket::Send(const uint8_t* data, long length) {
  std::lock_guard lock(sendMutex_);
  int32_t state = state_;
  int32_t type = type_;
  if (state < RelayStateConnected || (state == RelayStateListening && type == kTcp)) {
    Fail(kErrorNotConnected);
    return -1;
  }
  if (data == nullptr || length < 1) {
    Fail(kErrorNoData);
    return -1;
  }
  platform::Ipv4Endpoint destination;
  if (type == kUdp) {
    if (!dataSeen_) return 0;
    std::lock_guard peer(queueMutex_);
    destination = state == RelayStateListening ? peer_ : remote_;
  }
  for (long sent = 0; sent < length;) {
    platform::SysResult failure;
    long n = platform::SendSome(socket_, data + sent, static_cast<size_t>(length - sent),
                                type == kUdp ? &destination : nullptr, failure);
    if (n < 0) {
      Fail(failure);
      return -1;
    }
    sent += n;
  }
  if (type == kUdp && receiveRun_ == 0) StartWorker();
  return length;
}

long RelaySocket::SendString(const std::string& text) {
  return Send(reinterpret_cast<const uint8_t*>(text.data()), static_cast<long>(text.size()));
}

long RelaySocket::SendLine(const std::string& text) {
  static constexpr const char* kEndings[] = {"", "\r\n", "\n"};
  int32_t mode = lineEnding_;
  if (mode < 0 || mode > 2) return 0;
  std::string line = text + kEndings[mode];
  if (mode == 0) line.push_back('\0');
  return SendString(line);
}

bool RelaySocket::Listen(uint32_t port, int backlog, uint32_t address) {
  if (socket_ == kNoSocket) return Fail({kErrorNoSocket, "listen"});
  if (state_ >= RelayStateConnected) return Fail({kErrorConnected, "listen"});
  if (port > 65535) return Fail({kErrorInvalid, "listen"});
  if (platform::SysResult r = platform::BindTo(socket_, {address, static_cast<uint16_t>(port)}); !r) {
    return Fail(r);
  }
  if (type_ == kTcp) {
    if (platform::SysResult r = platform::ListenOn(socket_, backlog); !r) return Fail(r);
  } else {
    dataSeen_ = false;
  }
  state_ = RelayStateListening;
  StartWorker();
  return true;
}

void RelaySocket::Close() {
  int fd = socket_;
  if (fd == kNoSocket) return;
  state_ = RelayStateClosing;
  int32_t running = 2;
  receiveRun_.compare_exchange_strong(running, 1);
  running = 2;
  acceptRun_.compare_exchange_strong(running, 1);
  // Wakes the worker's receive or accept and any Send blocked on a full
  // buffer; the descriptor itself is closed only once no thread can use it.
  platform::ShutdownSocket(fd);
  {
    std::lock_guard lock(queueMutex_);
    queueSpace_.notify_all();
  }
  bool ended = WaitForWorkers();
  {
    std::lock_guard lock(sendMutex_);
    if (ended) platform::CloseSocket(fd);  // a worker left running keeps it
    socket_ = kNoSocket;
  }
  state_ = RelayStateClosed;
  lastError_ = 0;
  dataSeen_ = false;
}

void RelaySocket::StopWorkers() {
  Close();
  WaitForWorkers();
}

bool RelaySocket::WaitForWorkers() {
  std::unique_lock lock(workerMutex_);
  auto ended = [this] { return receiveRun_ == 0 && acceptRun_ == 0; };
  // A handler that closes its own socket does not wait for itself.
  auto self = std::this_thread::get_id();
  if (receiveWorker_.get_id() == self || acceptWorker_.get_id() == self) return false;
  for (int wait = 0; wait < kWorkerWaits && !ended(); ++wait) workerEnded_.wait_for(lock, kWorkerWait, ended);
  bool done = ended();
  for (std::thread* worker : {&receiveWorker_, &acceptWorker_}) {
    if (!worker->joinable()) continue;
    // Only a derived handler that never returns holds a worker this long;
    // the main thread must not hang on it.
    if (done) {
      worker->join();
    } else {
      worker->detach();
    }
  }
  return done;
}

void RelaySocket::StartWorker() {
  bool accepting = state_ == RelayStateListening && type_ == kTcp;
  std::lock_guard lock(workerMutex_);
  // A Close under way (from the other thread than a UDP Send) has already
  // looked for workers: none may start behind it.
  if (state_ < RelayStateConnected) return;
  std::thread& worker = accepting ? acceptWorker_ : receiveWorker_;
  // An earlier worker has ended (its run flag is 0); collect it.
  if (worker.joinable()) worker.join();
  (accepting ? acceptRun_ : receiveRun_) = 2;
  worker = std::thread([this, accepting] { accepting ? AcceptLoop() : ReceiveLoop(); });
}

void RelaySocket::ReceiveLoop() {
  const bool udp = type_ == kUdp;
  const int fd = socket_;
  const auto size = static_cast<uint32_t>(blockSize_);
  while (receiveRun_ == 2) {
    {
      // Each queued block holds a whole receive buffer: the limit counts those.
      std::unique_lock lock(queueMutex_);
      queueSpace_.wait(lock, [&] { return queue_.size() * size < queueLimit_ || receiveRun_ != 2; });
    }
    if (receiveRun_ != 2) break;
    auto buffer = std::make_unique_for_overwrite<uint8_t[]>(size);
    platform::SysResult failure;
    platform::Ipv4Endpoint from;
    long n = platform::ReceiveSome(fd, buffer.get(), size, udp ? &from : nullptr, failure);
    if (n > 0) {
      dataSeen_ = true;
      if (udp) {
        std::lock_guard lock(queueMutex_);
        peer_ = from;
      }
      if (OnReceive(buffer.get(), n) != 0) continue;
      {
        std::lock_guard lock(queueMutex_);
        queue_.push_back({std::move(buffer), static_cast<uint32_t>(n), 0});
        queuedBytes_ += static_cast<uint32_t>(n);
      }
      OnDataQueued();
      continue;
    }
    // A clean end leaves the last error alone: a Send on the other thread
    // may just have stored why it failed.
    if (n < 0) lastError_ = failure.Errno;
    dataSeen_ = false;
    bool reset = n < 0 && (failure.Errno == ECONNRESET || failure.Errno == ECONNREFUSED);
    if (udp && state_ == RelayStateListening && reset) {
      OnClosed(1);
      continue;
    }
    break;
  }
  receiveRun_ = 1;
  if (state_ > RelayStateClosing) {
    // The far side ended it, not Close. The descriptor stays until Close so
    // that a Send on another thread never meets a reused one.
    state_ = udp ? RelayStateCreated : RelayStateClosed;
    OnClosed(udp ? 1 : 0);
  }
  std::lock_guard lock(workerMutex_);
  receiveRun_ = 0;
  workerEnded_.notify_all();
}

void RelaySocket::AcceptLoop() {
  const int fd = socket_;
  while (acceptRun_ == 2) {
    int connection = kNoSocket;
    platform::Ipv4Endpoint peer;
    if (platform::SysResult r = platform::AcceptFrom(fd, connection, peer); !r) {
      lastError_ = r.Errno;
      break;
    }
    {
      std::lock_guard lock(queueMutex_);
      peer_ = peer;
    }
    if (OnAccept(connection) == 0) {
      platform::ShutdownSocket(connection);
      platform::CloseSocket(connection);
    }
  }
  acceptRun_ = 1;
  if (state_ >= RelayStateCreated) {
    state_ = RelayStateClosed;
    OnClosed(2);
  }
  std::lock_guard lock(workerMutex_);
  acceptRun_ = 0;
  workerEnded_.notify_all();
}

uint32_t RelaySocket::TakeQueued(uint8_t* out, uint32_t count) {
  uint32_t taken = 0;
  while (taken < count && !queue_.empty()) {
    ReceivedBlock& head = queue_.front();
    uint32_t part = std::min(head.Length, count - taken);
    if (out) std::memcpy(out + taken, head.Start.get() + head.Position, part);
    taken += part;
    head.Position += part;
    head.Length -= part;
    if (head.Length == 0) queue_.pop_front();
  }
  queuedBytes_ -= taken;
  queueSpace_.notify_all();
  return taken;
}

uint32_t RelaySocket::ReadQueued(uint8_t* buffer, long capacity) {
  if (buffer == nullptr || capacity < 1) return 0;
  std::lock_guard lock(queueMutex_);
  return TakeQueued(buffer, static_cast<uint32_t>(std::min<long>(capacity, queuedBytes_)));
}

bool RelaySocket::ReadQueuedLine(std::u16string& text) {
  text.clear();
  const uint8_t terminator = lineEnding_ == 0 ? '\0' : '\n';
  std::lock_guard lock(queueMutex_);
  uint32_t length = 0;
  for (const ReceivedBlock& block : queue_) {
    const uint8_t* start = block.Start.get() + block.Position;
    const void* found = std::memchr(start, terminator, block.Length);
    if (found) {
      length += static_cast<uint32_t>(static_cast<const uint8_t*>(found) - start) + 1;
      std::string line(length, '\0');
      TakeQueued(reinterpret_cast<uint8_t*>(line.data()), length);
      text = core::BytesToWide(line);
      return true;
    }
    length += block.Length;
  }
  return false;
}

uint32_t RelaySocket::QueuedBytes() const {
  std::lock_guard lock(queueMutex_);
  return queuedBytes_;
}

platform::Ipv4Endpoint RelaySocket::LocalEndpoint() const {
  platform::Ipv4Endpoint local;
  if (socket_ != kNoSocket) platform::LocalEndpoint(socket_, local);
  return local;
}

}  // namespace wavetrace::relay
