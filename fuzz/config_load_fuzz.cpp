// Arbitrary bytes as a configuration file: loading must never crash, and what
// loads saves again. (A file without the signature changes nothing:
// ConfigFileTest.RefusedFilesChangeNothing.)
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
  config::ConfigLoadStore(state, store, path);
  // Whatever was loaded saves and loads again. (Not always to equal values:
  // the last line of a file keeps trailing blanks that a saved line loses.)
  config::ConfigSave(state, core::Utf8ToWide(file.Out()));
  config::IniStore saved;
  saved.Open(file.Out(), false);
  if (config::ConfigLoadStore(fresh, saved, path) != 0) std::abort();
  return 0;
}
