#pragma once

#include <string>

#include "config/registry_store.h"
#include "core/app_state.h"

namespace wavetrace::config {

// The registry file in the configuration folder.
inline constexpr char kRegistryFileName[] = "registry.txt";

// Opens (creating when missing) the program options key of
// state.ProgramOptions in the registry file into key, recording whether it was
// created. 0 on success; 1 on failure, after "Error opening Program Options
// registry key: %s" in an error box.
int OpenProgramOptionsKey(core::AppState& state, RegistryKey& key);
// Reads DEFAULTcfg, MULTIinst, AcquireHWbuttons and DisableIcon; a value that
// is missing or unreadable (or a key just created) gets the record's value
// written back, so the key always ends up holding all four. 0, or 1 when the
// key cannot be opened.
int LoadProgramOptions(core::AppState& state);
// Writes the four options. 0, or 1 when the key cannot be opened or written.
int SaveProgramOptions(core::AppState& state);
// Reads MajorVersion and MinorVersion into the record and compares "%ld.%ld"
// of them with the release text. Note the sense: 0 when the stored release
// is this one, 1 when it differs, is missing, or the key cannot be opened.
int IsRegisteredVersionCurrent(core::AppState& state);
// Records this release when the key holds no release at all, as the
// installer would have; a different release stays. 0 when the key holds a
// release afterwards, 1 when it cannot be opened or written.
int RecordReleaseWhenMissing(core::AppState& state);

// "%ld.%ld" of the two numbers.
std::u16string FormatVersion(uint32_t major, uint32_t minor);

}  // namespace wavetrace::config
