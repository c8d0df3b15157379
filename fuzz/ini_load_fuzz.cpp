// Arbitrary bytes as an INI file: loading, reading back and saving must hold.
#include "config/ini_store.h"
#include "fuzz/fuzz_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace wavetrace;
  fuzz::FuzzFile file(data, size);
  config::IniStore store;
  if (store.Open(file.Path(), false) != 0) std::abort();
  std::string value;
  store.Get("COMMs", "SelectedPort", value, 8);
  store.Get("", "", value, 3);
  config::IniSave(store.Raw(), file.Out().c_str());
  // What was saved loads again.
  config::IniStore again;
  again.Open(file.Out(), false);
  return 0;
}
