#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "core/code_page.h"
#include "test_support.h"

namespace wavetrace::testing {

// The program started in a fresh configuration folder where this release is
// recorded (so no warning box); the test serves the queue as the main thread
// and shuts the program down at the end, whatever is still open.
class ProgramFixture : public ::testing::Test {
 protected:
  // Lines added to the program's registry key before the start.
  [[nodiscard]] virtual std::string ExtraRegistry() const { return {}; }

  void SetUp() override {
    std::ofstream(folder.Path() + "/registry.txt")
        << "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tarnwell\\Wavetrace Pro]\nMajorVersion=dword:00000002\n"
           "MinorVersion=dword:00000047\n"
        << ExtraRegistry();
    state.View = &view;
    state.ConfigFolder = core::Utf8ToWide(folder.Path());
    ASSERT_EQ(app::StartUp(state, {true, "Linux", 6, 1, ""}), 0);
  }
  void TearDown() override {
    app::Shutdown(state);
    app::AfterMessageLoop(state);
  }
  // Serves the main thread's queue until the condition holds.
  bool PumpUntil(const std::function<bool()>& condition,
                 std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      state.Queue.DispatchPending();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
  }

  TempFolder folder;
  core::AppState state;
  RecordingFrontEnd view;
};

}  // namespace wavetrace::testing
