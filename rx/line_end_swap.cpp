#include "rx/line_end_swap.h"

#include "rx/byte_search.h"

namespace wavetrace::rx {

void SwapLfCr(uint8_t* data, uint32_t length) {
  static constexpr uint8_t kLfCr[2] = {10, 13};
  int64_t hit = FindBytes(data, length, kLfCr, 2, 0, true);
  while (hit >= 0) {
    data[hit] = 13;
    data[hit + 1] = 10;
    hit = FindBytes(data, length, kLfCr, 2, hit + 1, true);
  }
}

}  // namespace wavetrace::rx
