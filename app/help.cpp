#include "app/help.h"

#include <filesystem>
#include <vector>

#include "core/build_info.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "platform/files.h"

namespace wavetrace::app {

std::string FindManual(const std::string& executableFolder, const std::string& sourceFolder) {
  std::vector<std::filesystem::path> folders;
  if (!executableFolder.empty()) {
    std::filesystem::path bin(executableFolder);
    folders = {bin / core::kManualFromBinDir, bin / "docs" / "manual"};
  }
  if (!sourceFolder.empty()) folders.push_back(std::filesystem::path(sourceFolder) / "docs" / "manual");
  for (const std::filesystem::path& folder : folders) {
    std::string page = (folder / kManualPage).lexically_normal().string();
    if (platform::FileExists(page)) return page;
  }
  return {};
}

std::string ManualPath() {
  return FindManual(platform::ExecutableFolder(), core::kSourceFolder);
}

void ShowHelp(core::AppState& state) {
  std::string page = ManualPath();
  if (page.empty()) {
    core::ShowStatus(state, u"The manual is not installed");
    return;
  }
  if (!state.View || !state.View->OpenManual(page, kManualContents)) {
    core::ShowStatus(state, u"The manual is " + core::Utf8ToWide(page));
  }
}

}  // namespace wavetrace::app
