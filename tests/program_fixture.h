#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <iomanip>
#include <string>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "core/code_page.h"
#include "core/version.h"
#include "test_support.h"

namespace wavetrace::testing {

// The program's registry key in a configuration folder: this release (no
// version warning), then the extra lines.
inline void WriteRegistry(const std::string& folder, const std::string& extra = "") {
  std::ofstream(folder + "/registry.txt")
      << "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro]\n"
      << std::hex << std::setfill('0') << "MajorVersion=dword:" << std::setw(8) << core::kMajorVersion
      << "\nMinorVersion=dword:" << std::setw(8) << core::kMinorVersion << "\n"
      << extra;
}

// The program over a configuration folder; the test serves the queue as the
// main thread. Whatever is still open is shut down at the end.
class StartedProgram {
 public:
  explicit StartedProgram(const std::string& folder) {
    state.View = &view;
    state.ConfigFolder = core::Utf8ToWide(folder);
  }
  ~StartedProgram() {
    if (!started_) return;
    if (!state.ShuttingDown) app::Shutdown(state);
    app::AfterMessageLoop(state);
  }

  int Start(const platform::OsInfo& os = {true, "Linux", 6, 1}) {
    started_ = true;
    return app::StartUp(state, os);
  }
  // Serves the main thread's queue until the condition holds.
  bool PumpUntil(const std::function<bool()>& condition,
                 std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    for (auto deadline = std::chrono::steady_clock::now() + limit; !condition();
         state.Queue.DispatchPending()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
  }

  core::AppState state;
  RecordingFrontEnd view;

 private:
  bool started_ = false;
};

// The program over a fresh folder of this release with the extra registry lines, not started yet.
struct FreshProgram : TempFolder, StartedProgram {
  explicit FreshProgram(const std::string& extra = "")
      : StartedProgram((WriteRegistry(Path(), extra), Path())) {}
};

// A test body with the program started in a fresh folder of this release.
class ProgramFixture : public ::testing::Test {
 protected:
  // Lines added to the program's registry key before the start.
  [[nodiscard]] virtual std::string ExtraRegistry() const { return {}; }
  void SetUp() override {
    WriteRegistry(folder.Path(), ExtraRegistry());
    ASSERT_EQ(program.Start(), 0);
  }
  bool PumpUntil(const std::function<bool()>& condition) { return program.PumpUntil(condition); }

  TempFolder folder;
  StartedProgram program{folder.Path()};
  core::AppState& state = program.state;
  RecordingFrontEnd& view = program.view;
};

}  // namespace wavetrace::testing
