#include "app/manual.h"

#include "core/build_info.h"
#include "platform/files.h"

namespace wavetrace::app {
namespace {

// The folder holding path, without its trailing slash; "" for a bare name.
std::string FolderOf(const std::string& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

std::string FindManual(const std::string& executablePath, const std::string& sourceFolder) {
  const std::string bin = FolderOf(executablePath);
  if (!bin.empty()) {
    std::string installed = FolderOf(bin) + "/" + kInstalledManual;
    if (platform::FileExists(installed)) return installed;
  }
  if (!sourceFolder.empty()) {
    std::string source = sourceFolder + "/" + kSourceManual;
    if (platform::FileExists(source)) return source;
  }
  return {};
}

std::string ManualPath() {
  return FindManual(platform::ExecutablePath(), core::kSourceFolder);
}

}  // namespace wavetrace::app
