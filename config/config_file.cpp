#include "config/config_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "config/ini_store.h"
#include "core/code_page.h"
#include "core/prepared_settings.h"
#include "core/reporting.h"
#include "core/version.h"
#include "platform/clock.h"
#include "platform/files.h"

namespace wavetrace::config {
namespace {

using core::AppState;

constexpr char kSignature[] = "Wavetrace Pro";
constexpr int kValueBuffer = 512;

std::string Numbered(const char* format, int n) {
  char text[64];
  std::snprintf(text, sizeof text, format, n);
  return text;
}

std::string Narrow(const std::u16string& text) {
  return core::WideToBytes(text);
}
std::u16string Wide(const std::string& text) {
  return core::BytesToWide(text);
}

// A path for the file system, or empty when it cannot be one.
std::string FilePath(const std::u16string& path) {
  if (path.empty() || path.find(u'\0') != std::u16string::npos) return {};
  return core::WideToUtf8(path);
}

// The writing side of a section walk.
class Writer {
 public:
  explicit Writer(IniStore& ini) : ini_(ini) {}
  void Section(std::string name) { section_ = std::move(name); }
  void Int(const char* key, int32_t value, bool = true) { Put(key, std::to_string(value)); }
  void UInt(const char* key, uint32_t value, bool = true) { Put(key, std::to_string(value)); }
  void Flag(const char* key, uint8_t value, bool = true) { Put(key, std::to_string(value)); }
  void Byte(const char* key, uint8_t value, bool = true) { Put(key, std::to_string(value)); }
  bool Text(const char* key, const std::u16string& value, bool = true) {
    Put(key, Narrow(value));
    return true;
  }
  void Put(const std::string& key, const std::string& value) { ini_.Set(section_, key, value); }
  void Delimiter(const std::array<uint8_t, 2>& delimiter);
  // A count that heads a list: written as it stands; the list follows.
  bool Count(const char* key, int32_t count, int32_t = 0, int32_t = 0) {
    Int(key, count);
    return true;
  }
  // What only a load does (resets and rebuilds) is skipped when saving.
  template <typename Fn>
  void OnLoad(Fn&&) {}
  void PresentFlag(const char* key, uint8_t present) { Flag(key, present); }
  void FriendlyName(const char* key, const std::u16string& name) { Text(key, name); }
  void Postamble(const char* keysKey, const char* lengthKey, const std::u16string& keys,
                 const std::array<uint8_t, core::DataSettings::kPostambleChars>&, int32_t length) {
    Text(keysKey, keys);
    Int(lengthKey, length);
  }

 private:
  IniStore& ini_;
  std::string section_;
};

// The reading side: a missing key leaves the setting and may count a warning.
class Reader {
 public:
  Reader(IniStore& ini, int32_t& warnings) : ini_(ini), warnings_(warnings) {}
  void Section(std::string name) { section_ = std::move(name); }
  bool Get(const std::string& key, std::string& value, bool counts) {
    if (ini_.Get(section_, key, value, kValueBuffer)) return true;
    if (counts) ++warnings_;
    return false;
  }
  void Int(const char* key, int32_t& value, bool counts = true) {
    std::string text;
    if (Get(key, text, counts)) value = std::atoi(text.c_str());
  }
  void UInt(const char* key, uint32_t& value, bool counts = true) {
    std::string text;
    if (Get(key, text, counts)) value = static_cast<uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
  }
  void Flag(const char* key, uint8_t& value, bool counts = true) {
    std::string text;
    if (Get(key, text, counts)) value = std::atoi(text.c_str()) != 0 ? 1 : 0;
  }
  void Byte(const char* key, uint8_t& value, bool counts = true) {
    std::string text;
    if (Get(key, text, counts)) value = static_cast<uint8_t>(std::atoi(text.c_str()));
  }
  bool Text(const char* key, std::u16string& value, bool counts = true) {
    std::string text;
    if (!Get(key, text, counts)) return false;
    value = Wide(text);
    return true;
  }
  void Delimiter(std::array<uint8_t, 2>& delimiter);
  // A count that heads a list, held to what the list can hold. False when the
  // key is missing: the list is then left as it is.
  bool Count(const char* key, int32_t& count, int32_t low, int32_t high) {
    std::string text;
    if (!Get(key, text, true)) return false;
    count = std::clamp(std::atoi(text.c_str()), low, high);
    return true;
  }
  template <typename Fn>
  void OnLoad(Fn&& fn) {
    fn();
  }
  // Loading never clears a flag that discovery set.
  void PresentFlag(const char* key, uint8_t& present) {
    if (present) return;
    Flag(key, present);
  }
  // A real driver name is kept; only a generic one takes the saved name.
  void FriendlyName(const char* key, std::u16string& current) {
    std::string text;
    if (!Get(key, text, true)) return;
    if (current.find(u"Serial connection using") != std::u16string::npos) current = Wide(text);
  }
  // A postamble's keys text is stored; its length always comes from parsing it.
  void Postamble(const char* keysKey, const char* lengthKey, std::u16string& keys,
                 std::array<uint8_t, core::DataSettings::kPostambleChars>& bytes, int32_t& length) {
    std::string text;
    if (!Get(keysKey, text, true)) return;
    keys = Wide(text);
    Int(lengthKey, length, false);
    bytes.fill(0);
    length = core::ParsePostambleText(keys, core::kPostambleLoadBytes, bytes);
  }

