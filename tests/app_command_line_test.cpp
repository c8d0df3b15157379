#include <gtest/gtest.h>

#include "app/command_line.h"
#include "core/code_page.h"

namespace wavetrace::app {
namespace {

TEST(CommandLine, SwitchesAndTheirGnuForms) {
  using Case = std::tuple<std::vector<std::string>, std::string, int, int, int, bool, bool>;
  for (const auto& [args, script, quiet, noGui, debug, help, version] :
       {Case{{}, "", 0, 0, 0, false, false},
        Case{{"/script::a b.txt", "/q", "/NoGui", "/debugon"}, "a b.txt", 1, 1, 1, false, false},
        Case{{"--script", "x.txt", "--quiet", "--nogui", "--debug"}, "x.txt", 1, 1, 1, false, false},
        Case{{"--script=y.txt", "-q"}, "y.txt", 1, 0, 0, false, false},
        Case{{"--help"}, "", 0, 0, 0, true, false}, Case{{"-h", "--version"}, "", 0, 0, 0, true, true}}) {
    SCOPED_TRACE(::testing::PrintToString(args));
    CommandLine line = ParseCommandLine(args);
    const auto& sw = line.Switches;
    EXPECT_TRUE(line.Error.empty()) << line.Error;
    EXPECT_EQ(std::tuple(core::WideToUtf8(sw.ScriptPath), sw.Quiet, sw.NoGui, sw.Debug, line.ShowHelp,
                         line.ShowVersion),
              std::tuple(script, quiet, noGui, debug, help, version));
  }
  // What they show (how wavetrace-cli answers them, its exit status and all: InstallTree).
  EXPECT_EQ(VersionText().rfind("Wavetrace Pro Rel. 2.71.3089 (11.2008)\nbuild ", 0), 0u);
  EXPECT_NE(HelpText("wavetrace-cli", false).find("Exit status: 0 on a normal end"), std::string::npos);
}

TEST(CommandLine, LineSettingOptions) {
  CommandLine line = ParseCommandLine({"--port", "/dev/ttyUSB0", "--baud", "115200", "--databits", "7",
                                       "--parity", "e", "--stopbits", "1.5", "--list-ports"});
  ASSERT_TRUE(line.Error.empty()) << line.Error;
  const auto& sw = line.Switches;
  EXPECT_EQ(std::tuple(sw.Port, sw.Baud, sw.DataBits, sw.Parity, sw.StopBits, line.ListPorts),
            std::tuple(u"/dev/ttyUSB0", 115200u, 7, u"Even", u"1.5", true));
  EXPECT_EQ(ParseCommandLine({"--parity", "SPACE"}).Switches.Parity, u"Space");
  for (auto [arg, host, port, tcp] : {std::tuple{"tcp://10.0.0.7:5000", "10.0.0.7", 5000u, 1},
                                      {"udp://relay.example:0", "relay.example", 0u, 0}}) {
    CommandLine relay = ParseCommandLine({"--relay", arg});
    EXPECT_TRUE(relay.Error.empty()) << relay.Error;
    EXPECT_EQ(std::tuple(relay.Switches.RelayHost, relay.Switches.RelayPort, relay.Switches.RelayTcp),
              std::tuple(host, port, tcp));
  }
}

TEST(CommandLine, RefusedLinesSayWhy) {
  using Case = std::pair<std::vector<std::string>, std::string>;
  for (const auto& [args, error] :
       {Case{{"--bogus"}, "unknown option '--bogus'"}, Case{{"/SCRIPT"}, "unknown option '/SCRIPT'"},
        Case{{"/QUIET"}, "unknown option '/QUIET'"}, Case{{"--nogui", "extra"}, "unknown option 'extra'"},
        Case{{"/SCRIPT::"}, "option /SCRIPT:: needs a script file"},
        Case{{"--script"}, "option --script needs a script file"},
        Case{{"--port", ""}, "option --port needs a port (COM3:, VSP0: or a device path)"},
        Case{{"--port"}, "option --port needs a value"},
        Case{{"--relay"}, "option --relay needs tcp://HOST:PORT or udp://HOST:PORT"}})
    EXPECT_EQ(ParseCommandLine(args).Error, error);
  // A value refused: "OPTION takes WHAT, not 'VALUE'".
  const std::pair<std::string, std::vector<std::string>> refused[] = {
      {"--baud takes a line speed in bits per second", {"0", "fast", "-9600", "99999999999"}},
      {"--databits takes 5, 6, 7 or 8", {"9", "4"}},
      {"--parity takes none, odd, even, mark or space (or N, O, E, M, S)", {"x"}},
      {"--stopbits takes 1, 1.5 or 2", {"3"}},
      {"--relay takes tcp://HOST:PORT or udp://HOST:PORT",
       {"http://a:1", "tcp://:1", "tcp://a", "udp://a:65536", "tcp://a:x"}}};
  for (const auto& [takes, values] : refused) {
    for (const std::string& value : values)
      EXPECT_EQ(ParseCommandLine({takes.substr(0, takes.find(' ')), value}).Error,
                takes + ", not '" + value + "'");
  }
}

}  // namespace
}  // namespace wavetrace::app
