#include "serial/discovery.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>

#include "core/code_page.h"
#include "serial/simulated_device.h"

namespace wavetrace::serial {
namespace {

namespace fs = std::filesystem;

std::string ReadAttribute(const fs::path& file) {
  std::ifstream in(file);
  std::string text;
  std::getline(in, text);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.pop_back();
  return text;
}

std::string Upper(std::string text) {
  for (auto& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The USB device a tty hangs below holds the product and vendor attributes a
// few levels up from the interface.
void ReadUsbAttributes(const fs::path& deviceLink, TtyDevice& device) {
  std::error_code ec;
  fs::path dir = fs::canonical(deviceLink, ec);
  if (ec) return;
  for (int level = 0; level < 5 && !dir.empty() && dir != dir.root_path(); ++level, dir = dir.parent_path()) {
    if (!fs::exists(dir / "idVendor", ec)) continue;
    device.Product = ReadAttribute(dir / "product");
    std::string words = Upper(device.Product + " " + ReadAttribute(dir / "manufacturer"));
    // u-blox makes GPS receivers only.
    device.Gps = words.find("GPS") != std::string::npos || words.find("GNSS") != std::string::npos ||
                 ReadAttribute(dir / "idVendor") == "1546";
    return;
  }
}

std::map<std::string, std::string> ByIdNames(const std::string& folder) {
  std::map<std::string, std::string> names;  // tty name -> by-id name
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    fs::path target = fs::read_symlink(entry.path(), ec);
    if (ec) continue;
    names[target.filename().string()] = entry.path().filename().string();
  }
  return names;
}

std::u16string Slot(const char* kind, int n) {
  return core::Utf8ToWide(kind + std::to_string(n));
}

}  // namespace

std::vector<TtyDevice> ScanTtyDevices(const DiscoverySources& sources) {
  std::vector<TtyDevice> devices;
  auto byId = ByIdNames(sources.SerialById);
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(sources.SysClassTty, ec)) {
    TtyDevice device;
    device.Name = entry.path().filename().string();
    device.DevicePath = sources.DevFolder + "/" + device.Name;
    if (device.Name.rfind("rfcomm", 0) == 0) {
      device.Bluetooth = true;
    } else {
      fs::path link = entry.path() / "device";
      if (!fs::exists(link, ec)) continue;  // virtual consoles, ptys
      // An 8250 port that the probe found no UART behind has type 0.
      fs::path type = entry.path() / "type";
      if (fs::exists(type, ec) && ReadAttribute(type) == "0") continue;
      ReadUsbAttributes(link, device);
    }
    auto id = byId.find(device.Name);
    device.StableName = id != byId.end() ? id->second : device.Name;
    devices.push_back(std::move(device));
  }
  std::sort(devices.begin(), devices.end(),
            [](const TtyDevice& a, const TtyDevice& b) { return a.StableName < b.StableName; });
  return devices;
}

std::u16string VetDisplayName(const std::u16string& name) {
  for (char16_t c : name) {
    if ((c < u'0' || c > u'z') && c != u' ') return {};
  }
  return name;
}

int DiscoverPorts(core::AppState& state, PortNumbers& numbers, const DiscoverySources& sources) {
  auto& port = state.Port;
  std::vector<TtyDevice> devices = ScanTtyDevices(sources);

  // Numbers 1..9 by stable name: remembered ones first, then the lowest free.
  std::array<const TtyDevice*, 10> assigned{};
  std::vector<const TtyDevice*> unassigned;
  for (const auto& device : devices) {
    auto known = numbers.find(device.StableName);
    uint32_t number = known != numbers.end() ? known->second : 0;
    if (number >= 1 && number <= 9 && !assigned[number]) {
      assigned[number] = &device;
    } else {
      unassigned.push_back(&device);
    }
  }
  // A newcomer takes a number no absent device remembers, while there is one,
  // so an adapter that is plugged in again finds its number free.
  std::array<bool, 10> reserved{};
  for (const auto& [name, number] : numbers) {
    if (number >= 1 && number <= 9) reserved[number] = true;
  }
  for (const TtyDevice* device : unassigned) {
    size_t number = 0;
    for (size_t n = 1; n <= 9 && !number; ++n) {
      if (!assigned[n] && !reserved[n]) number = n;
    }
    for (size_t n = 1; n <= 9 && !number; ++n) {
      if (!assigned[n]) number = n;
    }
    if (!number) break;  // more than nine: reachable by device path only
    assigned[number] = device;
    numbers[device->StableName] = static_cast<uint32_t>(number);
  }

  for (int n = 1; n <= 9; ++n) {
    const TtyDevice* device = assigned[static_cast<size_t>(n)];
    if (!device) continue;
    auto slot = static_cast<size_t>(n);
    port.PortPresent[slot] = 1;
    state.PortDevicePath[slot] = device->DevicePath;
    state.PortStablePath[slot] =
        device->StableName != device->Name ? sources.SerialById + "/" + device->StableName : std::string();
    if (device->Bluetooth) {
      port.FriendlyName[slot] = u"Bluetooth Serial Port " + Slot("COM", n) + u":";
    } else if (device->Gps) {
      port.FriendlyName[slot] = u"GPS Serial Port " + Slot("COM", n) + u":";
    } else if (std::u16string name = VetDisplayName(core::Utf8ToWide(device->Product)); !name.empty()) {
      port.FriendlyName[slot] = name;
    }
  }
  port.PortPresent[0] = 0;

  // VSP0 is the device inside the program.
  if (state.Simulated.SimulatedDevice) {
    port.PortPresent[10] = 1;
    port.FriendlyName[10] = u"Simulated device";
    state.PortDevicePath[10] = kSimulatedDevicePath;
  }

  for (int m = 1; m <= 9; ++m) {
    auto slot = static_cast<size_t>(10 + m);
    const std::string& path = state.VirtualPortPath[slot];
    std::error_code ec;
    if (path.empty() || !fs::exists(path, ec)) continue;
    port.PortPresent[slot] = 1;
    state.PortDevicePath[slot] = path;
  }
  return 1;
}

}  // namespace wavetrace::serial
