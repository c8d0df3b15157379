#include "serial/tx_thread.h"

#include <cstring>

#include "core/allocation.h"
#include "core/code_page.h"
#include "core/escape_parser.h"
#include "core/messages.h"
#include "core/reporting.h"
#include "rx/bracket_escapes.h"
#include "serial/file_transmit.h"
#include "serial/port.h"

namespace wavetrace::serial {
namespace {

using namespace core::cmd;

constexpr char16_t kFileTag[] = u"[File::";

// While a send runs the user cannot start another or change the text.
void LockTransmitControls(core::AppState& state) {
  if (!state.TxRepeat) state.Screen.EnableButton(kSend, false);
  state.Screen.SetTxEnabled(false);
  state.Screen.EnableButton(kPaste, false);
  state.Screen.GreyMenuItem(kClearSendHistory, true);
}

void UnlockTransmitControls(core::AppState& state) {
  if (state.PlayFlag) state.Screen.EnableButton(kSend, true);
  state.Screen.SetTxEnabled(true);
  state.Screen.EnableButton(kPaste, true);
  state.Screen.GreyMenuItem(kClearSendHistory, false);
}

// Each send takes the transmit settings published last.
void SendOnce(core::AppState& state) {
  // The failing call, if any, was reported with its code where it failed.
  if (SendTransmitText(state, *state.PublishedTx.Load()) == 1)
    core::ShowStatusError(state, u"Error sending data!  Check connection.", {});
}

}  // namespace

RepeatPause RepeatPauseOf(uint32_t delayMs) {
  if (delayMs >= 100) return {static_cast<int>(delayMs / 100), 0};
  return {0, static_cast<int>(delayMs)};
}

uint32_t PrepareTxData(core::AppState& state, const core::TxSettings& settings, core::DataBlock& block,
                       uint32_t length) {
  if (length == 0) return 0;
  if (settings.TxClrRCVEtxt == 1) state.Screen.RxClear();
  int32_t postambleLength = settings.PostambleLengthTX;
  if (postambleLength != 0) {
    core::CharBuffer grown;
    if (core::AllocCharBuffer(state, grown, int64_t{length} + 2 + postambleLength) != 0) return length;
    std::memcpy(grown.Data(), block.Buffer.Data(), length);
    // A length-bounded string append: a zero in the postamble ends it.
    const auto& post = settings.PostambleBytesTX;
    size_t end = strnlen(reinterpret_cast<const char*>(grown.Data()), length);
    for (int32_t i = 0; i < postambleLength && post[static_cast<size_t>(i)] != 0; ++i) {
      grown[end + static_cast<size_t>(i)] = post[static_cast<size_t>(i)];
    }
    core::FreeBuffer(state, block.Buffer);
    block.Buffer = std::move(grown);
    length += static_cast<uint32_t>(postambleLength);
  }
  // The log holds the text as it stands: postamble appended, escapes not
  // yet parsed.
  if (state.LogRecords) state.LogRecords->TransmittedData(block.Buffer.Data(), length);
  block.Length = length;
  int32_t parsed = core::ParseBracketEscapes(std::span<uint8_t>(block.Buffer.Data(), block.Buffer.Size() + 2),
                                             rx::EffectiveBase(settings.Base));
  return static_cast<uint32_t>(parsed);
}

int WriteTimeoutMs(const core::AppState& state, uint32_t count) {
  uint64_t timeout = uint64_t{state.WriteTotalTimeoutMultiplier} * count + state.WriteTotalTimeoutConstant;
  return static_cast<int>(std::min<uint64_t>(timeout, INT32_MAX));
}

int WriteToPort(core::AppState& state, const uint8_t* bytes, uint32_t count) {
  if (!state.PlayFlag) return 0;
  if (!state.TxActive) return kWriteSkipped;
  auto port = CurrentPort(state);
  platform::SysResult failure{0, "closed port"};
  int written =
      port ? port->Write(bytes, static_cast<int>(count), WriteTimeoutMs(state, count), failure) : -1;
  if (written != static_cast<int>(count)) {
    // A write that ran out of time has no system code.
    if (written >= 0) failure = {0, "write time-out"};
    core::ShowStatusError(state, u"Error writing to port.", failure);
    return 1;
  }
  return 0;
}

void AddSentHistory(core::AppState& state, bool reset, const std::string& sentBytes) {
  if (reset) {
    state.SentHistoryCount = 0;
    return;
  }
  if (state.TxShowSent.exchange(false)) core::ShowStatus(state, core::BytesToWide(sentBytes));
  std::u16string text = state.Screen.TxText();
  auto history = state.Screen.TxHistory();
  if (std::find(history.begin(), history.end(), text) != history.end()) return;
  if (state.SentHistoryCount < core::AppState::kSentHistoryKept) {
    ++state.SentHistoryCount;
  } else if (!history.empty()) {
    history.erase(history.begin());
  }
  history.push_back(text);
  state.Screen.SetTxHistory(std::move(history));
}

int SendTransmitText(core::AppState& state, const core::TxSettings& settings) {
  std::u16string text = state.Screen.TxText();
  auto length = static_cast<uint32_t>(text.size());
  if (length == 0) return 0;
  core::WideBuffer wide;
  core::DataBlock block;
  if (core::AllocWideBuffer(state, wide, int64_t{length} + 4) != 0 ||
      core::AllocCharBuffer(state, block.Buffer, int64_t{length} + 4) != 0) {
    core::FreeBuffer(state, wide);
    core::FreeBuffer(state, block.Buffer);
    return 1;
  }
  std::memcpy(wide.Data(), text.data(), length * sizeof(char16_t));
  std::string narrow = core::WideToBytes(text);
  std::memcpy(block.Buffer.Data(), narrow.data(), length);
  uint32_t count = PrepareTxData(state, settings, block, length);

  int result;
  size_t tag = text.find(kFileTag);
  if (tag != std::u16string::npos) {
    // "[File::" name "]": the name is what follows "::", up to the last "]".
    size_t nameStart = tag + std::size(kFileTag) - 1;
    std::u16string name = text.substr(nameStart, length >= 8 ? length - 8 : 0);
    core::ShowStatus(state, u"Transmitting file...");
    result = TransmitFile(state, settings, name);
  } else {
    result = WriteToPort(state, block.Buffer.Data(), count);
  }
  if (result == 0) {
    AddSentHistory(state, false, std::string(reinterpret_cast<const char*>(block.Buffer.Data()), count));
  }
  core::FreeBuffer(state, wide);
  core::FreeBuffer(state, block.Buffer);
  return result;
}

void TxThread(core::AppState& state, platform::SuspendableThread& self) {
  state.TxShowSent = false;
  // The thread lives until shutdown. A resume can be left over from a SEND
  // pressed during a repeat run and be taken after STOP: with no port then
  // there is nothing to send, and the thread parks again for the next SEND.
  for (;;) {
    if (state.ShuttingDown || self.StopRequested()) return;
    if (!CurrentPort(state)) {
      state.TxActive = false;
      if (!self.Park()) return;
      continue;
    }
    LockTransmitControls(state);
    state.TxShowSent = true;
    if (state.TxRepeat) {
      uint32_t repeatNum = state.PublishedTx.Load()->TxRepeatNum;
      uint32_t roundsLeft = repeatNum == 0 ? 1 : repeatNum;
      while (state.TxActive && state.TxRepeat && roundsLeft > 0) {
        SendOnce(state);
        RepeatPause pause = RepeatPauseOf(state.PublishedTx.Load()->TxRepeatDelay);
        for (int step = 0; step < pause.Steps && state.TxActive; ++step) self.SleepFor(100);
        if (pause.SingleSleepMs > 0) self.SleepFor(pause.SingleSleepMs);
        if (repeatNum != 0) --roundsLeft;
        if (self.StopRequested()) break;
      }
    } else {
      SendOnce(state);
    }
    state.TxActive = false;
    UnlockTransmitControls(state);
    state.Queue.Post(core::MakeMessage(core::kWmTxIdle));
    if (!self.Park()) break;
  }
  // Whoever waits for the transmit path must not wait for good.
  state.Queue.Post(core::MakeMessage(core::kWmTxIdle));
}

}  // namespace wavetrace::serial
