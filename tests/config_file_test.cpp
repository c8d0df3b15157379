// Where the settings are kept: the INI store under both files, the program
// options in the registry file, and the configuration files with the Config menu.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <optional>

#include "app/main_window.h"
#include "config/config_file.h"
#include "config/ini_store.h"
#include "config/program_options.h"
#include "config/registry_store.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/files.h"
#include "test_support.h"

namespace wavetrace::config {
namespace {

using core::AppState;
using namespace std::string_literals;

constexpr char kKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro";

// A front end that records its boxes and answers the Config menu's file dialogs.
class ChoosingFrontEnd : public testing::RecordingFrontEnd {
 public:
  std::u16string ChooseConfigFile(bool save, std::u16string_view start) override {
    asked.push_back((save ? u"save " : u"load ") + std::u16string(start));
    return answer;
  }
  std::vector<std::u16string> asked;  // which dialog, and where it started
  std::u16string answer;
};

// A fresh folder for the INI store, the configuration files and the registry
// file, and a state that shows its boxes to a recording view.
class SettingsFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    state.View = &view;
    state.RegistryFile = registry;
  }
  // A store over a file of these contents, or (none) only its path, for saving.
  void Open(const std::optional<std::string>& contents, const std::string& name = "test.cfg.txt") {
    iniPath = folder.Path() + "/" + name;
    if (contents) Write(name, *contents);
    Reopen(!contents);
  }
  void Reopen(bool createEmpty = false) {
    store = std::make_unique<IniStore>();
    EXPECT_EQ(store->Open(iniPath, createEmpty), 0);
  }
  std::string Get(const std::string& section, const std::string& key, int size = 512) {
    std::string value;
    return store->Get(section, key, value, size) ? value : "<missing>";
  }
  std::u16string Path(const std::string& name) { return core::Utf8ToWide(folder.Path() + "/" + name); }
  std::u16string Write(const std::string& name, const std::string& contents) {
    std::ofstream(folder.Path() + "/" + name, std::ios::binary) << contents;
    return Path(name);
  }
  // A state loaded from a file of the signature, the padding and body.
  std::unique_ptr<AppState> Load(const std::string& body, const std::function<void(AppState&)>& before = {}) {
    auto s = std::make_unique<AppState>();
    if (before) before(*s);
    std::string file = "[Wavetrace Pro]\r\nConfigFile=1\r\n" + std::string(64, ';') + "\r\n" + body;
    EXPECT_EQ(ConfigLoad(*s, Write("q.cfg.txt", file)), 0) << body;
    return s;
  }
  void WriteRegistry(const std::string& values) { std::ofstream(registry) << "[" << kKey << "]\n" << values; }
  // The values the key holds, in the order of their names: AcquireHWbuttons, DEFAULTcfg,
  // DisableIcon, MULTIinst for the four program options.
  std::vector<uint32_t> Stored() {
    RegistryKey key;
    bool created = false;
    EXPECT_TRUE(RegistryStore(registry).CreateKey(kKey, key, created));
    std::vector<uint32_t> values;
    for (auto [name, value] : key.Dwords()) values.push_back(value);
    return values;
  }

  testing::TempFolder folder;
  std::string iniPath;
  std::unique_ptr<IniStore> store;
  AppState state;
  ChoosingFrontEnd view;
  std::string registry = folder.Path() + "/" + kRegistryFileName;
};
using IniStoreTest = SettingsFilesTest;
using ConfigFileTest = SettingsFilesTest;
using ProgramOptionsTest = SettingsFilesTest;

TEST_F(IniStoreTest, LoadingTrimsAndSplitsLines) {
  // File, section, key, value found. A last line is not trimmed, and one that starts blank is dropped.
  using Case = std::array<std::string, 4>;
  for (const auto& [file, section, key, value] :
       {Case{"[S]\nKey \t= \t x y \t\n", "S", "Key", "x y"}, Case{"[S]\r\nFlag\r\n", "S", "Flag", ""},
        Case{"[S]\n  Key=1\n", "S", "  Key", "1"}, Case{"[S]\nKey=a=b\n", "S", "Key", "a=b"},
        Case{"[ S ] trailing\nK=v\n", " S ", "K", "v"}, Case{"[S\nK=v\n", "S", "K", "v"},
        Case{"top=1\n[S]\nK=v\n", "", "top", "1"}, Case{"[S]\nK=first\nK=second\n", "S", "K", "second"},
        Case{"[s]\nk=v\n", "S", "k", "<missing>"}, Case{"[S]\n; note=1\nK=v\n", "S", "; note", "<missing>"},
        Case{"[S]\nKey=Value  \r", "S", "Key", "Value  \r"}, Case{"[S]\n \tK=v", "S", " \tK", "<missing>"}}) {
    Open(file);
    EXPECT_EQ(Get(section, key), value) << file;
    EXPECT_EQ(store->Raw()->dirty, 0);
  }
}

