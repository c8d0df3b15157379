// Where Help finds the manual: installed beside the executables, or in a
// build folder's link to the source tree.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "app/help.h"
#include "core/build_info.h"
#include "test_support.h"

namespace wavetrace::app {
namespace {

TEST(Help, FindsTheManualInstalledOrInABuildFolder) {
  // usr/share/doc/wavetrace-pro/manual/index.html as installed by default.
  const std::string installed =
      (std::filesystem::path("usr/bin") / core::kManualFromBinDir / kManualPage).lexically_normal().string();
  struct Case {
    std::string page, executableFolder;
    bool found;
  } cases[] = {{installed, "usr/bin", true},
               {"build/docs/manual/index.html", "build", true},
               {"build/docs/manual/other.html", "build", false},
               {installed, "opt/bin", false}};
  for (const Case& c : cases) {
    testing::TempFolder root;
    std::filesystem::create_directories(std::filesystem::path(root.Path() + "/" + c.page).parent_path());
    std::filesystem::create_directories(root.Path() + "/" + c.executableFolder);
    std::ofstream(root.Path() + "/" + c.page) << "<html></html>";
    EXPECT_EQ(FindManual(root.Path() + "/" + c.executableFolder, ""), c.found ? root.Path() + "/" + c.page : "")
        << c.page << " from " << c.executableFolder;
  }
}

}  // namespace
}  // namespace wavetrace::app