 private:
  IniStore& ini_;
  int32_t& warnings_;
  std::string section_;
};

// Sections whose keys are read and written alike, in file order.
template <typename Io, typename Data>
void WalkDataSections(Io& io, Data& data) {
  io.Section("DATA_h");
  io.Flag("modeASCII", data.modeASCII);
  io.Flag("modeBINARY", data.modeBINARY);
  io.Int("Base", data.Base);
  io.Int("BinBrackets", data.BinBrackets);
  io.Int("NonChars", data.NonChars);
  io.Int("FilterNP", data.FilterNP);
  io.UInt("TxRepeatNum", data.TxRepeatNum);
  io.UInt("TxRepeatDelay", data.TxRepeatDelay);
  io.UInt("RxDelayReadThread", data.RxDelayReadThread, false);
  io.Int("TxClrRCVEtxt", data.TxClrRCVEtxt);
  io.Flag("PauseRxDisplay", data.PauseRxDisplay);
  io.Flag("RxFullScreen", data.RxFullScreen);
  io.Int("ShowClassNames", data.ShowClassNames);
  io.Flag("RxBacklightEvent", data.RxBacklightEvent);
  // Not in older files: missing is no warning.
  io.Int("TxSendWholeFile", data.TxSendWholeFile, false);

  io.Section("TCP_relay");
  for (int i = 0; i < 4; ++i)
    io.Text(Numbered("IP_%02d", i + 1).c_str(), data.IP[static_cast<size_t>(i)], false);
  io.Int("EnableTCPIPrelay", data.EnableTCPIPrelay);
  io.Int("RelayTCP_RemotePort", data.RelayTCP_RemotePort);
  io.Int("Relay_SocketType_TCP", data.Relay_SocketType_TCP);
  io.Int("Relay_SocketType_UDP", data.Relay_SocketType_UDP);

  io.Section("WINDOW_relay");
  io.Int("TRANSLATE_KEYBOARD_CODES", data.TRANSLATE_KEYBOARD_CODES, false);
}

template <typename Io, typename Data>
void WalkRule(Io& io, Data& rule) {
  io.Text("wcszSearchFor", rule.wcszSearchFor, false);
  io.Text("wcszReplaceWith", rule.wcszReplaceWith, false);
  io.Int("Rall", rule.Rall, false);
  io.Int("Rfo", rule.Rfo, false);
  io.Int("Rlo", rule.Rlo, false);
}

template <typename Io, typename Log>
void WalkLogSection(Io& io, Log& log) {
  io.Section("DataLog");
  io.Text("wszLogDir", log.wszLogDir);
  io.Text("wszLogFile", log.wszLogFile);
  io.Int("LOGtimestamp", log.LOGtimestamp);
  io.Int("LOGtransmitdata", log.LOGtransmitdata);
  io.Int("LOGoverwrite", log.LOGoverwrite);
  io.Int("DateFormat", log.DateFormat, false);
  io.Int("TimeFormat", log.TimeFormat, false);
  io.Int("RecordALL", log.RecordALL, false);
  io.Int("RecordInterval", log.RecordInterval, false);
  io.Int("RecordDuration", log.RecordDuration, false);
  io.Delimiter(log.Delimiter);
  io.Int("TSremoveCRLF", log.TSremoveCRLF, false);
  io.Int("NeverDropLogData", log.NeverDropLogData, false);
}

// The delimiter is stored as a letter for the blank and the tab.
constexpr std::pair<uint8_t, char> kDelimiters[] = {{',', ','}, {'\t', 'T'}, {';', ';'}, {' ', 'S'}};

template <typename Io, typename Data>
void WalkButtonSections(Io& io, Data& data) {
  for (int n = 1; n <= 2; ++n) {
    io.Section(Numbered("HardwareButton_%02d", n));
    io.Text("Data", data.HardwareButtonData[static_cast<size_t>(n - 1)]);
  }
  for (int n = 1; n <= 2; ++n) {
    io.Section(Numbered("SoftwareButton_%02d", n));
    io.Text("Data", data.SoftwareButtonData[static_cast<size_t>(n - 1)]);
    io.Text("Caption", data.SoftwareButtonCaption[static_cast<size_t>(n - 1)]);
  }
}

void Writer::Delimiter(const std::array<uint8_t, 2>& delimiter) {
  for (auto [byte, letter] : kDelimiters) {
    if (delimiter[0] == byte) Put("Delimiter", std::string(1, letter));
  }
}

void Reader::Delimiter(std::array<uint8_t, 2>& delimiter) {
  std::string text;
  if (!Get("Delimiter", text, false) || text.empty()) return;
  for (auto [byte, letter] : kDelimiters) {
    if (text[0] == letter) delimiter = {byte, 0};
  }
}

template <typename Io, typename Data>
void WalkPostambleAndRules(Io& io, Data& data) {
  io.Section("POSTAMBLE");
  io.Postamble("wcszPostambleKeysRX", "PostambleLengthRX", data.wcszPostambleKeysRX, data.PostambleBytesRX,
               data.PostambleLengthRX);
  io.Postamble("wcszPostambleKeysTX", "PostambleLengthTX", data.wcszPostambleKeysTX, data.PostambleBytesTX,
               data.PostambleLengthTX);
  io.Section("SnR");
  // The table has two rules: a larger count in a file is held to that.
  if (!io.Count("SnR_count", data.SnR_count, 0, core::DataSettings::kMaxSnRRules)) return;
  io.OnLoad([&] {
    for (auto& rule : data.SnR) rule = core::SnRRule{};
    data.DisableSnR = 0;
  });
  io.Int("DisableSnR", data.DisableSnR, false);
  for (int n = 1; n <= data.SnR_count && n <= core::DataSettings::kMaxSnRRules; ++n) {
    io.Section(Numbered("SnR_%02d", n));
    WalkRule(io, data.SnR[static_cast<size_t>(n)]);
  }
  io.OnLoad([&] { core::PrepareRules(data); });
}

std::u16string VersionText() {
  return std::u16string(core::kRelease) + u"." + core::kBuild + u" " + core::kReleaseDate;
}

template <typename Io, typename Port>
void WalkPortSection(Io& io, Port& port) {
  io.Section("COMMs");
  for (int n = 0; n <= 9; ++n)
    io.PresentFlag(Numbered("COM%dSer", n).c_str(), port.PortPresent[static_cast<size_t>(n)]);
  io.Text("RawIrPort", port.RawIrPort);
  for (int n = 1; n <= 9; ++n)
    io.FriendlyName(Numbered("FriendlyName_%02d", n).c_str(), port.FriendlyName[static_cast<size_t>(n)]);
  io.Text("SelectedPort", port.SelectedPort);
  io.UInt("SelectedBaud", port.SelectedBaud);
  io.Byte("SelectedDataBits", port.SelectedDataBits);
  io.Text("Parity", port.Parity);
  io.Text("StopBits", port.StopBits);
  io.Int("XON", port.XON);
  io.Int("RTS", port.RTS);
  io.Int("DTR", port.DTR);
  // There is one custom rate slot whatever the count says.
  if (io.Count("CustomBauds_count", port.CustomBauds_count, std::numeric_limits<int32_t>::min(),
               std::numeric_limits<int32_t>::max()))
    io.UInt("CustomBaud_01", port.CustomBaud_01, false);
  io.Int("ReopenPort", port.ReopenPort, false);
}

// The transmit field's drop-down as the file keeps it.
struct SentHistory {
  int32_t LastSelection = -1;
  int32_t Count = 0;
  std::array<std::u16string, core::AppState::kSentHistoryKept> Entries;
  std::array<bool, core::AppState::kSentHistoryKept> Found{};
};

// False when the file has no count: the drop-down is then left as it is.
template <typename Io>
bool WalkHistory(Io& io, SentHistory& history) {
  io.Section("SentHistory");
  io.Int("LastSelection", history.LastSelection, false);
  // The drop-down keeps three texts: a larger count in a file is held to that.
  if (!io.Count("SentHistoryCount", history.Count, 0, core::AppState::kSentHistoryKept)) return false;
  for (size_t n = 0; n < static_cast<size_t>(history.Count); ++n) {
    io.Section(Numbered("SentHistory_%02d", static_cast<int>(n)));
    history.Found[n] = io.Text("Data", history.Entries[n], false);
  }
  return true;
}

void SaveHistory(Writer& w, const core::MainScreen& screen) {
  SentHistory history;
  auto entries = screen.TxHistory();
  history.LastSelection = screen.TxSelection();
  history.Count = static_cast<int32_t>(std::min(entries.size(), history.Entries.size()));
  std::copy_n(entries.begin(), history.Count, history.Entries.begin());
  WalkHistory(w, history);
}

void LoadHistory(Reader& r, AppState& state) {
  SentHistory history;
  if (!WalkHistory(r, history)) return;
  core::MainScreen& screen = state.Screen;
  screen.SetTxText(u"");
  // The transmit path counts its own additions from here.
  state.SentHistoryCount = 0;
  std::vector<std::u16string> entries;
  for (size_t n = 0; n < static_cast<size_t>(history.Count); ++n) {
    if (history.Found[n]) entries.push_back(history.Entries[n]);
  }
  screen.SetTxHistory(std::move(entries));
  if (history.Count != 0) screen.SetTxSelection(history.LastSelection);
}

std::u16string Bracketed(const char16_t* head, const std::u16string& path, const char16_t* tail = u"]") {
  return std::u16string(head) + u" [" + path + tail;
}

}  // namespace

void TakeSettingsSnapshot(AppState& state) {
  state.Snapshot.Port = state.Port;
  state.Snapshot.Data = state.Data;
}

int ConfigSave(AppState& state, const std::u16string& path) {
  std::string file = FilePath(path);
  if (file.empty()) {
    core::ShowErrorBox(state, u"Config Error: converting Unicode to ASCII.", {});
    return 1;
  }
  IniStore ini;
  ini.Open(file, true);
  Writer w(ini);
  w.Section(kSignature);
  w.Put("ConfigFile", "1");
  w.Text("Version", VersionText());
  // The OS value has always carried the version text on this system.
  w.Text("OS", VersionText());
  WalkPortSection(w, state.Port);
  WalkDataSections(w, state.Data);
  WalkPostambleAndRules(w, state.Data);
  WalkLogSection(w, state.Log);
  SaveHistory(w, state.Screen);
  WalkButtonSections(w, state.Data);
  if (platform::SysResult written; ini.Close(written) != 0) {
    // Unlike a silent "Saved", a file that could not be written is said so.
    core::ShowStatusError(state, Bracketed(u"Error writing config file", path), written);
    return 1;
  }
  core::ShowStatus(state, Bracketed(u"Saved config file", path));
  return 0;
}

int ConfigLoad(AppState& state, const std::u16string& path) {
  platform::SysResult failure;
  return ConfigLoad(state, path, failure);
}

int ConfigLoad(AppState& state, const std::u16string& path, platform::SysResult& failure) {
  failure = {};
  std::string file = FilePath(path);
  if (file.empty()) {
    core::ShowErrorBox(state, u"Config Load Error: converting Unicode to ASCII.", {});
    return 1;
  }
  uint64_t size = 0;
  if (failure = platform::FileSize(file, size); !failure) return 1;
  if (IniFileExists(file.c_str()) != 0) {
    failure = {0, "fopen"};
    return 1;
  }
  if (size < kMinimumConfigBytes) {
    core::ShowStatus(state, Bracketed(u"Invalid config file", path, u"].  Size too small."));
    return 1;
  }
  // A card that was just written may need a moment: only the second look counts.
  platform::SleepMs(100);
  IniStore ini;
  ini.Open(file, false);
  platform::SleepMs(100);
  if (!IniStore::Exists(file)) return 1;
  return ConfigLoadStore(state, ini, path);
}

int ConfigLoadStore(AppState& state, IniStore& ini, const std::u16string& path) {
  std::string signature;
  if (!ini.Get(kSignature, "ConfigFile", signature, kValueBuffer) || std::atoi(signature.c_str()) != 1) {
    core::ShowStatus(state, Bracketed(u"Invalid config file", path));
    return 1;
  }

  state.LoadWarnings = 0;
  Reader r(ini, state.LoadWarnings);
  WalkPortSection(r, state.Port);
  WalkDataSections(r, state.Data);
  WalkPostambleAndRules(r, state.Data);
  WalkLogSection(r, state.Log);
  LoadHistory(r, state);
  WalkButtonSections(r, state.Data);
  TakeSettingsSnapshot(state);
  core::PublishSettings(state);

  if (state.LoadWarnings == 0) {
    core::ShowStatus(state, Bracketed(u"Loaded config file", path));
  } else {
    char count[16];
    std::snprintf(count, sizeof count, "%02d", state.LoadWarnings);
    core::ShowStatus(state,
                     Bracketed(u"Loaded config file", path, u"]*\r\n(LW=") + core::Utf8ToWide(count) + u")");
  }
  return 0;
}

}  // namespace wavetrace::config
