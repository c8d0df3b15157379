#include "app/tray_notification.h"

namespace wavetrace::app {

bool ShellNotification(core::AppState& state, int operation) {
  if (!state.NotificationEnabled) return false;
  switch (operation) {
    case kNotifyAdd:
      state.Screen.SetTrayState(1);
      break;
    case kNotifyRemove:
      state.Screen.SetTrayState(0);
      state.NotificationEnabled = false;
      break;
    case kNotifyActive:
      state.Screen.SetTrayState(2);
      break;
    case kNotifyIdle:
      state.Screen.SetTrayState(1);
      break;
    default:
      break;
  }
  return state.NotificationEnabled;
}

}  // namespace wavetrace::app
