// Arbitrary bytes as a configuration file: loading must never crash, a file
// without the signature must change nothing, and what loads saves again.
#include "config/config_file.h"
#include "config/ini_store.h"
#include "core/code_page.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  fuzz::FuzzFile file(data, size);
  core::AppState state, fresh;
  config::IniStore store;
  store.Open(file.Path(), false);
  std::u16string path = core::Utf8ToWide(file.Path());
  if (config::ConfigLoadStore(state, store, path) != 0 &&
      !(state.Port == fresh.Port && state.Data == fresh.Data && state.Log == fresh.Log)) {
    std::abort();
  }
  // Whatever was loaded saves and loads again. (Not always to equal values:
  // the last line of a file keeps trailing blanks that a saved line loses.)
  config::ConfigSave(state, core::Utf8ToWide(file.Out()));
  config::IniStore saved;
  saved.Open(file.Out(), false);
  if (config::ConfigLoadStore(fresh, saved, path) != 0) std::abort();
  return 0;
}
