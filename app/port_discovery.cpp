#include "app/port_discovery.h"

#include "config/registry_store.h"

namespace wavetrace::app {
namespace {

constexpr char kPortsKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro\\Ports";

}  // namespace

int DiscoverPorts(core::AppState& state, const serial::DiscoverySources& sources) {
  config::RegistryKey key;
  bool created = false;
  const bool remembered = !state.RegistryFile.empty() &&
                          config::RegistryStore(state.RegistryFile).CreateKey(kPortsKey, key, created);
  serial::PortNumbers numbers;
  if (remembered) numbers = key.Dwords();
  const serial::PortNumbers before = numbers;
  const int result = serial::DiscoverPorts(state, numbers, sources);
  if (!remembered) return result;
  for (const auto& [name, number] : numbers) {
    auto old = before.find(name);
    if (old == before.end() || old->second != number) key.SetDword(name, number);
  }
  return result;
}

}  // namespace wavetrace::app
