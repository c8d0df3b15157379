#include "app/program.h"

#include <cstdio>

#include "app/display_stream.h"
#include "app/headless_input.h"
#include "app/headless_view.h"
#include "app/main_window.h"
#include "app/port_discovery.h"
#include "app/startup.h"
#include "automation/script.h"
#include "config/config_file.h"
#include "config/program_options.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "core/version.h"
#include "platform/fd_io.h"
#include "platform/files.h"
#include "platform/line_reader.h"
#include "platform/os_info.h"
#include "platform/signal_watcher.h"
#include "relay/window_relay.h"

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

namespace {

// The configuration folder and program options of a listing run.
void OpenConfigFolder(core::AppState& state) {
  std::string folder = platform::ConfigFolder();
  state.ConfigFolder = core::Utf8ToWide(folder);
  state.RegistryFile = folder + "/" + config::kRegistryFileName;
  if (config::LoadProgramOptions(state) == 0) config::RecordReleaseWhenMissing(state);
}

}  // namespace

int ListWindows() {
  core::AppState state;
  OpenConfigFolder(state);
  state.WindowTitle = core::kProgramTitle;
  if (state.ProgramOptions.DEFAULTcfg != 1) {
    platform::SysResult ignored;
    config::ConfigLoad(state, state.ConfigFolder + u"/" + config::kDefaultConfigName, ignored);
  }
  relay::WindowList list = relay::FillWindowList(state);
  if (!list.Unavailable.empty()) {
    platform::WriteAll(platform::kStandardError, "No windows to list: " + list.Unavailable + "\n");
    return kFailureExitCode;
  }
  std::string text;
  for (const std::u16string& line : list.Texts) text += core::WideToUtf8(line) + "\n";
  return platform::WriteAll(platform::kStandardOutput, text) ? 0 : 1;
}

int ListPorts() {
  core::AppState state;
  OpenConfigFolder(state);
  DiscoverPorts(state);
  std::string text = PortTableText(state);
  return platform::WriteAll(platform::kStandardOutput, text) ? 0 : 1;
}

int RunHeadless(const CommandLine& commandLine) {
  // Unattended, a script that cannot run must not leave a program waiting
  // for nothing.
  if (const std::u16string& script = commandLine.Switches.ScriptPath; !script.empty()) {
    std::u16string text;
    platform::SysResult failure;
    if (automation::LoadScript(script, text, failure) != 0) {
      std::string why = !failure ? platform::ErrorText(failure.Errno) : "the file is empty";
      platform::WriteAll(platform::kStandardError, "Script file automation: init failed... aborting. [" +
                                                       core::WideToUtf8(script) + "]: " + why + "\n");
      return kFailureExitCode;
    }
  }
  bool quiet = commandLine.Switches.Quiet != 0;
  bool outIsTerminal = platform::IsTerminal(platform::kStandardOutput);
  bool utf8 = commandLine.Encoding == TextEncoding::kUtf8 ||
              (commandLine.Encoding == TextEncoding::kAuto && outIsTerminal && platform::LocaleIsUtf8());
  // Before the stream's writer thread exists, so that it never takes the
  // signals meant for the shutdown.
  platform::SignalWatcher::Block();
  core::AppState state;
  state.Switches = commandLine.Switches;
  state.Switches.NoGui = 1;
  HeadlessView view(state, platform::kStandardError, quiet);
  state.View = &view;
  // Standard output follows everything the receive window is given: the
  // dispatcher's blocks (in place of the window's buffer) and every other
  // text inserted into it, from whichever thread, in order.
  // The stream's notices go straight to stderr: a writer left behind at the
  // end may still report after the view is gone.
  DisplayStream stream(platform::kStandardOutput, utf8 ? StreamEncoding::kUtf8 : StreamEncoding::kBytes,
                       [](std::u16string_view notice) {
                         platform::WriteAll(platform::kStandardError, core::WideToUtf8(notice) + "\n");
                       });
  state.RxDisplay = &stream;
  state.Screen.SetRxTap([&stream](std::u16string_view text) { stream.TakeText(text); });
  HeadlessInput input(state, utf8, commandLine.ExitOnEof,
                      [&view](std::u16string_view text) { view.Report(text); });
  view.SetInput(&input);
  state.Screen.SetEventsEnabled(true);
  int exitCode = RunProgram(state, [&] {
    OnFirstPaint(state, outIsTerminal && !quiet);
    view.RenderScreenChanges();
    auto onMainThread = [&state](std::function<void()> call) {
      core::Message message = core::MakeMessage(core::kWmCall);
      message.Call = [call = std::move(call)] {
        call();
        return int64_t{0};
      };
      state.Queue.Post(std::move(message));
    };
    platform::LineReader reader(
        platform::kStandardInput,
        [&](const std::string& line) { onMainThread([&input, line] { input.OnLine(line); }); },
        [&] { onMainThread([&input] { input.OnEnd(); }); });
    return state.Queue.RunLoop();
  });
  view.SetInput(nullptr);
  state.Screen.SetRxTap(nullptr);
  // What was read before the end (a signal, the exit command, an unplugged
  // device) is written before the program ends.
  state.RxDisplay = nullptr;
  stream.Close(kDisplayStreamDrainMs);
  state.View = nullptr;
  return exitCode;
}

}  // namespace wavetrace::app