TEST_F(IniStoreTest, SavingKeepsInsertionOrderAndReopensSections) {
  Open(std::nullopt, "out.cfg.txt");
  store->Set("", "orphan", "dropped");
  store->Set("A", "one", "1");
  store->Set("B", "two", "2");
  store->Set("A", "three", "3");  // A is not the last section started: opened again
  store->Set("A", "one", "uno");  // replacing keeps the place
  store->Set("B", "empty", "");
  EXPECT_EQ(IniFileExists(iniPath.c_str()), 1);  // not before it is saved
  store.reset();
  EXPECT_EQ(platform::ReadWholeFile(iniPath).value_or(""),
            "[A]\r\none=uno\r\nthree=3\r\n[B]\r\ntwo=2\r\nempty=\r\n[A]\r\nthree=3\r\n[B]\r\nempty=\r\n");
}

TEST_F(IniStoreTest, OverlongValuesAreCutInTheStoreAndCompositeKeysAreBounded) {
  Open("[S]\nK=abcdefghijklmnopqrst\n");
  EXPECT_EQ(Get("S", "K", 10), "abcdefg");
  EXPECT_EQ(Get("S", "K", 8), "abcdefg");  // fits exactly
  EXPECT_EQ(Get("S", "K", 7), "abcd");
  std::string section(200, 's');
  EXPECT_EQ(store->Set(section, std::string(54, 'k'), "v"), 0);  // 254 characters: fits
  EXPECT_EQ(store->Set(section, std::string(55, 'k'), "v"), -1);
  // The zero between section and key keeps "ab"+"c" apart from "a"+"bc".
  store->Set("ab", "c", "1");
  EXPECT_EQ(Get("a", "bc"), "<missing>");
}

TEST_F(IniStoreTest, ManyEntriesSpillIntoNewArenaBlocks) {
  Open(std::nullopt, "many.cfg.txt");
  for (int i = 0; i < 3000; ++i)
    store->Set("S" + std::to_string(i % 7), "key" + std::to_string(i), std::to_string(i));
  store.reset();
  Reopen();
  for (int i = 0; i < 3000; i += 97)
    EXPECT_EQ(Get("S" + std::to_string(i % 7), "key" + std::to_string(i)), std::to_string(i));
}

TEST_F(ProgramOptionsTest, LoadRepairsTheKeyAndSaveKeepsOtherKeys) {
  // A fresh folder gets the key with the four options, zero and in their order.
  ASSERT_EQ(LoadProgramOptions(state), 0);
  EXPECT_EQ(Stored(), std::vector<uint32_t>(4, 0));
  std::string text = platform::ReadWholeFile(registry).value_or("");
  EXPECT_LT(text.find("DEFAULTcfg"), text.find("MULTIinst"));
  EXPECT_LT(text.find("AcquireHWbuttons"), text.find("DisableIcon"));
  EXPECT_TRUE(view.Boxes().empty());
  // Unreadable (a digit that is none, nine digits) and missing values are repaired with the default.
  WriteRegistry(
      "DEFAULTcfg=dword:0000000g\nMULTIinst=dword:000000001\nAcquireHWbuttons=dword:00000001\ngarbage "
      "line\n");
  ASSERT_EQ(LoadProgramOptions(state), 0);
  EXPECT_EQ(state.ProgramOptions.AcquireHWbuttons, 1u);
  EXPECT_EQ(Stored(), (std::vector<uint32_t>{1, 0, 0, 0}));

  // Saving keeps other keys. (That saved options load again:
  // Dialogs.ProgramOptionsShowTheOptionsAndTheLayoutOkSavesThemAndCancelDoesNot.)
  std::ofstream(registry) << "[HKEY_CURRENT_USER\\Other]\nKeep=dword:0000002a\n";
  ASSERT_EQ(SaveProgramOptions(state), 0);
  EXPECT_NE(platform::ReadWholeFile(registry).value_or("").find("Keep=dword:0000002a"), std::string::npos);
}

