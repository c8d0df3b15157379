// wavetrace-cli: the program without a window.
#include <cstdio>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/program.h"

int main(int argc, char** argv) {
  using namespace wavetrace::app;
  std::vector<std::string> args(argv + 1, argv + argc);
  CommandLine commandLine = ParseCommandLine(args);
  if (!commandLine.Error.empty()) {
    std::fprintf(stderr, "wavetrace-cli: %s\nTry 'wavetrace-cli --help' for the options.\n",
                 commandLine.Error.c_str());
    return kUsageExitCode;
  }
  if (commandLine.ShowHelp) {
    std::fputs(HelpText("wavetrace-cli", false).c_str(), stdout);
    return 0;
  }
  if (commandLine.ShowVersion) {
    std::fputs(VersionText().c_str(), stdout);
    return 0;
  }
  if (commandLine.ListPorts) return ListPorts();
  if (commandLine.ListWindows) return ListWindows();
  return RunHeadless(commandLine);
}
