#pragma once

#include <string>

#include "core/app_state.h"
#include "platform/system_error.h"

namespace wavetrace::config {

inline constexpr char16_t kDefaultConfigName[] = u"Default.cfg.txt";
inline constexpr int kMinimumConfigBytes = 64;

// Writes every persisted setting to path, section by section. 0 on success,
// 1 on failure (reported).
int ConfigSave(core::AppState& state, const std::u16string& path);
// Reads a configuration file. A file that is missing, too small or without
// the signature changes nothing and returns 1; missing keys leave their
// settings as they were and are counted in state.LoadWarnings.
int ConfigLoad(core::AppState& state, const std::u16string& path);
// The same, with why a file that could not be opened could not (the load
// itself says nothing then; the caller may).
int ConfigLoad(core::AppState& state, const std::u16string& path, platform::SysResult& failure);

class IniStore;
// The part of ConfigLoad after the file checks: the signature, then every
// section of a store that holds the file.
int ConfigLoadStore(core::AppState& state, IniStore& ini, const std::u16string& path);

// Takes the snapshot of the port and data settings.
void TakeSettingsSnapshot(core::AppState& state);

}  // namespace wavetrace::config
