#include "serial/simulated_device.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <thread>

#include "serial/uart_model.h"

namespace wavetrace::serial {
namespace {

using Clock = std::chrono::steady_clock;
using platform::LineSettings;

std::string WithChecksum(const std::string& body) {
  unsigned checksum = 0;
  for (char c : body) checksum ^= static_cast<unsigned char>(c);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", checksum);
  return "$" + body + tail;
}

class SimulatedPort : public platform::SerialPort {
 public:
  explicit SimulatedPort(const core::SimulatedProfile& profile)
      : profile_(profile), portLine_(profile.SimulatedSetting) {
    thread_ = std::thread([this] { Run(); });
  }
  ~SimulatedPort() override { Close(); }
  SimulatedPort(const SimulatedPort&) = delete;
  SimulatedPort& operator=(const SimulatedPort&) = delete;

  platform::SysResult Configure(const LineSettings& settings, std::string& refusal) override {
    refusal = platform::CheckLineSettings(settings);
    if (!refusal.empty()) return {0, "line setting"};
    std::lock_guard lock(mutex_);
    portLine_ = settings;
    return {};
  }

  uint32_t WaitEvent() override {
    std::unique_lock lock(mutex_);
    wake_.wait(lock, [this] { return !readable_.empty() || mask_ == 0 || closed_; });
    return !readable_.empty() && mask_ != 0 && !closed_ ? platform::event::kRxChar : 0;
  }

  void SetEventMask(uint32_t mask) override {
    {
      std::lock_guard lock(mutex_);
      mask_ = mask;
    }
    wake_.notify_all();
  }

  int Read(uint8_t* buffer, int count, platform::SysResult& failure) override {
    std::lock_guard lock(mutex_);
    if (closed_) {
      failure = {0, "closed port"};
      return -1;
    }
    int n = std::min(count, static_cast<int>(readable_.size()));
    std::copy_n(readable_.begin(), n, buffer);
    readable_.erase(readable_.begin(), readable_.begin() + n);
    return n;
  }

  // Like a terminal: the bytes go into an output queue of its size and leave
  // at the port's line rate; a full queue makes the write wait for room.
  int Write(const uint8_t* data, int count, int timeoutMs, platform::SysResult& failure) override {
    std::unique_lock lock(mutex_);
    if (closed_) {
      failure = {0, "closed port"};
      return -1;
    }
    auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    int done = 0;
    while (done < count) {
      if (!wake_.wait_until(lock, deadline,
                            [this] { return closed_ || outgoing_.size() < kOutputQueueBytes; }) ||
          closed_)
        break;
      size_t n = std::min(kOutputQueueBytes - outgoing_.size(), static_cast<size_t>(count - done));
      if (outgoing_.empty()) nextByteOut_ = Clock::now() + ByteTime();
      outgoing_.insert(outgoing_.end(), data + done, data + done + n);
      done += static_cast<int>(n);
    }
    return done;
  }

  bool DrainOutput(int timeoutMs) override {
    std::unique_lock lock(mutex_);
    wake_.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                   [this] { return closed_ || outgoing_.empty(); });
    return !closed_ && outgoing_.empty();
  }

  void DiscardOutput() override {
    {
      std::lock_guard lock(mutex_);
      outgoing_.clear();
    }
    wake_.notify_all();
  }

  void Purge() override {
    {
      std::lock_guard lock(mutex_);
      readable_.clear();
      bursts_.clear();
      outgoing_.clear();
    }
    wake_.notify_all();
  }
  void ClearModemLines(bool, bool) override {}
  void SendXoff() override {}
  void SetModemLine(bool, bool) override {}
  // The device is always there (CTS, DSR, DCD up); the counters are what
  // the port's UART model found wrong in what the device sent.
  [[nodiscard]] platform::LineStatus ReadLineStatus() const override {
    std::lock_guard lock(mutex_);
    platform::LineStatus status;
    status.LinesKnown = status.Cts = status.Dsr = status.Dcd = true;
    status.CountersKnown = true;
    status.Frame = errors_.Frame;
    status.Parity = errors_.Parity;
    return status;
  }
  [[nodiscard]] bool HungUp() const override { return false; }

  void Close() override {
    {
      std::lock_guard lock(mutex_);
      closed_ = true;
      mask_ = 0;
    }
    wake_.notify_all();
    if (thread_.joinable() && thread_.get_id() != std::this_thread::get_id()) thread_.join();
  }

 private:
  // Bytes on their way: sent at the device's rate, read as the port decodes them.
  struct Burst {
    std::string decoded;
    Clock::time_point start;
    Clock::duration length;
    size_t released = 0;
  };

  // With the lock held: the time one byte takes on the line at the port's setting.
  [[nodiscard]] Clock::duration ByteTime() const {
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(BitsPerFrame(portLine_) / portLine_.Baud));
  }