// The release of this program, another one and a key without one, each with
// the box the program shows: StartUp.TheVersionWarningAndTheRecordedRelease.
TEST_F(ProgramOptionsTest, AReleaseWithoutItsMinorIsReadAsNoneAndNumbersShowSigned) {
  WriteRegistry("MajorVersion=dword:00000002\n");
  EXPECT_EQ(IsRegisteredVersionCurrent(state), 1);
  EXPECT_EQ(std::pair(state.ProgramOptions.MajorVersion, state.ProgramOptions.MinorVersion),
            std::pair(0u, 0u));
  EXPECT_EQ(FormatVersion(0xFFFFFFFF, 5), u"-1.5");
}

TEST_F(ProgramOptionsTest, AKeyThatCannotBeOpenedIsReportedAndChangesNothing) {
  // A registry file below a plain file can never be created.
  std::ofstream(folder.Path() + "/plain") << "x";
  state.RegistryFile = folder.Path() + "/plain/registry.txt";
  state.ProgramOptions.MULTIinst = 1;
  EXPECT_EQ(LoadProgramOptions(state), 1);
  EXPECT_EQ(SaveProgramOptions(state), 1);
  EXPECT_EQ(IsRegisteredVersionCurrent(state), 1);
  EXPECT_EQ(state.ProgramOptions.MULTIinst, 1u);
  auto boxes = view.Boxes();
  ASSERT_EQ(boxes.size(), 3u);
  const std::string box = testing::Narrow(boxes[0].title + u": " + boxes[0].text);
  EXPECT_TRUE(
      box.starts_with("Error...: Error opening Program Options registry key: "
                      "SOFTWARE\\Tarnwell\\Wavetrace Pro: Error code=20 (0x14)"))
      << box;
}

// Every persisted setting away from its default, as the program saves it.
const std::string kEverything =
    "[Wavetrace Pro]\r\nConfigFile=1\r\nVersion=2.71.3089 (11.2008)\r\nOS=2.71.3089 (11.2008)\r\n"
    "[COMMs]\r\nCOM0Ser=0\r\nCOM1Ser=1\r\nCOM2Ser=0\r\nCOM3Ser=1\r\nCOM4Ser=0\r\nCOM5Ser=1\r\n"
    "COM6Ser=0\r\nCOM7Ser=1\r\nCOM8Ser=0\r\nCOM9Ser=1\r\nRawIrPort=COM3:\r\n"
    "FriendlyName_01=Port \xe9 1\r\nFriendlyName_02=Port \xe9 2\r\nFriendlyName_03=Port \xe9 3\r\n"
    "FriendlyName_04=Port \xe9 4\r\nFriendlyName_05=Port \xe9 5\r\nFriendlyName_06=Port \xe9 6\r\n"
    "FriendlyName_07=Port \xe9 7\r\nFriendlyName_08=Port \xe9 8\r\nFriendlyName_09=Port \xe9 9\r\n"
    "SelectedPort=COM5:\r\nSelectedBaud=4000000000\r\nSelectedDataBits=7\r\nParity=Mark\r\n"
    "StopBits=1.5\r\nXON=1\r\nRTS=1\r\nDTR=1\r\nCustomBauds_count=1\r\nCustomBaud_01=250000\r\n"
    "ReopenPort=0\r\n"
    "[DATA_h]\r\nmodeASCII=0\r\nmodeBINARY=1\r\nBase=8\r\nBinBrackets=1\r\nNonChars=1\r\n"
    "FilterNP=1\r\nTxRepeatNum=3000000000\r\nTxRepeatDelay=250\r\nRxDelayReadThread=9999\r\n"
    "TxClrRCVEtxt=1\r\nPauseRxDisplay=1\r\nRxFullScreen=1\r\nShowClassNames=1\r\n"
    "RxBacklightEvent=1\r\nTxSendWholeFile=1\r\n[TCP_relay]\r\nIP_01=10\r\nIP_02=1\r\nIP_03=2\r\n"
    "IP_04=254\r\nEnableTCPIPrelay=1\r\nRelayTCP_RemotePort=65535\r\nRelay_SocketType_TCP=0\r\n"
    "Relay_SocketType_UDP=1\r\n[WINDOW_relay]\r\nTRANSLATE_KEYBOARD_CODES=1\r\n"
    "[POSTAMBLE]\r\nwcszPostambleKeysRX=[0D][0A]\r\nPostambleLengthRX=2\r\n"
    "wcszPostambleKeysTX=[0D]\r\nPostambleLengthTX=1\r\n[SnR]\r\nSnR_count=2\r\nDisableSnR=1\r\n"
    "[SnR_01]\r\nwcszSearchFor=$GP\r\nwcszReplaceWith=[0D][0A]$GP\r\nRall=1\r\nRfo=0\r\nRlo=0\r\n"
    "[SnR_02]\r\nwcszSearchFor=OK\r\nwcszReplaceWith={TIME_STAMP} OK\r\nRall=0\r\nRfo=0\r\nRlo=1\r\n"
    "[DataLog]\r\nwszLogDir=/home/me/logs/\r\nwszLogFile=run.log.txt\r\nLOGtimestamp=1\r\n"
    "LOGtransmitdata=1\r\nLOGoverwrite=1\r\nDateFormat=3\r\nTimeFormat=7\r\nRecordALL=0\r\n"
    "RecordInterval=60\r\nRecordDuration=5\r\nDelimiter=;\r\nTSremoveCRLF=1\r\nNeverDropLogData=0\r\n"
    "[SentHistory]\r\nLastSelection=2\r\nSentHistoryCount=3\r\n[SentHistory_00]\r\nData=first\r\n"
    "[SentHistory_01]\r\nData=second [0D]\r\n[SentHistory_02]\r\nData=third\r\n"
    "[HardwareButton_01]\r\nData=AT[0D]\r\n[HardwareButton_02]\r\nData=[File::/tmp/x.bin]\r\n"
    "[SoftwareButton_01]\r\nData=ATZ\r\nCaption=Reset\r\n[SoftwareButton_02]\r\nData={PLAY}\r\n"
    "Caption=Go\r\n";

