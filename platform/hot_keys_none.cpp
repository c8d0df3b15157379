#include "platform/hot_keys.h"

// The build without X11 headers: no keys to grab.
namespace wavetrace::platform {

struct HotKeys::Watcher {};

HotKeys::HotKeys(std::span<const HotKey>, std::function<void(int)>)
    : unavailable_("this build has no X11 support") {}

HotKeys::~HotKeys() = default;

}  // namespace wavetrace::platform
