#include "core/allocation.h"

#include <new>
#include <string>

#include "core/reporting.h"

namespace wavetrace::core {
namespace {

template <typename T>
int Allocate(AppState& state, Buffer<T>& slot, int64_t count, const char16_t* unitLabel) {
  std::lock_guard lock(state.MemLock);
  slot.Reset();
  T* data = nullptr;
  if (count >= 0 && count <= kMaxAllocationBytes / static_cast<int64_t>(sizeof(T))) {
    data = new (std::nothrow) T[static_cast<size_t>(count) + Buffer<T>::kSpare]();
  }
  if (!data) {
    WriteErrorBlock(state, u"Error allocating memory space. Possibly low on memory.",
                    platform::OutOfMemory());
    std::u16string requested = u"Requested ";
    requested += unitLabel;
    requested += u"=[";
    for (char c : std::to_string(count)) requested += static_cast<char16_t>(c);
    requested += u"]";
    WriteErrorBlock(state, requested, platform::OutOfMemory());
    return 1;
  }
  slot.Adopt(std::unique_ptr<T[]>(data), static_cast<size_t>(count));
  return 0;
}

}  // namespace

int AllocCharBuffer(AppState& state, CharBuffer& slot, int64_t count) {
  return Allocate(state, slot, count, u"Cbytes");
}

int AllocWideBuffer(AppState& state, WideBuffer& slot, int64_t count) {
  return Allocate(state, slot, count, u"Tbytes");
}

void FreeBuffer(AppState& state, CharBuffer& slot) {
  std::lock_guard lock(state.MemLock);
  slot.Reset();
}

void FreeBuffer(AppState& state, WideBuffer& slot) {
  std::lock_guard lock(state.MemLock);
  slot.Reset();
}

}  // namespace wavetrace::core