// Saved again as it was written, so every key was read and is written in the
// file's layout (sections in order, history numbered from 00, friendly names
// from 01, the code page rather than UTF-8), and loaded again to equal values.
TEST_F(ConfigFileTest, EverySettingSurvivesTheRoundTripInTheFileLayout) {
  ASSERT_EQ(ConfigLoad(state, Write("in.cfg.txt", kEverything)), 0);
  std::u16string path = Path("all.cfg.txt");
  ASSERT_EQ(ConfigSave(state, path), 0);
  EXPECT_EQ(state.Screen.Status(), u"Saved config file [" + path + u"]");
  EXPECT_EQ(platform::ReadWholeFile(core::WideToUtf8(path)).value_or(""), kEverything);
  AppState loaded;
  ASSERT_EQ(ConfigLoad(loaded, path), 0);
  EXPECT_EQ(loaded.Screen.Status(), u"Loaded config file [" + path + u"]");
  EXPECT_TRUE(loaded.Port == state.Port && loaded.Data == state.Data && loaded.Log == state.Log);
  EXPECT_EQ(loaded.Screen.TxHistory(), state.Screen.TxHistory());
  EXPECT_EQ(loaded.Screen.TxSelection(), 2);
  EXPECT_TRUE(loaded.Snapshot.Port == state.Port && loaded.Snapshot.Data == state.Data);
}

TEST_F(ConfigFileTest, RefusedFilesChangeNothing) {
  const std::string tail = "\r\n[DATA_h]\r\nBase=2\r\n" + std::string(64, ';');
  using Case = std::pair<std::string, std::u16string>;  // the file, the status after its path
  AppState s;
  ASSERT_EQ(ConfigLoad(state, Write("all.cfg.txt", kEverything)), 0);
  ASSERT_EQ(ConfigLoad(s, Path("all.cfg.txt")), 0);
  for (const auto& [contents, status] : {Case{std::string(63, 'x'), u"].  Size too small."},
                                         Case{"[Wavetrace Pro]\r\nConfigFile=2" + tail, u"]"}}) {
    std::u16string path = Write("refused.cfg.txt", contents);
    EXPECT_EQ(ConfigLoad(s, path), 1) << contents;
    EXPECT_EQ(s.Screen.Status(), u"Invalid config file [" + path + status) << contents;
    EXPECT_TRUE(s.Port == state.Port && s.Data == state.Data && s.Log == state.Log) << contents;
  }
  // A missing file: 1 and no message.
  state.Screen.SetStatus(u"unchanged");
  EXPECT_EQ(ConfigLoad(state, Path("missing.cfg.txt")), 1);
  EXPECT_EQ(state.Screen.Status(), u"unchanged");
  // 64 bytes with the signature load.
  std::string exact = "[Wavetrace Pro]\r\nConfigFile=1\r\n[DATA_h]\r\nBase=2\r\n";
  exact += std::string(64 - exact.size() - 2, ';') + "\r\n";
  EXPECT_EQ(ConfigLoad(state, Write("exact.cfg.txt", exact)), 0);
  EXPECT_EQ(state.Data.Base, 2);
}

