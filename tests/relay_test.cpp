// The relay socket against servers on 127.0.0.1, the network relay that
// forwards received blocks through it, and the relay pages' fields.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include "app/connection.h"
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

// A TCP socket connected to the port of 127.0.0.1 (or the name given).
std::unique_ptr<RelaySocket> ConnectedTcp(uint16_t port, const char* host = kLoopback,
                                          int32_t blockSize = 0) {
  auto socket = std::make_unique<RelaySocket>();
  EXPECT_TRUE(socket->Create(kTcp, blockSize));
  EXPECT_TRUE(socket->Connect(host, port)) << socket->LastError();
  return socket;
}

TEST(RelaySocket, RefusalsStoreTheirCodes) {
  LoopbackServer server(SocketKind::kStream);
  const uint8_t byte = 'x';
  struct Case {
    const char* what;
    std::function<bool(RelaySocket&)> run;  // false: the operation failed
    int code;
  };
  const Case cases[] = {
      {"connect without a socket", [](RelaySocket& s) { return s.Connect(kLoopback, 1); }, kErrorNoSocket},
      {"listen without a socket", [](RelaySocket& s) { return s.Listen(0, 1); }, kErrorNoSocket},
      {"bad type", [](RelaySocket& s) { return s.Create(3, 0); }, kErrorInvalid},
      {"second create", [](RelaySocket& s) { return s.Create(kTcp, 0) && s.Create(1, 0); }, kErrorSocketOpen},
      {"port above 65535", [](RelaySocket& s) { return s.Create(kUdp, 0) && s.Connect(kLoopback, 65536); },
       kErrorInvalid},
      {"send before connect", [&](RelaySocket& s) { return s.Create(kTcp, 0) && s.Send(&byte, 1) != -1; },
       kErrorNotConnected},
      {"send of nothing",
       [](RelaySocket& s) {
         return s.Create(kUdp, 0) && s.Connect(kLoopback, 9) && s.Send(nullptr, 1) != -1;
       },
       kErrorNoData},
      {"second TCP connect",
       [&](RelaySocket& s) {
         return s.Create(kTcp, 0) && s.Connect(kLoopback, server.Port()) &&
                s.Connect(kLoopback, server.Port());
       },
       kErrorConnected},
      {"listen when connected",
       [](RelaySocket& s) { return s.Create(kUdp, 0) && s.Connect(kLoopback, 9) && s.Listen(0, 1); },
       kErrorConnected},
      {"closed local port",
       [](RelaySocket& s) { return s.Create(kTcp, 0) && s.Connect(kLoopback, ClosedPort()); }, ECONNREFUSED},
  };
  for (const Case& c : cases) {
    RelaySocket socket;
    EXPECT_FALSE(c.run(socket)) << c.what;
    EXPECT_EQ(socket.LastError(), c.code) << c.what;
  }
}

TEST(RelaySocket, TcpByNameSendsAndQueuesWhatComesBackUpToItsLimitLosingNothing) {
  LoopbackServer server(SocketKind::kStream);
  auto socket = ConnectedTcp(server.Port(), "localhost", 16);
  socket->SetQueueLimit(64);  // four blocks of 16 bytes
  EXPECT_TRUE(socket->IsConnected());
  EXPECT_EQ(socket->SendString("hello"), 5);
  ASSERT_TRUE(server.WaitFor(5));
  EXPECT_EQ(server.Received(), "hello");
  server.Reply("first\nsecond");
  ASSERT_TRUE(Eventually([&] { return socket->QueuedBytes() == 12; }));
  uint8_t part[64];
  EXPECT_EQ(socket->ReadQueued(part, 4), 4u);
  EXPECT_EQ(std::string(part, part + 4), "firs");
  std::u16string line;
  EXPECT_TRUE(socket->ReadQueuedLine(line));
  EXPECT_EQ(line, u"t\n");
  EXPECT_FALSE(socket->ReadQueuedLine(line));
  EXPECT_EQ(line, u"");
  EXPECT_EQ(socket->ReadQueued(part, sizeof part), 6u);

  std::string sent;
  for (int i = 0; i < 100; ++i) sent += "line " + std::to_string(i) + "\n";
  server.Reply(sent);
  ASSERT_TRUE(Eventually([&] { return socket->QueuedBytes() == 64; }));
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(socket->QueuedBytes(), 64u);
  std::string got;
  while (got.size() < sent.size() && Eventually([&] { return socket->QueuedBytes() > 0; })) {
    got.append(part, part + socket->ReadQueued(part, sizeof part));
  }
  EXPECT_EQ(got, sent);
}

TEST(RelaySocket, ConnectGivesUpAtTheTimeLimit) {
  // A listener with a full backlog drops further handshakes: the connect
  // neither succeeds nor fails until the limit.
  int listener = platform::kNoSocket;
  int first = platform::kNoSocket;
  platform::Ipv4Endpoint local;
  platform::OpenSocket(SocketKind::kStream, listener);
  platform::BindTo(listener, {platform::kLoopbackAddress, 0});
  platform::LocalEndpoint(listener, local);
  platform::ListenOn(listener, 0);
  platform::OpenSocket(SocketKind::kStream, first);
  ASSERT_TRUE(platform::ConnectWithin(first, local, 1000));
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
  platform::CloseSocket(first);
  platform::CloseSocket(listener);
}

