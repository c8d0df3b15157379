#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/system_error.h"

namespace wavetrace::platform {

enum class Parity { kNone, kOdd, kEven, kMark, kSpace };
enum class StopBits { kOne, kOneAndHalf, kTwo };

// A line setting as the port layer applies it.
struct LineSettings {
  uint32_t Baud = 9600;
  int DataBits = 8;
  Parity ParityMode = Parity::kNone;
  StopBits Stop = StopBits::kOne;
  bool XonXoff = false;
  bool Rts = false;      // RTS line on while open
  bool CtsFlow = false;  // output flow control by CTS
  bool Dtr = false;      // DTR line on while open
  bool DsrFlow = false;  // not available on Linux
  bool operator==(const LineSettings&) const = default;
};

// Port events a wait reports, as bits of the event mask.
namespace event {
inline constexpr uint32_t kRxChar = 0x0001;
inline constexpr uint32_t kRxFlag = 0x0002;
inline constexpr uint32_t kTxEmpty = 0x0004;
inline constexpr uint32_t kBreak = 0x0040;
inline constexpr uint32_t kError = 0x0080;
inline constexpr uint32_t kDefaultMask = kRxChar | kRxFlag | kTxEmpty | kBreak | kError;  // 199
}  // namespace event

// The modem input lines and the driver's error counters, as far as a port can
// tell (a pseudo-terminal knows neither; many USB adapters lack the counters).
struct LineStatus {
  bool LinesKnown = false;
  bool Cts = false;
  bool Dsr = false;
  bool Dcd = false;
  bool Ri = false;
  bool CountersKnown = false;
  uint32_t Frame = 0;
  uint32_t Parity = 0;
  uint32_t Overrun = 0;
  uint32_t BufferOverrun = 0;
  uint32_t Breaks = 0;
  bool operator==(const LineStatus&) const = default;
};

// An open serial port: a terminal device or a backend inside the program.
// Failures come back as results (or -1 counts with the result kept), never
// thrown.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  // Applies the line setting. A failure to read the device's current setting
  // (the device is no serial port) comes back with refusal empty; any other
  // failure says in refusal, in words, what the driver or Linux refused.
  virtual SysResult Configure(const LineSettings& settings, std::string& refusal) = 0;
  // Blocks until an event in the mask, and returns it; 0 when the mask was
  // set to 0 (close), the device hung up, or the wait failed.
  virtual uint32_t WaitEvent() = 0;
  // A mask of 0 wakes a pending wait with 0.
  virtual void SetEventMask(uint32_t mask) = 0;
  // Reads what is queued, at most count bytes, without waiting. Returns the
  // count (0: nothing there, or the device hung up), or -1 with failure set.
  virtual int Read(uint8_t* buffer, int count, SysResult& failure) = 0;
  // Writes count bytes, waiting at most timeoutMs in all. Returns the bytes
  // written (fewer on a time-out), or -1 with failure set.
  virtual int Write(const uint8_t* data, int count, int timeoutMs, SysResult& failure) = 0;
  // Throws away both queues.
  virtual void Purge() = 0;
  // Waits until what was written has left the port (the driver's output
  // queue is empty), at most timeoutMs. False on a time-out, and at once
  // once the port is closing.
  virtual bool DrainOutput(int timeoutMs) = 0;
  // Throws away what was written but has not left yet.
  virtual void DiscardOutput() = 0;
  // Clears the lines named (RTS, DTR); the other keeps its level. Ports
  // without modem lines ignore it.
  virtual void ClearModemLines(bool rts, bool dtr) = 0;
  // Asks the far side to stop sending (XOFF).
  virtual void SendXoff() = 0;
  // Sets (on) or clears one output line by hand: RTS when rts, else DTR.
  // Ports without modem lines ignore it.
  virtual void SetModemLine(bool /*rts*/, bool /*on*/) {}
  // Holds the line in the break state (on) or releases it. A terminal
  // without a break (a pseudo-terminal) takes the call and does nothing.
  virtual SysResult SetBreak(bool /*on*/) { return {}; }
  [[nodiscard]] virtual LineStatus ReadLineStatus() const { return {}; }
  // Bytes received and not read yet (0 when unknown).
  [[nodiscard]] virtual int QueuedInput() const { return 0; }
  // True once the device went away (hang-up) while open.
  [[nodiscard]] virtual bool HungUp() const = 0;
  // Wakes a pending wait, waits for it to leave, throws away unsent output
  // and releases the device without making the caller wait for the line.
  // Every later call fails quietly (reads and writes -1, waits 0).
  virtual void Close() = 0;
};

// What cannot be done with a line setting on Linux, in words; empty when it
// can be applied.
std::string CheckLineSettings(const LineSettings& settings);

// Opens a terminal device exclusively. Null on failure, with failure set; a
// port that another program holds fails its kLockPortOperation as busy.
std::unique_ptr<SerialPort> OpenTermiosPort(const std::string& path, SysResult& failure);

}  // namespace wavetrace::platform
