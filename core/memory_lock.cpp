#include "core/memory_lock.h"

#include <chrono>

namespace wavetrace::core {

void MemoryLock::lock() {
  if (std::this_thread::get_id() != mainThread_ || !waitHook_) {
    mutex_.lock();
    return;
  }
  while (!mutex_.try_lock()) {
    waitHook_();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace wavetrace::core
