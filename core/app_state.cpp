#include "core/app_state.h"

#include "platform/display_control.h"
#include "platform/hot_keys.h"
#include "platform/instance_lock.h"
#include "platform/log_file.h"

namespace wavetrace::core {

AppState::AppState() {
  PublishSettings(*this);
}
AppState::~AppState() = default;

}  // namespace wavetrace::core
