#include "app/program.h"

#include <unistd.h>

#include "app/headless_view.h"
#include "app/main_window.h"
#include "app/startup.h"
#include "core/messages.h"
#include "platform/os_info.h"
#include "platform/signal_watcher.h"

namespace wavetrace::app {

int RunProgram(core::AppState& state, const std::function<int()>& messageLoop) {
  platform::SignalWatcher::Block();
  if (StartUp(state, platform::GetOsInfo()) != 0) {
    // Threads that were started must still end before the state goes away.
    if (state.RxThread || state.RxWndUpdate) Shutdown(state);
    if (state.View) state.View->RenderScreenChanges();
    return -1;
  }
  int exitCode;
  {
    platform::SignalWatcher signals([&state](int) { state.Queue.PostCommand(core::cmd::kExit); });
    exitCode = messageLoop();
  }
  // A loop that ended some other way still goes through the shutdown.
  if (!state.ShuttingDown) Shutdown(state);
  exitCode = AfterMessageLoop(state) == 0 ? exitCode : state.Queue.QuitCode();
  if (state.View) state.View->RenderScreenChanges();
  return exitCode;
}

int RunHeadless(const CommandLine& commandLine) {
  core::AppState state;
  state.Switches = commandLine.Switches;
  state.Switches.NoGui = 1;
  HeadlessView view(state, STDOUT_FILENO, STDERR_FILENO, commandLine.Switches.Quiet != 0);
  state.View = &view;
  state.Screen.SetEventsEnabled(true);
  int exitCode = RunProgram(state, [&] {
    OnFirstPaint(state);
    view.RenderScreenChanges();
    return state.Queue.RunLoop();
  });
  state.View = nullptr;
  return exitCode;
}

}  // namespace wavetrace::app
