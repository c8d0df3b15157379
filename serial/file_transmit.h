#pragma once

#include <cstdint>
#include <string>

#include "core/app_state.h"

namespace wavetrace::serial {

inline constexpr uint32_t kMinimumFileBaud = 50;

// Bytes the line carries in 200 ms at ten bits a byte (9600 -> 192).
uint32_t FileChunkSize(uint32_t baud);

struct ChunkPlan {
  uint32_t ChunkSize = 0;
  uint32_t ChunkCount = 0;
  uint32_t TailBytes = 0;  // sent after the chunks (when it is sent at all)
  bool TailSent = false;
};
// How a file of fileSize bytes goes out. The tail of a file between one and
// two chunks long is not sent unless sendWholeFile is set.
ChunkPlan PlanFileChunks(uint64_t fileSize, uint32_t baud, bool sendWholeFile);

// Progress after chunk index i (0-based) of count: ((i + 1) x 100) / (count + 1),
// or 100 for a single chunk.
int FileProgressPercent(uint32_t index, uint32_t count);

// Sends a file to the open port in paced chunks with "Sent: %d%%" progress.
// 0 when all was sent, the user stopped it or the file was empty; the write's
// result when a write ended it; 99 for every file or memory error (reported).
int TransmitFile(core::AppState& state, const core::TxSettings& settings, const std::u16string& path);

}  // namespace wavetrace::serial