  // With the lock held: the bytes that have left the port by now reach the
  // device. True when any did.
  bool Transmit(Clock::time_point now) {
    std::string sent;
    while (!outgoing_.empty() && now >= nextByteOut_) {
      sent.push_back(static_cast<char>(outgoing_.front()));
      outgoing_.pop_front();
      nextByteOut_ += ByteTime();
    }
    if (!sent.empty()) Hear(sent);
    return !sent.empty();
  }

  // With the lock held: the device hears the program's bytes through its own
  // UART and answers complete lines.
  void Hear(const std::string& sent) {
    std::string heard = TranscodeUart(sent, portLine_, profile_.SimulatedSetting);
    for (char c : heard) {
      if (c != '\r' && c != '\n') {
        if (line_.size() < 256) line_ += c;
        continue;
      }
      if (line_.empty()) continue;
      std::string upper = line_;
      for (auto& u : upper) u = static_cast<char>(std::toupper(static_cast<unsigned char>(u)));
      if (upper.rfind("AT", 0) == 0) {
        Emit("OK\r\n");
      } else if (profile_.SimulatedEcho) {
        Emit(line_ + "\r\n");
      }
      line_.clear();
    }
  }

  // With the lock held: queues what the device sends now.
  void Emit(const std::string& bytes) {
    auto now = Clock::now();
    auto start = bursts_.empty() ? now : std::max(now, bursts_.back().start + bursts_.back().length);
    double seconds = static_cast<double>(bytes.size()) * BitsPerFrame(profile_.SimulatedSetting) /
                     profile_.SimulatedSetting.Baud;
    bursts_.push_back(
        Burst{TranscodeUart(bytes, profile_.SimulatedSetting, portLine_, &errors_), start,
              std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds)), 0});
  }

  // With the lock held: moves what has "arrived" by now to the port's queue.
  bool Release(Clock::time_point now) {
    bool moved = false;
    while (!bursts_.empty()) {
      Burst& burst = bursts_.front();
      if (now < burst.start) break;
      double done = burst.length.count() <= 0
                        ? 1.0
                        : std::min(1.0, std::chrono::duration<double>(now - burst.start) /
                                            std::chrono::duration<double>(burst.length));
      auto due = static_cast<size_t>(static_cast<double>(burst.decoded.size()) * done);
      if (done >= 1.0) due = burst.decoded.size();
      if (due > burst.released) {
        readable_.insert(readable_.end(), burst.decoded.begin() + static_cast<long>(burst.released),
                         burst.decoded.begin() + static_cast<long>(due));
        burst.released = due;
        moved = true;
      }
      if (burst.released < burst.decoded.size()) break;
      bursts_.pop_front();
    }
    return moved;
  }

  void Run() {
    uint32_t second = 0;
    auto nextSentence = Clock::now() + std::chrono::milliseconds(100);
    std::unique_lock lock(mutex_);
    while (!closed_) {
      auto now = Clock::now();
      if (now >= nextSentence) {
        Emit(SimulatedSentences(second++));
        nextSentence += std::chrono::milliseconds(std::max(profile_.SimulatedSentenceMs, 10));
      }
      bool sent = Transmit(now);
      if (Release(now) || sent) {
        lock.unlock();
        wake_.notify_all();
        lock.lock();
      }
      wake_.wait_for(lock, std::chrono::milliseconds(10));
    }
  }

  const core::SimulatedProfile profile_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  UartErrors errors_;  // what the port's side found in the device's frames
  LineSettings portLine_;
  uint32_t mask_ = platform::event::kDefaultMask;
  bool closed_ = false;
  std::deque<uint8_t> readable_;
  std::deque<Burst> bursts_;
  // Written by the program, not yet on the line; the head leaves at nextByteOut_.
  static constexpr size_t kOutputQueueBytes = 4096;
  std::deque<uint8_t> outgoing_;
  Clock::time_point nextByteOut_;
  std::string line_;
  std::thread thread_;
};

}  // namespace

std::string SimulatedSentences(uint32_t second) {
  uint32_t t = 12 * 3600 + second;
  char clock[16];
  std::snprintf(clock, sizeof clock, "%02u%02u%02u.00", (t / 3600) % 24, (t / 60) % 60, t % 60);
  return WithChecksum(std::string("GPGGA,") + clock + ",4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,") +
         WithChecksum(std::string("GPRMC,") + clock + ",A,4807.0380,N,01131.0000,E,0.0,0.0,221126,,,A");
}

std::unique_ptr<platform::SerialPort> OpenSimulatedDevice(const core::SimulatedProfile& profile) {
  return std::make_unique<SimulatedPort>(profile);
}

}  // namespace wavetrace::serial
