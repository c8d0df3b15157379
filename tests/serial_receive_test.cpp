// The receive path end to end over pseudo-terminals: PLAY, data into the
// receive window, STOP, the device going away.
#include <gtest/gtest.h>

#include "core/code_page.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/port.h"

namespace wavetrace::serial {
namespace {

using namespace std::chrono_literals;
namespace cmd = core::cmd;

class ReceivePathTest : public testing::ProgramFixture {
 protected:
  bool Play(const platform::PtyPair& device) {
    if (!device.Valid()) return false;
    state.Port.SelectedPort = core::Utf8ToWide(device.SlavePath());
    state.Queue.SendCommand(cmd::kPlay);
    return PumpUntil([&] { return state.Screen.Status() == u"Port opened!  Send/Receive active..."; });
  }
  bool Closed() {
    return PumpUntil([&] { return state.Screen.IsButtonEnabled(cmd::kPlay) && !state.PortOpen; });
  }
  // Whether another program could open the device now.
  static bool Free(const platform::PtyPair& device) {
    platform::SysResult failure;
    bool opened = platform::OpenTermiosPort(device.SlavePath(), failure) != nullptr;
    EXPECT_TRUE(opened || platform::IsDeviceBusyOrGone(failure));
    return opened;
  }

  platform::PtyPair pty;
};

TEST_F(ReceivePathTest, AFailedOpenThenABurstWholeAndInOrderStopAndTheDeviceGoingAway) {
  state.Port.SelectedPort = u"/dev/does-not-exist-wavetrace";
  state.Queue.SendCommand(cmd::kPlay);
  EXPECT_EQ(state.Screen.Status().rfind(
                u"Error! Selected port failed to open. Check settings.: Error code=2 (0x2)", 0),
            0u);
  EXPECT_TRUE(state.Screen.IsButtonEnabled(cmd::kPlay));
  EXPECT_FALSE(state.PlayFlag);

  // The thread was never resumed: a good port opens after that, and no other program can take it meanwhile.
  ASSERT_TRUE(Play(pty));
  EXPECT_FALSE(state.Screen.IsButtonEnabled(cmd::kPlay));
  EXPECT_TRUE(state.Screen.IsButtonEnabled(cmd::kStop) && state.Screen.IsMenuItemGrey(cmd::kConfigLoad));
  EXPECT_EQ(state.Screen.TrayState(), 2);
  EXPECT_FALSE(Free(pty));
  state.Screen.RxClear();
  std::string burst;
  for (int i = 0; i < 12000; ++i) burst += static_cast<char>('A' + i % 26);
  ASSERT_TRUE(pty.Write(burst));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().size() >= burst.size(); }));
  EXPECT_EQ(core::WideToBytes(state.Screen.RxText()), burst);

  state.Queue.SendCommand(cmd::kStop);
  EXPECT_TRUE(Closed());
  EXPECT_EQ(state.Screen.Status(), u"Port closed!  Send/Receive deactivated.");
  EXPECT_FALSE(state.Screen.IsButtonEnabled(cmd::kStop));
  EXPECT_TRUE(state.Screen.IsMenuItemGrey(cmd::kConfigLoad));  // stays grey
  EXPECT_EQ(state.Screen.TrayState(), 1);
  EXPECT_TRUE(Free(pty));

  // The device going away closes the port; PLAY works again on another.
  ASSERT_TRUE(Play(pty));
  pty.CloseMaster();
  EXPECT_TRUE(Closed());
  EXPECT_EQ(state.Screen.Status(), u"Port closed!  The device went away.");
  EXPECT_FALSE(CurrentPort(state));
  platform::PtyPair again;
  ASSERT_TRUE(Play(again));
  ASSERT_TRUE(again.Write("back"));
  EXPECT_TRUE(PumpUntil([&] { return state.Screen.RxText().find(u"back") != std::u16string::npos; }));
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
  state.Queue.SendCommand(cmd::kStop);
  EXPECT_TRUE(Closed());
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

}  // namespace
}  // namespace wavetrace::serial
