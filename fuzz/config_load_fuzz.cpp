// Arbitrary bytes as an INI file and a configuration file: loading must never
// crash, what the store holds (cut by short reads too) saves and loads again,
// and a loaded configuration saves again. (A file without the signature
// changes nothing: ConfigFileTest.RefusedFilesChangeNothing.)
#include "config/config_file.h"
#include "config/ini_store.h"
#include "core/code_page.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  fuzz::FuzzFile file(data, size);
  core::AppState state, fresh;
  config::IniStore store;
  if (store.Open(file.Path(), false) != 0) std::abort();
  std::u16string path = core::Utf8ToWide(file.Path());
  config::ConfigLoadStore(state, store, path);
  std::string value;
  store.Get("COMMs", "SelectedPort", value, 8);
  store.Get("", "", value, 3);
  config::IniSave(store.Raw(), file.Out().c_str());
  config::IniStore again;
  again.Open(file.Out(), false);
  // Whatever was loaded saves and loads again. (Not always to equal values:
  // the last line of a file keeps trailing blanks that a saved line loses.)
  config::ConfigSave(state, core::Utf8ToWide(file.Out()));
  config::IniStore saved;
  saved.Open(file.Out(), false);
  if (config::ConfigLoadStore(fresh, saved, path) != 0) std::abort();
  return 0;
}
