#include "core/settings.h"

#include "core/code_page.h"

namespace wavetrace::core {

PortSettings::PortSettings() {
  for (int n = 1; n <= 9; ++n) {
    FriendlyName[static_cast<size_t>(n)] =
        u"Serial connection using COM" + Utf8ToWide(std::to_string(n)) + u":";
  }
  for (int m = 0; m <= 9; ++m) {
    FriendlyName[static_cast<size_t>(10 + m)] =
        u"Virtual Serial connection VSP" + Utf8ToWide(std::to_string(m)) + u":";
  }
}

std::u16string PortSlotName(int slot) {
  return (slot < 10 ? u"COM" : u"VSP") + Utf8ToWide(std::to_string(slot % 10)) + u":";
}

int PortSlotOfName(const std::u16string& name) {
  if (name.size() != 5 || name[4] != u':' || name[3] < u'0' || name[3] > u'9') return -1;
  std::u16string kind = name.substr(0, 3);
  if (kind == u"COM") return name[3] - u'0';
  if (kind == u"VSP") return 10 + (name[3] - u'0');
  return -1;
}

}  // namespace wavetrace::core
