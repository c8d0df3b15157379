// wavetrace: the program with its Qt window, or headless where there is no
// display.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/program.h"
#include "core/app_state.h"
#include "platform/signal_watcher.h"
#include "ui/qt_view.h"

namespace {

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(name);
    if (value && *value) return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace wavetrace;
  std::vector<std::string> args(argv + 1, argv + argc);
  app::CommandLine commandLine = app::ParseCommandLine(args);
  if (!commandLine.Error.empty()) {
    std::fprintf(stderr, "wavetrace: %s\nTry 'wavetrace --help' for the options.\n",
                 commandLine.Error.c_str());
    return app::kUsageExitCode;
  }
  if (commandLine.ShowHelp) {
    std::fputs(app::HelpText("wavetrace", true).c_str(), stdout);
    return 0;
  }
  if (commandLine.ShowVersion) {
    std::fputs(app::VersionText().c_str(), stdout);
    return 0;
  }
  if (commandLine.ListPorts) return app::ListPorts();
  if (commandLine.ListWindows) return app::ListWindows();
  if (commandLine.Switches.NoGui) return app::RunHeadless(commandLine);
  if (!HasDisplay()) {
    std::fputs(
        "wavetrace: no display (DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM are unset); running without a "
        "window\n",
        stderr);
    return app::RunHeadless(commandLine);
  }

  // Qt starts threads of its own; they must not take SIGTERM and SIGINT,
  // which the program turns into its Exit command.
  platform::SignalWatcher::Block();
  QApplication application(argc, argv);
  // The window's WM_CLASS is "wavetrace", whatever the executable is called,
  // as the desktop entry's StartupWMClass says; on Wayland the desktop file
  // name is the window's application id.
  QApplication::setApplicationName(QStringLiteral("wavetrace"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.wavetrace.WavetracePro"));
  // The window closes through the shutdown, and the tray may outlive it.
  QApplication::setQuitOnLastWindowClosed(false);

  core::AppState state;
  // The view chooses its layout from --layout among others.
  state.Switches = commandLine.Switches;
  ui::QtView view(state);
  state.View = &view;
  state.Screen.SetEventsEnabled(true);
  int exitCode = app::RunProgram(state, [&view] { return view.RunMessageLoop(); });
  state.View = nullptr;
  return exitCode;
}
