// The relay socket against servers on 127.0.0.1, the network relay that
// forwards received blocks through it, and the relay pages' fields.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "app/connection.h"
#include "core/decimal_text.h"
#include "core/messages.h"
#include "loopback_server.h"
#include "relay/network_relay.h"
#include "relay/relay_page.h"
#include "relay/relay_socket.h"
#include "rx/dispatcher.h"
#include "test_support.h"

namespace wavetrace::relay {
namespace {

using namespace std::chrono_literals;
using platform::SocketKind;
using testing::ClosedPort;
using testing::LoopbackServer;
using testing::Narrow;

constexpr char kLoopback[] = "127.0.0.1";
constexpr int32_t kTcp = RelaySocket::kTcp;
constexpr int32_t kUdp = RelaySocket::kUdp;

template <typename Condition>
bool Eventually(Condition condition) {
  auto deadline = std::chrono::steady_clock::now() + 5s;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(2ms);
  }
  return true;
}

const uint8_t* Bytes(const std::string& text) {
  return reinterpret_cast<const uint8_t*>(text.data());
}

TEST(RelaySocket, RefusalsStoreTheirCodesThenTcpByNameSendsAndQueuesUpToItsLimitLosingNothing) {
  LoopbackServer server(SocketKind::kStream);
  // The code an operation stored when it failed; 0 when it succeeded.
  auto refusal = [](const RelaySocket& socket, bool succeeded) { return succeeded ? 0 : socket.LastError(); };
  RelaySocket unused;
  EXPECT_EQ(refusal(unused, unused.Connect(kLoopback, 1)), kErrorNoSocket);
  EXPECT_EQ(refusal(unused, unused.Listen(0, 1)), kErrorNoSocket);
  EXPECT_EQ(refusal(unused, unused.Create(3, 0)), kErrorInvalid);
  RelaySocket udp;
  ASSERT_TRUE(udp.Create(kUdp, 0));
  EXPECT_EQ(refusal(udp, udp.Connect(kLoopback, 65536)), kErrorInvalid);
  ASSERT_TRUE(udp.Connect(kLoopback, 9));
  EXPECT_EQ(refusal(udp, udp.Send(nullptr, 1) != -1), kErrorNoData);
  EXPECT_EQ(refusal(udp, udp.Listen(0, 1)), kErrorConnected);
  RelaySocket tcp;
  ASSERT_TRUE(tcp.Create(kTcp, 16));
  EXPECT_EQ(refusal(tcp, tcp.Create(kUdp, 0)), kErrorSocketOpen);
  EXPECT_EQ(refusal(tcp, tcp.Send(Bytes("x"), 1) != -1), kErrorNotConnected);
  ASSERT_TRUE(tcp.Connect("localhost", server.Port()));
  EXPECT_EQ(refusal(tcp, tcp.Connect(kLoopback, server.Port())), kErrorConnected);

  tcp.SetQueueLimit(64);  // four blocks of 16 bytes
  EXPECT_EQ(tcp.SendString("hello"), 5);
  ASSERT_TRUE(server.WaitFor(5));  // connected (what is sent arrives whole: NetworkRelay)
  std::string sent;
  for (int i = 0; i < 100; ++i) sent += "line " + std::to_string(i) + "\n";
  server.Reply(sent);
  ASSERT_TRUE(Eventually([&] { return tcp.QueuedBytes() == 64; }));
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(tcp.QueuedBytes(), 64u);
  // Read in parts of any size, in order.
  uint8_t part[64];
  std::string got;
  while (got.size() < sent.size() && Eventually([&] { return tcp.QueuedBytes() > 0; })) {
    got.append(part, part + tcp.ReadQueued(part, sizeof part));
  }
  EXPECT_EQ(got, sent);
}

TEST(RelaySocket, ConnectGivesUpAtTheTimeLimit) {
  // A listener with a full backlog drops further handshakes: the connect
  // neither succeeds nor fails until the limit.
  int listener = platform::kNoSocket;
  platform::Ipv4Endpoint local;
  platform::OpenSocket(SocketKind::kStream, listener);
  platform::BindTo(listener, {platform::kLoopbackAddress, 0});
  platform::LocalEndpoint(listener, local);
  platform::ListenOn(listener, 0);
  RelaySocket first;
  ASSERT_TRUE(first.Create(kTcp, 0));
  ASSERT_TRUE(first.Connect(kLoopback, local.Port));
  RelaySocket socket;
  ASSERT_TRUE(socket.Create(kTcp, 0));
  socket.SetConnectTimeoutMs(300);
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(socket.Connect(kLoopback, local.Port));
  auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(socket.LastError(), ETIMEDOUT);
  EXPECT_GE(took, 280ms);
  EXPECT_LT(took, 3s);
  EXPECT_EQ(socket.State(), RelayStateCreated);
  platform::CloseSocket(listener);
}

// A listener on 127.0.0.1 and a client of the same type aimed at it.
void ListenAndConnect(int32_t type, RelaySocket& listener, RelaySocket& client) {
  ASSERT_TRUE(listener.Create(type, 0));
  ASSERT_TRUE(listener.Listen(0, 1, platform::kLoopbackAddress));
  ASSERT_TRUE(client.Create(type, 0));
  ASSERT_TRUE(client.Connect(kLoopback, listener.LocalEndpoint().Port));
}

TEST(RelaySocket, TcpListenerRefusesConnectionsByDefault) {
  RelaySocket listener, client;
  ASSERT_NO_FATAL_FAILURE(ListenAndConnect(kTcp, listener, client));
  // Accepted, then shut down and closed at once: the client sees the end.
  EXPECT_TRUE(Eventually([&] { return !client.IsConnected(); }));
  listener.Close();
  EXPECT_EQ(listener.State(), RelayStateClosed);
}

TEST(RelaySocket, UdpListenerQueuesLinesAndAnswersWithEachEnding) {
  RelaySocket listener, sender;
  ASSERT_NO_FATAL_FAILURE(ListenAndConnect(kUdp, listener, sender));
  for (const char* datagram : {"ab\nc", "d\r\nef", "g\n"})
    ASSERT_EQ(sender.SendString(datagram), static_cast<long>(std::strlen(datagram)));
  ASSERT_TRUE(Eventually([&] { return listener.QueuedBytes() == 11; }));
  // A line may start where a read left a block, and span blocks.
  uint8_t first = 0;
  EXPECT_EQ(listener.ReadQueued(&first, 1), 1u);
  std::u16string line;
  for (const char16_t* expected : {u"b\n", u"cd\r\n", u"efg\n"}) {
    EXPECT_TRUE(listener.ReadQueuedLine(line));
    EXPECT_EQ(line, expected);
  }

  // Replies go to the last sender: the sender's own worker queues them, and
  // its lines end as the mode says (mode 0: at a NUL; mode 3 sends nothing,
  // and with nothing queued no line is read and the text is emptied).
  for (auto [mode, sent, wire] :
       {std::tuple{0, 2L, std::u16string(u"x\0", 2)}, {1, 3L, u"x\r\n"}, {2, 2L, u"x\n"}, {3, 0L, u""}}) {
    listener.SetLineEnding(mode);
    sender.SetLineEnding(mode);
    EXPECT_EQ(listener.SendLine("x"), sent) << mode;
    ASSERT_TRUE(Eventually([&] { return sender.QueuedBytes() == wire.size(); })) << mode;
    EXPECT_EQ(sender.ReadQueuedLine(line), sent > 0) << mode;
    EXPECT_EQ(line, wire) << mode;
  }
}

// The program's state with the network relay in place, aimed at a port of
// 127.0.0.1.
struct RelayedState {
  explicit RelayedState(uint16_t port, bool tcp = true, bool enabled = true) {
    state.View = &view;
    // As the IP Relay page stores them.
    StoreIpRelayFields({{u"127", u"0", u"0", u"1"}, core::DecimalText(port), tcp}, state.Data);
    state.Data.EnableTCPIPrelay = enabled ? 1 : 0;
    InstallNetworkRelay(state);
  }
  std::string Status() const { return Narrow(state.Screen.Status()); }
  // The boxes shown so far as "title|text", one a line.
  std::string Boxes() {
    std::string text;
    for (const auto& box : view.Boxes()) text += Narrow(box.title) + "|" + Narrow(box.text) + "\n";
    return text;
  }
  void Dispatch(const std::string& bytes) {
    rx::DispatchReceivedData(state, *state.PublishedRx.Load(), Bytes(bytes),
                             static_cast<uint32_t>(bytes.size()));
  }

