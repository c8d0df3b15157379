#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "app/connection.h"
#include "core/messages.h"
#include "loopback_server.h"
#include "relay/network_relay.h"
#include "relay/relay_page.h"
#include "rx/dispatcher.h"
#include "test_support.h"

namespace wavetrace::relay {
namespace {

using namespace std::chrono_literals;
using platform::SocketKind;
using testing::ClosedPort;
using testing::LoopbackServer;
using testing::Narrow;

// The program's state with the network relay in place, aimed at a port of
// 127.0.0.1.
struct RelayedState {
  explicit RelayedState(uint16_t port, bool tcp = true, bool enabled = true) {
    state.View = &view;
    state.Data.IP = {u"127", u"0", u"0", u"1"};
    state.Data.RelayTCP_RemotePort = port;
    state.Data.Relay_SocketType_TCP = tcp ? 1 : 0;
    state.Data.Relay_SocketType_UDP = tcp ? 0 : 1;
    state.Data.EnableTCPIPrelay = enabled ? 1 : 0;
    InstallNetworkRelay(state);
  }
  // The RELAY toggle.
  void Activate() { app::ToggleRelay(state); }
  std::string Status() const { return Narrow(state.Screen.Status()); }
  std::string LastBox() {
    auto boxes = view.Boxes();
    return boxes.empty() ? "" : Narrow(boxes.back().title) + "|" + Narrow(boxes.back().text);
  }

