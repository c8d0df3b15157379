#include "config/program_options.h"

#include <array>
#include <cstdio>

#include "config/registry_store.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "core/version.h"
#include "platform/line_setting_text.h"

namespace wavetrace::config {
namespace {

using Option = uint32_t core::ProgramOptionsKey::*;
struct NamedOption {
  const char* name;
  Option field;
};
// Written in this order.
constexpr std::array<NamedOption, 4> kOptions = {{
    {"DEFAULTcfg", &core::ProgramOptionsKey::DEFAULTcfg},
    {"MULTIinst", &core::ProgramOptionsKey::MULTIinst},
    {"AcquireHWbuttons", &core::ProgramOptionsKey::AcquireHWbuttons},
    {"DisableIcon", &core::ProgramOptionsKey::DisableIcon},
}};

std::string KeyPath(const core::ProgramOptionsKey& record) {
  return record.Root + "\\" + core::WideToUtf8(record.Path);
}

}  // namespace

std::u16string FormatVersion(uint32_t major, uint32_t minor) {
  // The registry's 32-bit values are shown as signed numbers.
  char text[32] = {};
  std::snprintf(text, sizeof text, "%ld.%ld", static_cast<long>(static_cast<int32_t>(major)),
                static_cast<long>(static_cast<int32_t>(minor)));
  return core::Utf8ToWide(text);
}

int OpenProgramOptionsKey(core::AppState& state, RegistryKey& key) {
  auto& record = state.ProgramOptions;
  bool created = false;
  platform::SysResult opened =
      state.RegistryFile.empty() ? platform::SysResult{0, "no registry file"}
                                 : RegistryStore(state.RegistryFile).CreateKey(KeyPath(record), key, created);
  if (!opened) {
    record.LastResult = 1;
    core::ShowErrorBox(state, u"Error opening Program Options registry key: " + record.Path, opened);
    return 1;
  }
  record.Disposition = created ? 1 : 0;
  record.LastResult = 0;
  return 0;
}

int LoadProgramOptions(core::AppState& state) {
  RegistryKey key;
  if (OpenProgramOptionsKey(state, key) != 0) return 1;
  auto& record = state.ProgramOptions;
  for (const auto& option : kOptions) {
    uint32_t value = 0;
    if (record.Disposition != 1 && key.QueryDword(option.name, value)) {
      record.*option.field = value;
    } else {
      key.SetDword(option.name, record.*option.field);
    }
  }
  // The simulated device on VSP0; optional, present unless switched off.
  uint32_t value = 0;
  core::SimulatedProfile& simulated = state.Simulated;
  if (key.QueryDword("SimulatedDevice", value)) simulated.SimulatedDevice = value != 0;
  if (key.QueryDword("SimulatedSentenceMs", value) && value >= 10 && value <= 3600000) {
    simulated.SimulatedSentenceMs = static_cast<int32_t>(value);
  }
  if (key.QueryDword("SimulatedEcho", value)) simulated.SimulatedEcho = value != 0;
  std::string setting;
  if (key.QueryString("SimulatedSetting", setting))
    platform::ParseLineSetting(setting, simulated.SimulatedSetting);
  // Virtual ports (device paths such as pty links) for VSP1..VSP9; optional.
  for (int m = 1; m <= 9; ++m) {
    std::string path;
    if (key.QueryString("VirtualPort" + std::to_string(m), path)) {
      state.VirtualPortPath[static_cast<size_t>(10 + m)] = path;
    }
  }
  key.Close();
  return 0;
}

int SaveProgramOptions(core::AppState& state) {
  RegistryKey key;
  if (OpenProgramOptionsKey(state, key) != 0) return 1;
  auto& record = state.ProgramOptions;
  bool written = true;
  for (const auto& option : kOptions) written = key.SetDword(option.name, record.*option.field) && written;
  key.Close();
  return written ? 0 : 1;
}

int IsRegisteredVersionCurrent(core::AppState& state) {
  auto& record = state.ProgramOptions;
  RegistryKey key;
  if (OpenProgramOptionsKey(state, key) != 0) return 1;
  uint32_t major = 0;
  uint32_t minor = 0;
  bool read = key.QueryDword("MajorVersion", major) && key.QueryDword("MinorVersion", minor);
  key.Close();
  if (!read) return 1;
  record.MajorVersion = major;
  record.MinorVersion = minor;
  // Compared as it stands in a zero-filled buffer of 16 characters.
  std::u16string stored = FormatVersion(major, minor).substr(0, 15);
  return stored == core::kRelease ? 0 : 1;
}

int RecordReleaseWhenMissing(core::AppState& state) {
  RegistryKey key;
  if (OpenProgramOptionsKey(state, key) != 0) return 1;
  uint32_t stored = 0;
  bool held = key.QueryDword("MajorVersion", stored) || key.QueryDword("MinorVersion", stored);
  bool written = held || (key.SetDword("MajorVersion", core::kMajorVersion) &&
                          key.SetDword("MinorVersion", core::kMinorVersion));
  key.Close();
  return written ? 0 : 1;
}

}  // namespace wavetrace::config
