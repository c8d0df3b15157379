// The receive path end to end over pseudo-terminals: PLAY, data into the
// receive window, STOP, the device going away.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "app/main_window.h"
#include "app/startup.h"
#include "core/code_page.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/port.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;

class ReceivePathTest : public testing::ProgramFixture {
 protected:
  void SetUp() override {
    ProgramFixture::SetUp();
    ASSERT_TRUE(pty.Valid());
  }
  bool Play(const platform::PtyPair& device) {
    state.Port.SelectedPort = core::Utf8ToWide(device.SlavePath());
    state.Queue.SendCommand(core::cmd::kPlay);
    return PumpUntil([&] { return state.Screen.Status() == u"Port opened!  Send/Receive active..."; });
  }
  bool Closed() { return state.Screen.IsButtonEnabled(core::cmd::kPlay) && !state.PortOpen; }

  platform::PtyPair pty;
};

TEST_F(ReceivePathTest, PlayReceivesABurstWholeAndInOrderThenStop) {
  ASSERT_TRUE(Play(pty));
  EXPECT_FALSE(state.Screen.IsButtonEnabled(core::cmd::kPlay));
  EXPECT_TRUE(state.Screen.IsButtonEnabled(core::cmd::kStop));
  EXPECT_TRUE(state.Screen.IsMenuItemGrey(core::cmd::kConfigLoad));
  EXPECT_EQ(state.Screen.TrayState(), 2);
  // A second program cannot take the port meanwhile.
  platform::SysResult failure;
  EXPECT_FALSE(platform::OpenTermiosPort(pty.SlavePath(), failure));
  EXPECT_TRUE(platform::IsDeviceBusyOrGone(failure));

  state.Screen.RxClear();
  std::string burst;
  for (int i = 0; i < 12000; ++i) burst += static_cast<char>('A' + i % 26);
  ASSERT_TRUE(pty.Write(burst));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= burst.size(); }));
  EXPECT_EQ(core::WideToBytes(state.Screen.RxText()), burst);

  state.Queue.SendCommand(core::cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return Closed(); }));
  EXPECT_EQ(state.Screen.Status(), u"Port closed!  Send/Receive deactivated.");
  EXPECT_FALSE(state.Screen.IsButtonEnabled(core::cmd::kStop));
  EXPECT_TRUE(state.Screen.IsMenuItemGrey(core::cmd::kConfigLoad));  // stays grey
  EXPECT_EQ(state.Screen.TrayState(), 1);
  EXPECT_TRUE(platform::OpenTermiosPort(pty.SlavePath(), failure));  // released
}

TEST_F(ReceivePathTest, StopWhileDataFlows) {
  ASSERT_TRUE(Play(pty));
  std::atomic<bool> sending{true};
  std::thread device([&] {
    while (sending) {
      pty.Write(std::string(512, 'x'));
      std::this_thread::sleep_for(1ms);
    }
  });
  std::this_thread::sleep_for(100ms);
  state.Queue.SendCommand(core::cmd::kStop);
  EXPECT_TRUE(PumpUntil([&] { return Closed(); }));
  sending = false;
  device.join();
  // Nothing more arrives once closed.
  std::this_thread::sleep_for(450ms);
  state.Queue.DispatchPending();
  auto shown = state.Screen.RxText().size();
  std::this_thread::sleep_for(450ms);
  state.Queue.DispatchPending();
  EXPECT_EQ(state.Screen.RxText().size(), shown);
}

TEST_F(ReceivePathTest, TheDeviceGoingAwayClosesThePortAndPlayWorksAgain) {
  ASSERT_TRUE(Play(pty));
  pty.CloseMaster();
  EXPECT_TRUE(PumpUntil([&] { return Closed(); }));
  EXPECT_EQ(state.Screen.Status(), u"Port closed!  The device went away.");
  EXPECT_FALSE(CurrentPort(state));

  platform::PtyPair again;
  ASSERT_TRUE(Play(again));
  ASSERT_TRUE(again.Write("back"));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"back") != std::u16string::npos; }));
}

TEST_F(ReceivePathTest, AFailedOpenLeavesPlayEnabledWithTheErrorCode) {
  state.Port.SelectedPort = u"/dev/does-not-exist-wavetrace";
  state.Queue.SendCommand(core::cmd::kPlay);
  EXPECT_EQ(state.Screen.Status().rfind(
                u"Error! Selected port failed to open. Check settings.: Error code=2 (0x2)", 0),
            0u);
  EXPECT_TRUE(state.Screen.IsButtonEnabled(core::cmd::kPlay));
  EXPECT_FALSE(state.PlayFlag);
  // The thread was never resumed: a good port opens after that.
  EXPECT_TRUE(Play(pty));
}

}  // namespace
}  // namespace wavetrace::serial
