#include "rx/log_cache.h"

#include <algorithm>
#include <cstring>

#include "core/allocation.h"
#include "core/reporting.h"

namespace wavetrace::rx {

int AllocLogCache(core::AppState& state) {
  core::FreeBuffer(state, state.DataLogCache);
  state.DataLogCacheCount = 0;
  return core::AllocCharBuffer(state, state.DataLogCache, core::kDataLogCacheBytes);
}

void FreeLogCache(core::AppState& state) {
  core::FreeBuffer(state, state.DataLogCache);
  state.DataLogCacheCount = 0;
}

int AppendToLogCache(core::AppState& state, const uint8_t* bytes, uint32_t n) {
  {
    std::lock_guard lock(state.RxDataLock);
    if (state.DataLogCache.Empty()) return 0;
    uint8_t* cache = state.DataLogCache.Data();
    if (state.DataLogCacheCount + n < static_cast<uint32_t>(core::kDataLogCacheBytes)) {
      // A bounded string append: the copy stops at a zero byte in the data
      // while the count still grows by n.
      size_t end = strnlen(reinterpret_cast<const char*>(cache), core::kDataLogCacheBytes);
      for (uint32_t i = 0; i < n && bytes[i] != 0 && end + i < core::kDataLogCacheBytes; ++i) {
        cache[end + i] = bytes[i];
        cache[end + i + 1] = 0;
      }
      state.DataLogCacheCount += n;
      return 0;
    }
    std::memset(cache, 0, 4);
    state.DataLogCacheCount = 0;
  }
  // Reported once the lock is released: the box waits for the user, and the
  // other threads must not wait with it.
  core::ShowErrorBox(state, u"Warning!  MAXcachesize reached.", {});
  return 1;
}

void AppendWholeToLogCache(core::AppState& state, const uint8_t* bytes, uint32_t n) {
  std::lock_guard lock(state.RxDataLock);
  if (state.DataLogCache.Empty()) return;
  n = std::min<uint32_t>(n, core::kDataLogCacheBytes - state.DataLogCacheCount);
  std::memcpy(state.DataLogCache.Data() + state.DataLogCacheCount, bytes, n);
  state.DataLogCacheCount += n;
}

void ClearLogCache(core::AppState& state) {
  std::lock_guard lock(state.RxDataLock);
  if (!state.DataLogCache.Empty()) {
    std::memset(state.DataLogCache.Data(), 0,
                std::min<size_t>(state.DataLogCacheCount, core::kDataLogCacheBytes));
  }
  state.DataLogCacheCount = 0;
}

}  // namespace wavetrace::rx
