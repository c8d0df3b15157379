#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace wavetrace::core {

// A zero-filled heap block handed out by the shared allocation routines.
// Every block carries two spare zero elements beyond its size, so stages that
// treat the data as a terminated string never read past the end.
template <typename T>
class Buffer {
 public:
  static constexpr size_t kSpare = 2;

  Buffer() = default;
  Buffer(Buffer&&) noexcept = default;
  Buffer& operator=(Buffer&&) noexcept = default;
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  [[nodiscard]] bool Empty() const { return data_ == nullptr; }
  [[nodiscard]] size_t Size() const { return size_; }
  T* Data() { return data_.get(); }
  const T* Data() const { return data_.get(); }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }

  // Used only by the allocation routines, which hold the memory lock.
  void Adopt(std::unique_ptr<T[]> data, size_t size) {
    data_ = std::move(data);
    size_ = size;
  }
  void Reset() {
    data_.reset();
    size_ = 0;
  }

 private:
  std::unique_ptr<T[]> data_;
  size_t size_ = 0;
};

using CharBuffer = Buffer<uint8_t>;
using WideBuffer = Buffer<char16_t>;

// A block of received or transmitted bytes travelling through the pipeline.
// Any stage may replace the buffer; Length is the number of meaningful bytes.
struct DataBlock {
  CharBuffer Buffer;
  uint32_t Length = 0;
};

}  // namespace wavetrace::core
