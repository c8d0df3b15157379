// The port's lines by hand and as the driver reports them.
#include <gtest/gtest.h>

#include "app/line_control.h"
#include "core/messages.h"
#include "platform/pty.h"
#include "program_fixture.h"
#include "serial/port.h"

namespace wavetrace::app {
namespace {

using ProgramLines = testing::ProgramFixture;

TEST_F(ProgramLines, AMismatchedParityRaisesTheSimulatedDevicesErrorCounters) {
  state.Port.SelectedPort = u"VSP0:";
  state.Port.SelectedBaud = 4800;
  state.Port.Parity = u"Even";
  state.Queue.SendCommand(core::cmd::kPlay);
  ASSERT_TRUE(PumpUntil([&] { return state.Screen.IsButtonEnabled(core::cmd::kStop); }));
  auto port = serial::CurrentPort(state);
  ASSERT_TRUE(port);
  ASSERT_TRUE(PumpUntil([&] { return port->ReadLineStatus().Parity > 0; }));
  const std::u16string text = LineStatusText(port->ReadLineStatus());
  EXPECT_EQ(text.rfind(u"Line status: CTS on, DSR on, DCD on, RI off; framing errors ", 0), 0u);
}

TEST(PtyLines, APseudoTerminalKnowsNoLinesCountersOrBreaks) {
  platform::PtyPair device;
  platform::SysResult failure;
  auto port = platform::OpenTermiosPort(device.SlavePath(), failure);
  ASSERT_TRUE(port) << failure.Operation;
  EXPECT_EQ(LineStatusText(port->ReadLineStatus()), u"Line status: modem lines n/a; error counters n/a");
  // The kernel's pseudo-terminals have no break: the call succeeds and the
  // far side reads nothing (a real UART delivers a zero byte, or a marked
  // break with PARMRK).
  EXPECT_TRUE(port->SetBreak(true));
  EXPECT_TRUE(port->SetBreak(false));
  EXPECT_EQ(device.Read(1, 300), "");
}

}  // namespace
}  // namespace wavetrace::app
