#include "app/program.h"

#include <cstdio>

#include "app/headless_view.h"
#include "app/main_window.h"
#include "app/port_discovery.h"
#include "app/startup.h"
#include "config/program_options.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/fd_io.h"
#include "platform/files.h"
#include "platform/line_reader.h"
#include "platform/os_info.h"
#include "platform/signal_watcher.h"

namespace wavetrace::app {

int RunProgram(core::AppState& state, const std::function<int()>& messageLoop) {
  platform::SignalWatcher::Block();
  // Watching from the start: a signal during start-up (a box may be up) ends
  // the run as soon as the loop serves the exit command.
  platform::SignalWatcher signals([&state](int) {
    state.Queue.PostCommand(core::cmd::kExit);
    if (state.View) state.View->InterruptModal();
  });
  if (StartUp(state, platform::GetOsInfo()) != 0) {
    // Threads that were started must still end before the state goes away.
    if (state.RxThread || state.RxWndUpdate) Shutdown(state);
    if (state.View) state.View->RenderScreenChanges();
    return -1;
  }
  int exitCode = messageLoop();
  // A loop that ended some other way still goes through the shutdown.
  if (!state.ShuttingDown) Shutdown(state);
  exitCode = AfterMessageLoop(state) == 0 ? exitCode : state.Queue.QuitCode();
  if (state.View) state.View->RenderScreenChanges();
  return exitCode;
}

std::string PortTableText(core::AppState& state) {
  std::string text;
  for (int slot = 0; slot < core::kPortSlots; ++slot) {
    auto index = static_cast<size_t>(slot);
    std::string name = core::WideToUtf8(core::PortSlotName(slot));
    char line[512];
    std::snprintf(line, sizeof line, "%-6s %-8s %-40s %s\n", name.c_str(),
                  state.Port.PortPresent[index] ? "present" : "-",
                  core::WideToUtf8(state.Port.FriendlyName[index]).c_str(),
                  state.PortDevicePath[index].c_str());
    text += line;
  }
  return text;
}

int ListPorts() {
  core::AppState state;
  std::string folder = platform::ConfigFolder();
  state.ConfigFolder = core::Utf8ToWide(folder);
  state.RegistryFile = folder + "/" + config::kRegistryFileName;
  if (config::LoadProgramOptions(state) == 0) config::RecordReleaseWhenMissing(state);
  DiscoverPorts(state);
  std::string text = PortTableText(state);
  return platform::WriteAll(platform::kStandardOutput, text) ? 0 : 1;
}

int RunHeadless(const CommandLine& commandLine) {
  core::AppState state;
  state.Switches = commandLine.Switches;
  state.Switches.NoGui = 1;
  HeadlessView view(state, platform::kStandardOutput, platform::kStandardError,
                    commandLine.Switches.Quiet != 0);
  state.View = &view;
  state.Screen.SetEventsEnabled(true);
  int exitCode = RunProgram(state, [&] {
    OnFirstPaint(state);
    view.RenderScreenChanges();
    // Each line typed (or piped) in goes into the transmit field and is sent
    // with SEND, so bracket escapes work as in the window.
    platform::LineReader input(platform::kStandardInput, [&state](const std::string& line) {
      core::Message message = core::MakeMessage(core::kWmCall);
      message.Call = [&state, text = core::Utf8ToWide(line)] {
        state.Screen.SetTxText(text);
        return MainWindowProc(state, core::MakeMessage(core::kWmCommand, core::cmd::kSend));
      };
      state.Queue.Post(std::move(message));
    });
    return state.Queue.RunLoop();
  });
  state.View = nullptr;
  return exitCode;
}

}  // namespace wavetrace::app
