#include "core/settings.h"

#include "core/code_page.h"

namespace wavetrace::core {

PortSettings::PortSettings() {
  for (int n = 1; n <= 9; ++n) {
    FriendlyName[static_cast<size_t>(n)] = u"Serial connection using COM" + Utf8ToWide(std::to_string(n)) + u":";
  }
  for (int m = 0; m <= 9; ++m) {
    FriendlyName[static_cast<size_t>(10 + m)] =
        u"Virtual Serial connection VSP" + Utf8ToWide(std::to_string(m)) + u":";
  }
}

}  // namespace wavetrace::core
