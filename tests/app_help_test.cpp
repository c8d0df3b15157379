// Where Help finds the manual: installed beside the executables, or in a
// build folder's link to the source tree.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "app/help.h"
#include "core/build_info.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

TEST(Help, FindsTheManualInstalledOrInABuildFolder) {
  // usr/share/doc/wavetrace-pro/manual/index.html as installed by default.
  const std::string installed =
      (std::filesystem::path("usr/bin") / core::kManualFromBinDir / kManualPage).lexically_normal().string();
  using Case = std::tuple<std::string, std::string, bool>;
  for (const auto& [page, executableFolder, found] :
       {Case{installed, "usr/bin", true}, Case{"build/docs/manual/index.html", "build", true},
        Case{"build/docs/manual/other.html", "build", false}, Case{installed, "opt/bin", false}}) {
    testing::TempFolder root;
    std::filesystem::create_directories(std::filesystem::path(root.Path() + "/" + page).parent_path());
    std::filesystem::create_directories(root.Path() + "/" + executableFolder);
    std::ofstream(root.Path() + "/" + page) << "<html></html>";
    EXPECT_EQ(FindManual(root.Path() + "/" + executableFolder, ""), found ? root.Path() + "/" + page : "")
        << page << " from " << executableFolder;
  }
}

}  // namespace
}  // namespace wavetrace::app
