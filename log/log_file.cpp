#include "log/log_file.h"

#include <mutex>

#include "core/code_page.h"
#include "core/reporting.h"
#include "log/log_names.h"
#include "platform/log_file.h"

namespace wavetrace::log {

int OpenLogFile(core::AppState& state, platform::SysResult& failure) {
  std::lock_guard lock(state.RxDataLock);
  CloseLogFile(state);
  std::string path = core::WideToUtf8(LogPath(state.Log));
  failure = platform::LogFile::Open(path, state.Log.LOGoverwrite == 1, state.LogFileHandle);
  if (!failure) return 1;
  state.LogFileSize = state.LogFileHandle->Size();
  state.LogWriteFailing = false;
  return 0;
}

int OpenLogFile(core::AppState& state) {
  platform::SysResult failure;
  return OpenLogFile(state, failure);
}

int WriteLogFile(core::AppState& state, const uint8_t* bytes, uint32_t n) {
  if (n == 0) return 0;
  std::lock_guard lock(state.RxDataLock);
  if (!state.LogFileHandle) return 0;
  platform::SysResult result = state.LogFileHandle->Write(bytes, n);
  state.LogFileSize = state.LogFileHandle->Size();
  if (!result) {
    // Every flush of a full disk fails; one report per run of failures is
    // enough to say so, and recording goes on.
    if (!state.LogWriteFailing) {
      state.LogWriteFailing = true;
      core::ShowStatusError(state, u"Error writing to LogFile: " + LogPath(state.Log), result);
    }
    return 1;
  }
  state.LogWriteFailing = false;
  return 0;
}

uint64_t CloseLogFile(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  if (state.LogFileHandle) {
    state.LogFileSize = state.LogFileHandle->Size();
    state.LogFileHandle.reset();
  }
  return state.LogFileSize;
}

}  // namespace wavetrace::log