  core::AppState state;
  testing::RecordingFrontEnd view;
};

// Received data: every byte value, in blocks of varying size.
std::string TestStream(size_t bytes) {
  std::string data(bytes, '\0');
  for (size_t i = 0; i < bytes; ++i) data[i] = static_cast<char>((i * 7 + i / 251) & 0xff);
  return data;
}

TEST(NetworkRelay, EveryBlockReachesTheServerInOrder) {
  constexpr size_t kBytes = 10 << 20;
  const std::string stream = TestStream(kBytes);
  for (bool tcp : {true, false}) {
    LoopbackServer server(tcp ? SocketKind::kStream : SocketKind::kDatagram);
    RelayedState relayed(server.Port(), tcp);
    relayed.Activate();
    ASSERT_TRUE(relayed.state.RelayActive) << relayed.Status();
    size_t offset = 0;
    for (size_t size = 1; offset < kBytes; size = size % 8192 + 997) {
      size_t n = std::min(size, kBytes - offset);
      rx::DispatchReceivedData(relayed.state, *relayed.state.PublishedRx.Load(),
                               reinterpret_cast<const uint8_t*>(stream.data() + offset),
                               static_cast<uint32_t>(n));
      offset += n;
      // A datagram the server has no room for is dropped by the kernel:
      // keep the UDP sender one block ahead of it.
      if (!tcp) {
        ASSERT_TRUE(server.WaitFor(offset)) << offset;
      }
    }
    ASSERT_TRUE(server.WaitFor(kBytes)) << tcp;
    EXPECT_TRUE(server.Received() == stream) << "tcp " << tcp;
    EXPECT_EQ(relayed.Status(),
              "TCP/IP relay.\r\nConnection opened to [127.0.0.1:" + std::to_string(server.Port()) + "]");
  }
}

TEST(NetworkRelay, ActivationAndDeactivationTexts) {
  LoopbackServer server(SocketKind::kStream);
  const uint16_t closed = ClosedPort();
  struct Case {
    const char* what;
    uint16_t port;
    bool tcp, enabled, stays;
    std::string status, box;
  };
  const std::string listening = std::to_string(server.Port());
  const Case cases[] = {
      {"TCP server", server.Port(), true, true, true,
       "TCP/IP relay.\r\nConnection opened to [127.0.0.1:" + listening + "]", ""},
      {"UDP with nothing listening", closed, false, true, true,
       "TCP/IP relay.\r\nConnection opened to [127.0.0.1:" + std::to_string(closed) + "]", ""},
      {"TCP server down", closed, true, true, false, "TCP/IP relay.\r\n",
       "IP Relay|Failed to connect to server: [127.0.0.1]   WSA error code=111 (0x6f) [Connection refused]"},
      {"nothing enabled", closed, true, false, false,
       "RELAY deactivated.\r\nNothing to do.\r\nGoto -> Edit : Receive Options : Relay tab", ""},
  };
  for (const Case& c : cases) {
    RelayedState relayed(c.port, c.tcp, c.enabled);
    relayed.Activate();
    EXPECT_EQ(relayed.state.RelayActive, c.stays) << c.what;
    EXPECT_EQ(relayed.state.Screen.IsButtonPressed(core::cmd::kRelay), c.stays) << c.what;
    EXPECT_EQ(relayed.Status(), c.status) << c.what;
    EXPECT_EQ(relayed.LastBox(), c.box) << c.what;
    auto session = NetworkRelayOf(relayed.state)->Load();
    EXPECT_EQ(session != nullptr, c.stays) << c.what;
    if (!c.stays) continue;
    app::ToggleRelay(relayed.state);
    EXPECT_EQ(relayed.Status(),
              "TCP/IP relay deactivated.\r\nConnection closed to [127.0.0.1:" + std::to_string(c.port) + "]")
        << c.what;
    EXPECT_EQ(NetworkRelayOf(relayed.state)->Load(), nullptr) << c.what;
    EXPECT_FALSE(session->Socket->IsConnected()) << c.what;
  }
}

TEST(NetworkRelay, ServerClosingMidStreamLeavesRelayOnWithSendFailure) {
  LoopbackServer server(SocketKind::kStream, 1);
  RelayedState relayed(server.Port());
  relayed.Activate();
  ASSERT_TRUE(relayed.state.RelayActive);
  // One block larger than both ends' buffers: the server goes during it.
  const std::string big(32 << 20, 'b');
  RelaySendBlock(relayed.state, reinterpret_cast<const uint8_t*>(big.data()),
                 static_cast<uint32_t>(big.size()));
  std::string status = relayed.Status();
  std::string prefix = "Failed to send data to server: [127.0.0.1:" + std::to_string(server.Port()) +
                       "], nSentbytes=4294967295.  WSA error code=";
  EXPECT_EQ(status.substr(0, prefix.size()), prefix);
  EXPECT_TRUE(status.find("=32 (0x20) [Broken pipe]") != std::string::npos ||
              status.find("=104 (0x68) [Connection reset by peer]") != std::string::npos)
      << status;
  EXPECT_TRUE(relayed.state.RelayActive);
  // Later blocks are not sent and not reported: the socket is no longer
  // connected once its worker has seen the end.
  auto session = NetworkRelayOf(relayed.state)->Load();
  auto deadline = std::chrono::steady_clock::now() + 5s;
  while (session->Socket->IsConnected() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(2ms);
  }
  relayed.state.Screen.SetStatus(u"");
  rx::DispatchReceivedData(relayed.state, *relayed.state.PublishedRx.Load(),
                           reinterpret_cast<const uint8_t*>("later"), 5);
  EXPECT_EQ(relayed.Status(), "");
  EXPECT_EQ(session->Socket->State(), RelayStateClosed);
}

TEST(NetworkRelay, TestButtonBoxes) {
  LoopbackServer tcpServer(SocketKind::kStream);
  const uint16_t closed = ClosedPort();
  struct Case {
    uint16_t port;
    bool tcp;
    std::string box;
  };
  const Case cases[] = {
      {tcpServer.Port(), true, "IP Relay|CONNECTED !   Sent: \"R U there?\" message."},
      {closed, true,
       "IP Relay|Failed to connect to server: [127.0.0.1]  WSA error code=111 (0x6f) [Connection refused]"},
      {closed, false, "IP Relay|CONNECTED !   Sent: \"R U there?\" message."},
  };
  for (const Case& c : cases) {
    RelayedState relayed(c.port, c.tcp);
    TestRelayServer(relayed.state);
    EXPECT_EQ(relayed.LastBox(), c.box) << c.port;
  }
  ASSERT_TRUE(tcpServer.WaitFor(10));
  EXPECT_EQ(tcpServer.Received(), "R U there?");
}

TEST(RelayPage, FieldsClampAndFollowTheirSettings) {
  struct Case {
    std::u16string typed;
    uint32_t lastSeen, maximum;
    const char16_t* written;  // null: left as typed
  };
  const Case cases[] = {
      {u"300", 30, kOctetMaximum, u"255"},        {u"70000", 7000, kPortMaximum, u"65535"},
      {u"12", 12, kOctetMaximum, nullptr},        {u"", 5, kOctetMaximum, u"0"},
      {u"99999999999", 9, kOctetMaximum, u"255"}, {u"1a", 0, kOctetMaximum, u"1"},
  };
  for (const Case& c : cases) {
    uint32_t last = c.lastSeen;
    auto written = ClampedFieldText(c.typed, last, c.maximum);
    EXPECT_EQ(written.has_value(), c.written != nullptr) << Narrow(c.typed);
    if (written) {
      EXPECT_EQ(*written, c.written);
    }
  }
  core::DataSettings data;
  IpRelayFields fields{{u"192", u"168", u"0", u"12345678"}, u"8080", false};
  StoreIpRelayFields(fields, data);
  EXPECT_EQ(data.IP[3], u"1234567");
  EXPECT_EQ(data.RelayTCP_RemotePort, 8080);
  EXPECT_EQ(data.Relay_SocketType_TCP * 10 + data.Relay_SocketType_UDP, 1);
  EXPECT_EQ(ReadIpRelayFields(data).Port, u"8080");
  EXPECT_FALSE(ReadIpRelayFields(data).Tcp);
  for (auto [ticked, active, label] :
       {std::tuple{true, false, true}, {false, false, false}, {true, true, false}}) {
    RelayPageControls controls = NetworkRelayControls(ticked, active);
    EXPECT_EQ(controls.TcpIpButton, label);
    EXPECT_EQ(controls.Label, label);
    EXPECT_EQ(controls.EnableBox, !active);
  }
}

}  // namespace
}  // namespace wavetrace::relay