TEST(RelaySocket, TcpListenerRefusesConnectionsByDefault) {
  RelaySocket listener;
  ASSERT_TRUE(listener.Create(kTcp, 0));
  ASSERT_TRUE(listener.Listen(0, 1, platform::kLoopbackAddress));
  EXPECT_EQ(listener.State(), RelayStateListening);
  auto client = ConnectedTcp(listener.LocalEndpoint().Port);
  // Accepted, then shut down and closed at once: the client sees the end.
  EXPECT_TRUE(Eventually([&] { return !client->IsConnected(); }));
  EXPECT_EQ(listener.Send(Bytes("z"), 1), -1);
  EXPECT_EQ(listener.LastError(), kErrorNotConnected);
  listener.Close();
  EXPECT_EQ(listener.State(), RelayStateClosed);
}

TEST(RelaySocket, UdpListenerQueuesLinesAndAnswersWithEachEnding) {
  RelaySocket listener;
  ASSERT_TRUE(listener.Create(kUdp, 0));
  ASSERT_TRUE(listener.Listen(0, 0, platform::kLoopbackAddress));
  RelaySocket sender;
  ASSERT_TRUE(sender.Create(kUdp, 0));
  ASSERT_TRUE(sender.Connect(kLoopback, listener.LocalEndpoint().Port));
  for (const char* datagram : {"ab", "c\r\nde", "f\n"}) {
    ASSERT_EQ(sender.SendString(datagram), static_cast<long>(std::strlen(datagram)));
    ASSERT_TRUE(Eventually([&] { return listener.QueuedBytes() > 0; }));
  }
  ASSERT_TRUE(Eventually([&] { return listener.QueuedBytes() == 9; }));
  std::u16string line;
  EXPECT_TRUE(listener.ReadQueuedLine(line));
  EXPECT_EQ(line, u"abc\r\n");
  EXPECT_TRUE(listener.ReadQueuedLine(line));
  EXPECT_EQ(line, u"def\n");
  EXPECT_FALSE(listener.ReadQueuedLine(line));

  // Replies go to the last sender: the sender's own worker queues them.
  struct Ending {
    int32_t mode;
    long sent;
    std::string wire;
  };
  const Ending endings[] = {{0, 2, std::string("x\0", 2)}, {1, 3, "x\r\n"}, {2, 2, "x\n"}, {3, 0, ""}};
  for (const Ending& e : endings) {
    listener.SetLineEnding(e.mode);
    EXPECT_EQ(listener.SendLine("x"), e.sent) << e.mode;
    ASSERT_TRUE(Eventually([&] { return sender.QueuedBytes() == e.wire.size(); })) << e.mode;
    std::string got(e.wire.size(), '?');
    sender.ReadQueued(reinterpret_cast<uint8_t*>(got.data()), static_cast<long>(got.size()));
    EXPECT_EQ(got, e.wire) << e.mode;
  }
  sender.SetLineEnding(0);  // mode 0 reads lines up to a NUL
  listener.SetLineEnding(0);
  listener.SendLine("one");
  ASSERT_TRUE(Eventually([&] { return sender.QueuedBytes() == 4; }));
  EXPECT_TRUE(sender.ReadQueuedLine(line));
  EXPECT_EQ(line, std::u16string(u"one\0", 4));
}

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
  std::string status = relayed.Status();
  std::string prefix = "Failed to send data to server: [127.0.0.1:" + std::to_string(server.Port()) +
                       "], nSentbytes=4294967295.  WSA error code=";
  EXPECT_EQ(status.substr(0, prefix.size()), prefix);
  EXPECT_TRUE(status.find("=32 (0x20) [Broken pipe]") != std::string::npos ||
              status.find("=104 (0x68) [Connection reset by peer]") != std::string::npos)
      << status;
  EXPECT_TRUE(relayed.state.RelayActive);
  // The socket's worker sees the end and stops, nothing spins on the dead
  // socket; later blocks are neither sent nor reported.
  auto session = NetworkRelayOf(relayed.state)->Load();
  EXPECT_TRUE(Eventually([&] { return session->Socket->State() == RelayStateClosed; }));
  relayed.state.Screen.SetStatus(u"");
  relayed.Dispatch("later");
  EXPECT_EQ(relayed.Status(), "");
  EXPECT_EQ(session->Socket->Send(Bytes("z"), 1), -1);
  EXPECT_EQ(session->Socket->LastError(), kErrorNotConnected);
  EXPECT_TRUE(session->Socket->Create(kTcp, 0));  // the old descriptor is released
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
    RelayPageControls controls = RelayControls(ticked, active);
    EXPECT_EQ(controls.Button, label);
    EXPECT_EQ(controls.Label, label);
    EXPECT_EQ(controls.EnableBox, !active);
  }
}

}  // namespace
}  // namespace wavetrace::relay
