#pragma once

#include <cstdint>

namespace wavetrace::rx {

// Exact, case-sensitive byte search. Forward: the lowest match at or after
// start. Backward: start counts from the end, and the highest match at or
// below length - 1 - start is returned. -1 when there is none, when start is
// outside 0..length, when the pattern is longer than length - start, or when
// the pattern is empty (an empty search matches nothing).
int64_t FindBytes(const uint8_t* data, int64_t length, const uint8_t* pattern, int64_t patternLength,
                  int64_t start, bool forward);

}  // namespace wavetrace::rx
