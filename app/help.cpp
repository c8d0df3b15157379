#include "app/help.h"

#include <filesystem>

#include "core/build_info.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "platform/files.h"

namespace wavetrace::app {

std::string FindManual(const std::string& executableFolder) {
  if (executableFolder.empty()) return {};
  std::filesystem::path bin(executableFolder);
  for (const std::filesystem::path& folder : {bin / core::kManualFromBinDir, bin / "docs" / "manual"}) {
    std::string page = (folder / kManualPage).lexically_normal().string();
    if (platform::FileExists(page)) return page;
  }
  return {};
}

void ShowHelp(core::AppState& state) {
  std::string page = FindManual(platform::ExecutableFolder());
  if (page.empty()) {
    core::ShowStatus(state, u"The manual is not installed");
    return;
  }
  if (!state.View || !state.View->OpenManual(page, kManualContents)) {
    core::ShowStatus(state, u"The manual is " + core::Utf8ToWide(page));
  }
}

}  // namespace wavetrace::app
