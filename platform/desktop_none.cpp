#include "platform/desktop.h"

// The build without X11 headers: there are no other windows.
namespace wavetrace::platform {

struct Desktop::Connection {};

Desktop::Desktop() : unavailable_("this build has no X11 support") {}

Desktop::~Desktop() = default;

bool Desktop::HasWindowManager() const {
  return false;
}

std::vector<DesktopWindow> Desktop::TopLevelWindows() {
  return {};
}

bool Desktop::IsWindow(uint64_t) {
  return false;
}

bool Desktop::Activate(uint64_t) {
  return false;
}

}  // namespace wavetrace::platform
