#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace wavetrace::core {

// An immutable value that one thread replaces whole and others read. The main
// thread stores a new value after each change; a worker loads it once per
// unit of work (a block, a send, a refresh) and uses that one value to the
// end, so it never sees half of a change. A loaded value stays valid while the
// reader holds it, however often it is replaced meanwhile.
template <typename T>
class Published {
 public:
  [[nodiscard]] std::shared_ptr<const T> Load() const {
    std::lock_guard lock(mutex_);
    return current_;
  }

  void Store(std::shared_ptr<const T> next) {
    {
      std::lock_guard lock(mutex_);
      current_.swap(next);
    }
    // The replaced value is released here, outside the lock.
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<const T> current_;
};

}  // namespace wavetrace::core