  core::AppState state;
  testing::RecordingFrontEnd view;
};

TEST(NetworkRelay, EveryBlockReachesTheServerInOrder) {
  constexpr size_t kBytes = 10 << 20;
  std::string stream(kBytes, '\0');  // every byte value
  for (size_t i = 0; i < kBytes; ++i) stream[i] = static_cast<char>((i * 7 + i / 251) & 0xff);
  for (bool tcp : {true, false}) {
    LoopbackServer server(tcp ? SocketKind::kStream : SocketKind::kDatagram);
    RelayedState relayed(server.Port(), tcp);
    app::ToggleRelay(relayed.state);
    ASSERT_TRUE(relayed.state.RelayActive) << relayed.Status();
    // Blocks of varying size.
    for (size_t offset = 0, size = 1; offset < kBytes; size = size % 8192 + 997) {
      size_t n = std::min(size, kBytes - offset);
      relayed.Dispatch(stream.substr(offset, n));
      offset += n;
      // A datagram the server has no room for is dropped by the kernel:
      // keep the UDP sender one block ahead of it.
      if (!tcp) {
        ASSERT_TRUE(server.WaitFor(offset)) << offset;
      }
    }
    ASSERT_TRUE(server.WaitFor(kBytes)) << tcp;
    EXPECT_TRUE(server.Received() == stream) << "tcp " << tcp;
  }
}

// RELAY on and off, and the page's Test button, for each kind of server.
TEST(NetworkRelay, ActivationDeactivationAndTestButtonTexts) {
  LoopbackServer server(SocketKind::kStream);
  const uint16_t closed = ClosedPort();
  struct Case {
    const char* what;
    uint16_t port;
    bool tcp, enabled, stays;
    std::string status, boxes;  // the Test button's box, then any of the activation
  };
  const std::string opened = "TCP/IP relay.\r\nConnection opened to [127.0.0.1:";
  const std::string connected = "IP Relay|CONNECTED !   Sent: \"R U there?\" message.\n";
  const Case cases[] = {
      {"TCP server", server.Port(), true, true, true, opened + std::to_string(server.Port()) + "]",
       connected},
      {"UDP with nothing listening", closed, false, true, true, opened + std::to_string(closed) + "]",
       connected},
      {"TCP server down", closed, true, true, false, "TCP/IP relay.\r\n",
       "IP Relay|Failed to connect to server: [127.0.0.1]  WSA error code=111 (0x6f) [Connection refused]\n"
       "IP Relay|Failed to connect to server: [127.0.0.1]   WSA error code=111 (0x6f) [Connection "
       "refused]\n"},
      {"nothing enabled", closed, true, false, false,
       "RELAY deactivated.\r\nNothing to do.\r\nGoto -> Edit : Receive Options : Relay tab", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RelayedState relayed(c.port, c.tcp, c.enabled);
    if (c.enabled) TestRelayServer(relayed.state);
    app::ToggleRelay(relayed.state);
    EXPECT_EQ(relayed.state.RelayActive, c.stays);
    EXPECT_EQ(relayed.state.Screen.IsButtonPressed(core::cmd::kRelay), c.stays);
    EXPECT_EQ(relayed.Status(), c.status);
    EXPECT_EQ(relayed.Boxes(), c.boxes);
    auto session = NetworkRelayOf(relayed.state)->Load();
    EXPECT_EQ(session != nullptr, c.stays);
    if (!c.stays) continue;
    app::ToggleRelay(relayed.state);
    EXPECT_EQ(relayed.Status(),
              "TCP/IP relay deactivated.\r\nConnection closed to [127.0.0.1:" + std::to_string(c.port) + "]");
    EXPECT_EQ(NetworkRelayOf(relayed.state)->Load(), nullptr);
    EXPECT_FALSE(session->Socket->IsConnected());
  }
  ASSERT_TRUE(server.WaitFor(10));
  EXPECT_EQ(server.Received(), "R U there?");
}

TEST(NetworkRelay, ServerClosingMidStreamLeavesRelayOnWithSendFailure) {
  LoopbackServer server(SocketKind::kStream, 1);
  RelayedState relayed(server.Port());
  app::ToggleRelay(relayed.state);
  ASSERT_TRUE(relayed.state.RelayActive);
  // One block larger than both ends' buffers: the server goes during it.
  // SIGPIPE would end the test program here.
  const std::string big(32 << 20, 'b');
  RelaySendBlock(relayed.state, Bytes(big), static_cast<uint32_t>(big.size()));
  const std::string status = relayed.Status();
  const std::string prefix = "Failed to send data to server: [127.0.0.1:" + std::to_string(server.Port()) +
                             "], nSentbytes=4294967295.  WSA error code=";
  EXPECT_TRUE(status == prefix + "32 (0x20) [Broken pipe]" ||
              status == prefix + "104 (0x68) [Connection reset by peer]")
      << status;
  EXPECT_TRUE(relayed.state.RelayActive);
  // The socket's worker sees the end and stops, nothing spins on the dead
  // socket; later blocks are neither sent nor reported.
  auto session = NetworkRelayOf(relayed.state)->Load();
  EXPECT_TRUE(Eventually([&] { return session->Socket->State() == RelayStateClosed; }));
  relayed.state.Screen.SetStatus(u"");
  relayed.Dispatch("later");
  EXPECT_EQ(relayed.Status(), "");
  EXPECT_TRUE(session->Socket->Create(kTcp, 0));  // the old descriptor is released
}

TEST(RelayPage, FieldsClampAndFollowTheirSettings) {
  struct Case {
    std::u16string typed;
    uint32_t lastSeen;
    std::optional<std::u16string> written;  // none: left as typed
  };
  const Case cases[] = {{u"12", 12, {}}, {u"", 5, u"0"}, {u"99999999999", 9, u"255"}, {u"1a", 0, u"1"}};
  for (const Case& c : cases) {
    uint32_t last = c.lastSeen;
    EXPECT_EQ(ClampedFieldText(c.typed, last, kOctetMaximum), c.written) << Narrow(c.typed);
  }
  core::DataSettings data;
  IpRelayFields fields{{u"192", u"168", u"0", u"12345678"}, u"8080", false};
  StoreIpRelayFields(fields, data);
  EXPECT_EQ(data.IP[3], u"1234567");
  EXPECT_EQ(data.Relay_SocketType_TCP * 10 + data.Relay_SocketType_UDP, 1);
  EXPECT_EQ(ReadIpRelayFields(data).Port, u"8080");
  EXPECT_FALSE(ReadIpRelayFields(data).Tcp);
  // The label follows the box while RELAY is off; the box and the button: tests/qt/dialogs_test.
  EXPECT_TRUE(RelayControls(true, false).Label);
  EXPECT_FALSE(RelayControls(false, false).Label || RelayControls(true, true).Label);
}

}  // namespace
}  // namespace wavetrace::relay
