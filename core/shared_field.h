#pragma once

#include <atomic>

namespace wavetrace::core {

// Atomic access to a plain run-time field that another thread reads (the
// display power state). Settings never go this way: they reach other threads
// as published records (core/published_settings.h).
template <typename T>
T LoadShared(const T& field) {
  return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

template <typename T>
void StoreShared(T& field, T value) {
  std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

}  // namespace wavetrace::core
