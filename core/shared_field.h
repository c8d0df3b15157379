#pragma once

#include <atomic>

namespace wavetrace::core {

// Settings are plain fields (they are copied, compared and saved whole), but
// some are read by a worker thread while the main thread switches them. Such
// accesses go through these, so they are atomic without changing the field.
template <typename T>
T LoadShared(const T& field) {
  return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

template <typename T>
void StoreShared(T& field, T value) {
  std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

}  // namespace wavetrace::core
