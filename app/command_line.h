#pragma once

#include <string>
#include <vector>

#include "core/command_line_switches.h"

namespace wavetrace::app {

// How a run without a window turns standard input and output into the code
// page's bytes: by itself (UTF-8 on a terminal with a UTF-8 locale, bytes
// otherwise), or as --raw or --utf8 say.
enum class TextEncoding { kAuto, kRaw, kUtf8 };

struct CommandLine {
  core::CommandLineSwitches Switches;
  TextEncoding Encoding = TextEncoding::kAuto;
  bool ExitOnEof = false;  // end once standard input ends and its lines are sent
  bool ShowHelp = false;
  bool ShowVersion = false;
  bool ListPorts = false;
  bool ListWindows = false;  // --list-windows
  std::string Error;         // non-empty: the command line was refused
};

// Both front ends accept the slash switches ("/SCRIPT::path" glued to its
// path, "/Q", "/NOGUI", "/DEBUGON", in any case) and their GNU forms.
// args excludes the program name.
CommandLine ParseCommandLine(const std::vector<std::string>& args);

std::string HelpText(const std::string& program, bool guiProgram);
std::string VersionText();

// Exit codes besides 0 (a normal end, or a signal after a clean shutdown)
// and -1 (start-up failed, or another instance runs).
inline constexpr int kFailureExitCode = 1;  // a start-up port, script or scan that failed
inline constexpr int kStartPortFailedExitCode = kFailureExitCode;
inline constexpr int kUsageExitCode = 2;

}  // namespace wavetrace::app