TEST_F(ConfigFileTest, AHandwrittenFileLoadsWithItsQuirks) {
  auto s = Load(
      "[COMMs]\r\nCOM3Ser=0\r\nCOM4Ser=1\r\nFriendlyName_01=My GPS\r\nFriendlyName_02=Saved name\r\n"
      "SelectedPort=COM4:\r\nSelectedBaud=115200\r\nCustomBauds_count=3\r\nCustomBaud_01=31250\r\n"
      "CustomBaud_02=62500\r\n[DATA_h]\r\nBase=  10\r\nmodeASCII=7\r\nTxRepeatNum=12abc\r\n",
      [](AppState& fresh) {
        fresh.Port.PortPresent[3] = 1;                     // set by discovery
        fresh.Port.FriendlyName[2] = u"USB Serial Cable";  // a real driver name
      });
  const auto& p = s->Port;
  EXPECT_EQ(p.PortPresent[3] + p.PortPresent[4], 2);  // 3 is not cleared
  EXPECT_EQ(std::pair(p.FriendlyName[1], p.FriendlyName[2]), std::pair(u"My GPS"s, u"USB Serial Cable"s));
  EXPECT_EQ(std::tuple(p.SelectedPort, p.SelectedBaud, p.CustomBauds_count, p.CustomBaud_01),
            std::tuple(u"COM4:"s, 115200u, 3, 31250u));
  EXPECT_EQ(std::tuple(s->Data.Base, s->Data.modeASCII, s->Data.TxRepeatNum), std::tuple(10, 1, 12u));
  // Missing keys are counted (dozens here, so two digits either way).
  EXPECT_EQ(s->Screen.Status(), u"Loaded config file [" + Path("q.cfg.txt") + u"]*\r\n(LW=" +
                                    core::Utf8ToWide(std::to_string(s->LoadWarnings)) + u")");
}

TEST_F(ConfigFileTest, PostambleRulesAndDelimiterQuirks) {
  auto data = [&](const std::string& body) { return Load(body)->Data; };
  // The length always comes from parsing the text; without the text it is not read.
  const std::string postamble = "[POSTAMBLE]\r\nPostambleLengthRX=9\r\n";
  EXPECT_EQ(data(postamble + "wcszPostambleKeysRX=[0D][00]\r\n").PostambleLengthRX, 2);
  EXPECT_EQ(data(postamble).PostambleLengthRX, 0);
  // A count larger than the two rules the table holds.
  EXPECT_EQ(data("[SnR]\r\nSnR_count=7\r\n").SnR_count, 2);
  // The first character decides, letters in upper case only.
  using Delimiter = std::pair<std::string, uint8_t>;
  for (const auto& [text, delimiter] : {Delimiter{"T", '\t'}, Delimiter{"semi", ','}, Delimiter{"Semi", ' '}})
    EXPECT_EQ(Load("[DataLog]\r\nDelimiter=" + text + "\r\n")->Log.Delimiter[0], delimiter) << text;
  // A delimiter outside the four leaves no line at all.
  state.Log.Delimiter = {'|', 0};
  ASSERT_EQ(ConfigSave(state, Path("d.cfg.txt")), 0);
  EXPECT_EQ(platform::ReadWholeFile(folder.Path() + "/d.cfg.txt").value_or("").find("Delimiter"),
            std::string::npos);
}

