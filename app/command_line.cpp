#include "app/command_line.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "app/help.h"
#include "app/window_placement.h"
#include "core/build_info.h"
#include "core/code_page.h"
#include "core/version.h"
#include "platform/line_setting_text.h"

namespace wavetrace::app {
namespace {

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

bool StartsWithNoCase(const std::string& text, const std::string& prefix) {
  return text.size() >= prefix.size() && Upper(text.substr(0, prefix.size())) == prefix;
}

// Whether an argument is an option rather than a value: "-x", "--x" or one
// of the slash switches (a path beginning with "/" is a value).
bool IsOption(const std::string& arg) {
  std::string upper = Upper(arg);
  return arg.rfind('-', 0) == 0 || upper == "/Q" || upper == "/NOGUI" || upper == "/DEBUGON" ||
         StartsWithNoCase(arg, "/SCRIPT::");
}

bool IsLineOption(const std::string& arg) {
  return arg == "--port" || arg == "--baud" || arg == "--databits" || arg == "--parity" ||
         arg == "--stopbits";
}

// Sets one line option; returns what is wrong with the value, or nothing.
std::string SetLineOption(core::CommandLineSwitches& sw, const std::string& option,
                          const std::string& value) {
  if (option == "--port") {
    if (value.empty()) return "option --port needs a port (COM3:, VSP0: or a device path)";
    sw.Port = core::Utf8ToWide(value);
    return {};
  }
  if (option == "--baud") {
    char* end = nullptr;
    unsigned long baud = std::strtoul(value.c_str(), &end, 10);
    if (value.empty() || *end || baud == 0 || baud > 0xFFFFFFFFul || value[0] == '-') {
      return "--baud takes a line speed in bits per second, not '" + value + "'";
    }
    sw.Baud = static_cast<uint32_t>(baud);
    return {};
  }
  if (option == "--databits") {
    if (value.size() != 1 || value[0] < '5' || value[0] > '8')
      return "--databits takes 5, 6, 7 or 8, not '" + value + "'";
    sw.DataBits = value[0] - '0';
    return {};
  }
  if (option == "--parity") {
    for (const char16_t* name : {u"None", u"Odd", u"Even", u"Mark", u"Space"}) {
      std::string upperName = Upper(core::WideToUtf8(name));
      std::string upperValue = Upper(value);
      if (upperValue == upperName || upperValue == upperName.substr(0, 1)) {
        sw.Parity = name;
        return {};
      }
    }
    return "--parity takes none, odd, even, mark or space (or N, O, E, M, S), not '" + value + "'";
  }
  if (value != "1" && value != "1.5" && value != "2")
    return "--stopbits takes 1, 1.5 or 2, not '" + value + "'";
  sw.StopBits = core::Utf8ToWide(value);
  return {};
}

// "tcp://HOST:PORT" or "udp://HOST:PORT".
std::string SetRelayOption(core::CommandLineSwitches& sw, const std::string& value) {
  std::string refused = "--relay takes tcp://HOST:PORT or udp://HOST:PORT, not '" + value + "'";
  std::string scheme = value.substr(0, 6);
  size_t colon = value.rfind(':');
  if ((scheme != "tcp://" && scheme != "udp://") || colon == std::string::npos || colon <= 6) return refused;
  std::string port = value.substr(colon + 1);
  char* end = nullptr;
  unsigned long number = std::strtoul(port.c_str(), &end, 10);
  if (port.empty() || *end || port[0] == '-' || number > 65535) return refused;
  sw.RelayHost = value.substr(6, colon - 6);
  sw.RelayPort = static_cast<uint32_t>(number);
  sw.RelayTcp = scheme == "tcp://" ? 1 : 0;
  return {};
}

// "baud,databits,parity,stopbits", any of them, in any order.
std::string SetScanRotation(core::CommandLineSwitches& sw, const std::string& value) {
  static constexpr std::pair<std::string_view, int32_t> kParts[] = {
      {"baud", 1}, {"databits", 2}, {"parity", 4}, {"stopbits", 8}};
  int32_t mask = 0;
  size_t start = 0;
  while (start <= value.size()) {
    size_t comma = value.find(',', start);
    std::string part = value.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    int32_t bit = 0;
    for (auto [name, partBit] : kParts) {
      if (part == name) bit = partBit;
    }
    if (bit == 0)
      return "--scan-rotate takes a list of baud, databits, parity and stopbits, not '" + value + "'";
    mask |= bit;
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  sw.ScanRotate = mask;
  return {};
}

std::string SetScanInterval(core::CommandLineSwitches& sw, const std::string& value) {
  char* end = nullptr;
  long seconds = std::strtol(value.c_str(), &end, 10);
  if (value.empty() || *end || seconds < 1 || seconds > 60)
    return "--scan-interval takes 1 to 60 seconds, not '" + value + "'";
  sw.ScanInterval = static_cast<int32_t>(seconds);
  return {};
}

// Options that only switch something on.
using Switches = core::CommandLineSwitches;
constexpr std::pair<std::string_view, int32_t Switches::*> kSwitchOptions[] = {
    {"--log-timestamp", &Switches::LogTimestamp},
    {"--log-tx", &Switches::LogTransmit},
    {"--log-overwrite", &Switches::LogOverwrite},
    {"--never-drop", &Switches::NeverDrop},
    {"--reconnect", &Switches::Reconnect},
    {"--line-status", &Switches::LineStatus},
    {"--send-break", &Switches::SendBreak},
    {"--exit-after-script", &Switches::ExitAfterScript},
    {"--scan", &Switches::Scan},
};

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& args) {
  CommandLine result;
  auto& sw = result.Switches;
  auto setScript = [&](const std::string& path, const std::string& option) {
    if (path.empty()) {
      result.Error = "option " + option + " needs a script file";
      return;
    }
    sw.ScriptPath = core::Utf8ToWide(path);
  };
  size_t i = 0;
  // The argument after an option that takes a value; null, with the error
  // set, when there is none.
  auto valueOf = [&](const std::string& needs) -> const std::string* {
    if (i + 1 < args.size()) return &args[++i];
    result.Error = "option " + args[i] + " needs " + needs;
    return nullptr;
  };
  for (; i < args.size() && result.Error.empty(); ++i) {
    const std::string& arg = args[i];
    std::string upper = Upper(arg);
    auto switchOption = std::find_if(std::begin(kSwitchOptions), std::end(kSwitchOptions),
                                     [&](const auto& option) { return option.first == arg; });
    if (switchOption != std::end(kSwitchOptions)) {
      sw.*(switchOption->second) = 1;
    } else if (StartsWithNoCase(arg, "/SCRIPT::")) {
      setScript(arg.substr(9), "/SCRIPT::");
    } else if (upper == "/Q" || arg == "--quiet" || arg == "-q") {
      sw.Quiet = 1;
    } else if (upper == "/NOGUI" || arg == "--nogui") {
      sw.NoGui = 1;
    } else if (upper == "/DEBUGON" || arg == "--debug") {
      sw.Debug = 1;
    } else if (arg == "--script") {
      if (const std::string* path = valueOf("a script file")) setScript(*path, "--script");
    } else if (arg.rfind("--script=", 0) == 0) {
      setScript(arg.substr(9), "--script");
    } else if (arg == "--config") {
      if (const std::string* path = valueOf("a configuration file")) sw.ConfigPath = core::Utf8ToWide(*path);
    } else if (arg.rfind("--config=", 0) == 0 && arg.size() > 9) {
      sw.ConfigPath = core::Utf8ToWide(arg.substr(9));
    } else if (arg == "--send") {
      if (const std::string* text = valueOf("a text")) sw.SendText = core::Utf8ToWide(*text);
    } else if (arg == "--sim-setting") {
      platform::LineSettings line;
      if (i + 1 >= args.size() || !platform::ParseLineSetting(args[i + 1], line)) {
        result.Error = "--sim-setting takes speed,data bits,parity,stop bits (for example 9600,7,E,1)";
      } else {
        sw.SimSetting = args[++i];
      }
    } else if (arg == "--relay") {
      if (const std::string* url = valueOf("tcp://HOST:PORT or udp://HOST:PORT"))
        result.Error = SetRelayOption(sw, *url);
    } else if (arg == "--relay-window") {
      if (i + 1 >= args.size() || args[i + 1].empty()) {
        result.Error = "option --relay-window needs (part of) a window title";
      } else {
        sw.RelayWindowTitle = core::Utf8ToWide(args[++i]);
      }
    } else if (arg == "--list-windows") {
      result.ListWindows = true;
    } else if (arg == "--record" || arg.rfind("--record=", 0) == 0) {
      sw.Record = 1;
      if (arg.size() > 9) {
        sw.RecordPath = core::Utf8ToWide(arg.substr(9));
      } else if (i + 1 < args.size() && !IsOption(args[i + 1])) {
        sw.RecordPath = core::Utf8ToWide(args[++i]);
      }
    } else if (arg == "--scan-rotate" || arg == "--scan-interval") {
      if (const std::string* value = valueOf("a value"))
        result.Error = arg == "--scan-rotate" ? SetScanRotation(sw, *value) : SetScanInterval(sw, *value);
    } else if (arg == "--raw") {
      result.Encoding = TextEncoding::kRaw;
    } else if (arg == "--utf8") {
      result.Encoding = TextEncoding::kUtf8;
    } else if (arg == "--layout" || arg.rfind("--layout=", 0) == 0) {
      std::string value = arg.size() > 8 ? arg.substr(9) : (i + 1 < args.size() ? args[++i] : "");
      std::optional<WindowLayout> layout = ParseLayout(value);
      if (!layout) {
        result.Error = "--layout takes compact or desktop, not '" + value + "'";
      } else {
        sw.Layout = static_cast<int32_t>(*layout);
      }
    } else if (arg == "--exit-on-eof") {
      result.ExitOnEof = true;
    } else if (arg == "--list-ports") {
      result.ListPorts = true;
    } else if (IsLineOption(arg)) {
      if (const std::string* value = valueOf("a value")) result.Error = SetLineOption(sw, arg, *value);
    } else if (arg == "--help" || arg == "-h") {
      result.ShowHelp = true;
    } else if (arg == "--version") {
      result.ShowVersion = true;
    } else {
      result.Error = "unknown option '" + arg + "'";
    }
  }
  return result;
}

std::string HelpText(const std::string& program, bool guiProgram) {
  std::string text = "Usage: " + program + " [OPTION]...\n";
  text += guiProgram ? "Wavetrace Pro: serial-port terminal and data acquisition.\n"
                     : "Wavetrace Pro without a window: received data goes to standard output,\n"
                       "the status line and errors to standard error.\n";
  text +=
      "\n"
      "  --script FILE, /SCRIPT::FILE  run the script FILE (automation mode)\n"
      "  --exit-after-script           end the program once the script has run out\n"
      "  --config FILE                 load the configuration FILE after the default one\n"
      "  --port PORT                   open PORT at start (COM3:, VSP0: or a device path)\n"
      "  --baud N, --databits 5..8, --parity none|odd|even|mark|space, --stopbits 1|1.5|2\n"
      "                                the line setting for it\n"
      "  --send TEXT                   send TEXT once the port is open ([0D] is a carriage return)\n"
      "  --reconnect                   reopen the port when its device comes back after going away\n"
      "                                (also when the port of --port is not there at start)\n"
      "  --line-status                 report the modem lines (CTS, DSR, DCD, RI) and the error\n"
      "                                counters on standard error whenever they change\n"
      "  --send-break                  send a break once the port is open\n"
      "  --relay tcp://HOST:PORT       relay received data to a TCP server (udp://HOST:PORT: UDP)\n"
      "                                once the port is open; the relay's messages go to standard error\n"
      "  --relay-window TITLE          type received data into the first listed window whose title\n"
      "                                contains TITLE (X11), once the port is open; with --relay too,\n"
      "                                both relays run\n"
      "  --record [FILE]               switch RECORD on once the port is open, into FILE when given\n"
      "                                (a name without a folder goes to the documents folder)\n"
      "  --log-timestamp               stamp each log record with the date and time\n"
      "  --log-tx                      log transmitted data too, records tagged Rx and Tx\n"
      "  --log-overwrite               start the log file anew instead of appending to it\n"
      "  --never-drop                  never drop log data: a full log cache goes to the file\n"
      "  --scan                        port scan: open the port of --port with one line setting after\n"
      "                                another, each under a heading such as [VSP0:,4800,8,N,1], then exit\n"
      "  --scan-rotate LIST            what the scan varies: baud,databits,parity,stopbits (default baud);\n"
      "                                each starts at the current setting\n"
      "  --scan-interval N             seconds each setting is listened to, 1 to 60 (default 1)\n"
      "  --list-ports                  list the serial ports found and exit\n"
      "  --list-windows                list the windows the window relay can type into and exit\n"
      "  --sim-setting B,D,P,S         the simulated device's own line setting (VSP0:), e.g. 9600,7,E,1\n";
  if (guiProgram) {
    text +=
        "  --layout compact|desktop      the window's layout: the small-screen one or the desktop one\n"
        "                                (default: as Program Options say, else by the screen's size)\n";
  }
  text +=
      "  --nogui, /NOGUI               no window: run headless in this terminal\n"
      "  --quiet, -q, /Q               headless: keep status messages off standard error\n"
      "  --raw                         headless: bytes in and out as they are (the default\n"
      "                                unless standard output is a UTF-8 terminal)\n"
      "  --utf8                        headless: convert both ways between UTF-8 and the\n"
      "                                code page (the default on a UTF-8 terminal)\n"
      "  --exit-on-eof                 headless: end once standard input ends and every\n"
      "                                line from it and any --send text have been sent\n"
      "  --debug, /DEBUGON             scripts echo every command they find\n"
      "  --help, -h                    show this help and exit\n"
      "  --version                     show the release and build and exit\n"
      "\n"
      "Switches in the /FORM are matched without regard to case.\n"
      "\n"
      "Headless, standard output carries everything received (after the receive\n"
      "options), complete and in order; the welcome text only on a terminal. A reader\n"
      "that falls more than 64 MiB behind loses the oldest output, and standard error\n"
      "says how many bytes. Each line of standard input is sent, in order, once the\n"
      "previous one has gone. A line of ~ and a word is a command instead: ~play,\n"
      "~stop, ~repeat, ~record, ~relay, ~clear, ~pause (the display), ~break, ~rts,\n"
      "~dtr, ~exit; a line beginning with ~~ is sent with one ~.\n"
      "Commands wait for the lines typed before them, except during a REPEAT run.\n"
      "\n"
      "Exit status: 0 on a normal end (also after SIGINT or SIGTERM, and after a\n"
      "script's EXITPROGRAM), 1 when the port of --port cannot be opened at start\n"
      "(headless), when a --script file cannot be read or is empty (headless), or\n"
      "when a --scan finds no port or its port fails, 2 when the command line is\n"
      "wrong, 255 when start-up fails or another instance runs (MULTIinst is 0).\n"
      "Settings live in $WAVETRACE_HOME, else $XDG_CONFIG_HOME/wavetrace-pro,\n"
      "else ~/.config/wavetrace-pro.\n";
  const std::string manual = ManualPath();
  text += manual.empty() ? "The manual (docs/manual/index.html in the source) is not installed.\n"
                         : "The manual: " + manual + "\n";
  return text;
}

std::string VersionText() {
  return "Wavetrace Pro " + core::WideToUtf8(core::kReleaseLine) + "\nbuild " + core::kBuildVersion + "\n";
}

}  // namespace wavetrace::app
