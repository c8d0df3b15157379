#pragma once

#include <string>
#include <vector>

#include "core/command_line_switches.h"

namespace wavetrace::app {

struct CommandLine {
  core::CommandLineSwitches Switches;
  bool ShowHelp = false;
  bool ShowVersion = false;
  bool ListPorts = false;
  std::string Error;  // non-empty: the command line was refused
};

// Both front ends accept the slash switches ("/SCRIPT::path" glued to its
// path, "/Q", "/NOGUI", "/DEBUGON", in any case) and their GNU forms.
// args excludes the program name.
CommandLine ParseCommandLine(const std::vector<std::string>& args);

std::string HelpText(const std::string& program, bool guiProgram);
std::string VersionText();

// Exit code for a refused command line.
inline constexpr int kUsageExitCode = 2;

}  // namespace wavetrace::app