TEST_F(ConfigFileTest, HistoryLoadsBoundedShowsItsSelectionAndResetsTheCount) {
  std::string entries;
  for (int n = 0; n < 5; ++n)
    entries += "[SentHistory_0" + std::to_string(n) + "]\r\nData=AT" + std::to_string(n) + "[0D][0A]\r\n";
  // The key's lines, the entries kept, the field shown. The drop-down holds
  // three: larger counts, however large, read three.
  using Case = std::tuple<std::string, size_t, std::u16string>;
  for (const auto& [sentHistory, kept, field] :
       {Case{"LastSelection=1\r\nSentHistoryCount=3\r\n", 3, u"AT1[0D][0A]"},
        Case{"LastSelection=-1\r\nSentHistoryCount=2\r\n", 2, u""},
        Case{"LastSelection=2\r\nSentHistoryCount=2147483647\r\n", 3, u"AT2[0D][0A]"},
        Case{"LastSelection=0\r\nSentHistoryCount=-4\r\n", 0, u""}}) {
    auto s = Load("[SentHistory]\r\n" + sentHistory + entries, [](AppState& fresh) {
      fresh.Screen.SetTxText(u"typed before");
      fresh.SentHistoryCount = 2;
    });
    EXPECT_EQ(s->Screen.TxHistory().size(), kept) << sentHistory;
    EXPECT_EQ(s->Screen.TxText(), field) << sentHistory;
    EXPECT_EQ(s->SentHistoryCount, 0) << sentHistory;
  }
}

TEST_F(ConfigFileTest, AFileThatCannotBeWrittenIsReported) {
  EXPECT_EQ(ConfigSave(state, Path("no/such/folder.cfg.txt")), 1);
  EXPECT_TRUE(state.Screen.Status().starts_with(u"Error writing config file ["));
  EXPECT_EQ(ConfigSave(state, u""), 1);
  ASSERT_EQ(view.Boxes().size(), 1u);
  EXPECT_TRUE(view.Boxes()[0].text.starts_with(u"Config Error: converting Unicode to ASCII."));
}

// The Config menu on the logical main window.
TEST_F(ConfigFileTest, ConfigMenuCommands) {
  state.ConfigFolder = core::Utf8ToWide(folder.Path());
  state.CurrentConfigPath = Path("current.cfg.txt");
  state.Data.Base = 2;
  auto command = [&](int number, int64_t from = 0) {
    app::MainWindowProc(state, core::MakeMessage(core::kWmCommand, number, from));
  };
  command(core::cmd::kConfigSave);
  EXPECT_TRUE(platform::FileExists(folder.Path() + "/current.cfg.txt"));
  // SaveAs adds the extension to a bare name and makes the file current once saved.
  std::filesystem::create_directories(folder.Path() + "/sub");
  view.answer = Path("sub/other");
  command(core::cmd::kConfigSaveAs);
  EXPECT_EQ(state.CurrentConfigPath, Path("sub/other.cfg.txt"));
  command(core::cmd::kConfigSetDefault);
  EXPECT_TRUE(platform::FileExists(folder.Path() + "/Default.cfg.txt"));

  state.Data.Base = 16;
  state.CurrentConfigPath = Path("current.cfg.txt");
  view.answer = Path("sub/other.cfg.txt");
  command(core::cmd::kConfigLoad);
  EXPECT_EQ(state.Data.Base, 2);
  EXPECT_EQ(state.CurrentConfigPath, view.answer);
  EXPECT_TRUE(state.Screen.IsMenuItemChecked(core::cmd::kBinary));

  // Cancelled dialogs change nothing; a load sent by the program itself asks nothing.
  view.answer.clear();
  state.Data.Base = 10;
  command(core::cmd::kConfigLoad);
  command(core::cmd::kConfigSaveAs);
  EXPECT_EQ(std::pair(state.Data.Base, state.CurrentConfigPath), std::pair(10, Path("sub/other.cfg.txt")));
  command(core::cmd::kConfigLoad, core::kFromMainWindow);
  EXPECT_TRUE(state.Screen.IsMenuItemChecked(core::cmd::kDecimal));
  // A save dialog starts at the current file's name, in the folder where the last dialog ended.
  EXPECT_EQ(view.asked, (std::vector{u"save " + Path("current.cfg.txt"), u"load " + Path("sub"),
                                     u"load " + Path("sub"), u"save " + Path("sub/other.cfg.txt")}));
}

}  // namespace
}  // namespace wavetrace::config
