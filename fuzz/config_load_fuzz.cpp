// Arbitrary bytes as a configuration file: loading must never crash, a file
// without the signature must change nothing, and what loads saves again.
#include <cstdint>
#include <cstdlib>

#include "config/config_file.h"
#include "config/ini_store.h"
#include "core/code_page.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  fuzz::FuzzFile file(data, size);
  core::AppState state;
  config::IniStore store;
  store.Open(file.Path(), false);
  std::u16string path = core::Utf8ToWide(file.Path());
  int rc = config::ConfigLoadStore(state, store, path);
  core::AppState untouched;
  if (rc != 0 &&
      !(state.Port == untouched.Port && state.Data == untouched.Data && state.Log == untouched.Log)) {
    std::abort();
  }
  // Whatever was loaded saves and loads again. (Not always to equal values:
  // the last line of a file keeps trailing blanks that a saved line loses.)
  config::ConfigSave(state, path + u".out");
  config::IniStore saved;
  saved.Open(file.Path() + ".out", false);
  core::AppState reloaded;
  if (config::ConfigLoadStore(reloaded, saved, path) != 0) std::abort();
  std::remove((file.Path() + ".out").c_str());
  return 0;
}
