#include <gtest/gtest.h>

#include <fstream>

#include "config/program_options.h"
#include "config/registry_store.h"
#include "platform/files.h"
#include "test_support.h"

namespace wavetrace::config {
namespace {

constexpr char kKey[] = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro";

class ProgramOptionsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    state.View = &view;
    state.RegistryFile = file;
  }
  void WriteRegistry(const std::string& values) { std::ofstream(file) << "[" << kKey << "]\n" << values; }
  // The four options as stored, in their order.
  std::vector<uint32_t> Stored() {
    RegistryKey key;
    bool created = false;
    EXPECT_TRUE(RegistryStore(file).CreateKey(kKey, key, created));
    std::vector<uint32_t> values;
    for (const char* name : {"DEFAULTcfg", "MULTIinst", "AcquireHWbuttons", "DisableIcon"}) {
      values.push_back(0xDEAD);
      EXPECT_TRUE(key.QueryDword(name, values.back())) << name;
    }
    return values;
  }

  testing::TempFolder folder;
  std::string file = folder.Path() + "/" + kRegistryFileName;
  core::AppState state;
  testing::RecordingFrontEnd view;
};

TEST_F(ProgramOptionsTest, LoadRepairsTheKeyAndSaveKeepsOtherKeys) {
  // A fresh folder gets the key with the four options, zero and in their order.
  ASSERT_EQ(LoadProgramOptions(state), 0);
  EXPECT_EQ(state.ProgramOptions.Disposition, 1);
  EXPECT_EQ(Stored(), std::vector<uint32_t>(4, 0));
  std::string text = platform::ReadWholeFile(file).value_or("");
  EXPECT_LT(text.find("DEFAULTcfg"), text.find("MULTIinst"));
  EXPECT_LT(text.find("AcquireHWbuttons"), text.find("DisableIcon"));
  EXPECT_TRUE(view.Boxes().empty());
  // Missing and unreadable values are repaired with the default.
  WriteRegistry(
      "DEFAULTcfg=dword:zz\nMULTIinst=\"text\"\nAcquireHWbuttons=dword:00000001\n"
      "garbage line\nDisableIcon=dword:0000000100\n");
  ASSERT_EQ(LoadProgramOptions(state), 0);
  const auto& o = state.ProgramOptions;
  EXPECT_EQ(o.DEFAULTcfg + o.MULTIinst + o.DisableIcon, 0u);
  EXPECT_EQ(o.AcquireHWbuttons, 1u);
  EXPECT_EQ(Stored(), (std::vector<uint32_t>{0, 0, 1, 0}));
  WriteRegistry("MULTIinst=dword:00000001\n");  // one option: the others are added
  state.ProgramOptions = {};
  ASSERT_EQ(LoadProgramOptions(state), 0);
  EXPECT_EQ(Stored(), (std::vector<uint32_t>{0, 1, 0, 0}));

  // Saved options are stored (and so come back as loaded above), and other keys survive.
  std::ofstream(file) << "[HKEY_CURRENT_USER\\Other]\nKeep=dword:0000002a\n";
  state.ProgramOptions = {};
  state.ProgramOptions.DEFAULTcfg = state.ProgramOptions.DisableIcon = 1;
  ASSERT_EQ(SaveProgramOptions(state), 0);
  EXPECT_NE(platform::ReadWholeFile(file).value_or("").find("Keep=dword:0000002a"), std::string::npos);
  EXPECT_EQ(Stored(), (std::vector<uint32_t>{1, 0, 0, 1}));
}

// The release of this program, another one and a key without one, each with
// the box the program shows: StartUp.TheVersionWarningAndTheRecordedRelease.
TEST_F(ProgramOptionsTest, AReleaseWithoutItsMinorIsReadAsNoneAndNumbersShowSigned) {
  WriteRegistry("MajorVersion=dword:00000002\n");
  EXPECT_EQ(IsRegisteredVersionCurrent(state), 1);
  EXPECT_EQ(std::pair(state.ProgramOptions.MajorVersion, state.ProgramOptions.MinorVersion),
            std::pair(0u, 0u));
  EXPECT_EQ(FormatVersion(0xFFFFFFFF, 5), u"-1.5");
}

TEST_F(ProgramOptionsTest, AKeyThatCannotBeOpenedIsReportedAndChangesNothing) {
  // A registry file below a plain file can never be created.
  std::ofstream(folder.Path() + "/plain") << "x";
  state.RegistryFile = folder.Path() + "/plain/registry.txt";
  state.ProgramOptions.MULTIinst = 1;
  EXPECT_EQ(LoadProgramOptions(state), 1);
  EXPECT_EQ(SaveProgramOptions(state), 1);
  EXPECT_EQ(IsRegisteredVersionCurrent(state), 1);
  EXPECT_EQ(state.ProgramOptions.MULTIinst, 1u);
  auto boxes = view.Boxes();
  ASSERT_EQ(boxes.size(), 3u);
  const std::string box = testing::Narrow(boxes[0].title + u": " + boxes[0].text);
  EXPECT_TRUE(
      box.starts_with("Error...: Error opening Program Options registry key: "
                      "SOFTWARE\\Tarnwell\\Wavetrace Pro: Error code=20 (0x14)"))
      << box;
}

}  // namespace
}  // namespace wavetrace::config
