#include "serial/file_transmit.h"

#include <cstdio>
#include <memory>
#include <new>

#include "core/allocation.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "platform/clock.h"
#include "serial/port.h"
#include "serial/tx_thread.h"

namespace wavetrace::serial {
namespace {

constexpr int kFileError = 99;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

platform::SysResult ReadExactly(std::FILE* file, uint8_t* into, size_t count) {
  if (std::fread(into, 1, count, file) == count) return {};
  // A file that shrank while it was sent ends early without a system error.
  return std::ferror(file) ? platform::FailedCall("fread") : platform::SysResult{0, "fread"};
}

void ShowProgress(core::AppState& state, int percent) {
  core::ShowStatus(state, u"Sent: " + core::Utf8ToWide(std::to_string(percent)) + u"%");
}

bool StillSending(const core::AppState& state) {
  return state.PlayFlag && state.TxActive;
}

// A chunk counts as sent once it has left the port, not when the driver took
// it: the progress then follows the line, and STOP finds little queued. The
// wait ends early when the port closes; on a time-out (flow control holding
// the line) the next write finds the queue still full and times out itself.
void WaitForTheLine(core::AppState& state, uint32_t count) {
  if (auto port = CurrentPort(state)) port->DrainOutput(WriteTimeoutMs(state, count));
}

}  // namespace

uint32_t FileChunkSize(uint32_t baud) {
  return ((baud / 10) * 200) / 1000;
}

ChunkPlan PlanFileChunks(uint64_t fileSize, uint32_t baud, bool sendWholeFile) {
  ChunkPlan plan;
  plan.ChunkSize = FileChunkSize(baud);
  if (plan.ChunkSize == 0 || fileSize == 0) return plan;
  if (plan.ChunkSize >= fileSize) {
    plan.ChunkSize = static_cast<uint32_t>(fileSize);
    plan.ChunkCount = 1;
    return plan;
  }
  plan.ChunkCount = static_cast<uint32_t>(fileSize / plan.ChunkSize);
  plan.TailBytes = static_cast<uint32_t>(fileSize - uint64_t{plan.ChunkCount} * plan.ChunkSize);
  plan.TailSent = plan.ChunkCount != 1 || sendWholeFile;
  return plan;
}

int FileProgressPercent(uint32_t index, uint32_t count) {
  if (count == 1) return 100;
  return static_cast<int>((uint64_t{index} + 1) * 100 / (uint64_t{count} + 1));
}

int TransmitFile(core::AppState& state, const core::TxSettings& settings, const std::u16string& path) {
  File file(std::fopen(core::WideToUtf8(path).c_str(), "rb"));
  if (!file) {
    core::ShowStatusError(state, u"Error opening file. Verify it exists. ", platform::FailedCall("fopen"));
    return kFileError;
  }
  long size = -1;
  if (std::fseek(file.get(), 0, SEEK_END) == 0) size = std::ftell(file.get());
  if (size < 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) {
    core::ShowStatusError(state, u"Error opening file. Verify it exists. ", platform::FailedCall("fseek"));
    return kFileError;
  }
  if (size == 0) {
    core::ShowStatus(state, u"Empty file. ");
    return 0;
  }
  uint32_t baud = settings.SelectedBaud;
  if (baud < kMinimumFileBaud) {
    // At under 50 baud a chunk of 200 ms holds no byte at all.
    core::ShowStatusError(state, u"Files are sent at 50 baud or more. ", {});
    return kFileError;
  }
  ChunkPlan plan = PlanFileChunks(static_cast<uint64_t>(size), baud, settings.TxSendWholeFile == 1);

  // The whole file in memory when it fits, else one chunk at a time.
  core::CharBuffer buffer;
  bool whole = false;
  if (std::unique_ptr<uint8_t[]> probe(new (std::nothrow) uint8_t[static_cast<size_t>(size) + 4]);
      probe && size + 4 <= core::kMaxAllocationBytes) {
    probe.reset();
    if (core::AllocCharBuffer(state, buffer, size + 4) == 0) {
      whole = true;
      if (platform::SysResult read = ReadExactly(file.get(), buffer.Data(), static_cast<size_t>(size));
          !read) {
        core::FreeBuffer(state, buffer);
        core::ShowStatusError(state, u"Error reading in whole file. ", read);
        return kFileError;
      }
    }
  }
  if (!whole && core::AllocCharBuffer(state, buffer, int64_t{plan.ChunkSize} + 4) != 0) {
    core::ShowStatusError(state, u"TxFile: Error allocating memory. ", platform::OutOfMemory());
    return kFileError;
  }

  // Reads one piece (unless the whole file is in memory), writes it and waits for it to leave.
  const uint8_t* chunk = buffer.Data();
  auto sendPiece = [&](uint32_t bytes, std::u16string_view readError) {
    if (!whole) {
      if (platform::SysResult read = ReadExactly(file.get(), buffer.Data(), bytes); !read) {
        core::ShowStatusError(state, readError, read);
        return kFileError;
      }
    }
    int written = WriteToPort(state, chunk, bytes);
    if (written == 0) WaitForTheLine(state, bytes);
    if (whole) chunk += bytes;
    return written;
  };
  int result = 0;
  for (uint32_t i = 0; i < plan.ChunkCount && StillSending(state); ++i) {
    result = sendPiece(plan.ChunkSize, u"Error reading file. ");
    if (result != 0) break;
    ShowProgress(state, FileProgressPercent(i, plan.ChunkCount));
    platform::SleepMs(50);
  }
  if (plan.TailSent && result == 0 && StillSending(state)) {
    result = sendPiece(plan.TailBytes, u"Error reading last bytes in file. ");
    if (result == 0) {
      ShowProgress(state, 100);
      platform::SleepMs(100);
    }
  }
  core::FreeBuffer(state, buffer);
  return result;
}

}  // namespace wavetrace::serial
