#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include "loopback_server.h"
#include "relay/relay_socket.h"

namespace wavetrace::relay {
namespace {

using namespace std::chrono_literals;
using platform::SocketKind;
using testing::ClosedPort;
using testing::LoopbackServer;

constexpr char kLoopback[] = "127.0.0.1";

template <typename Condition>
bool Eventually(Condition condition, std::chrono::milliseconds limit = 5s) {
  auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(2ms);
  }
  return true;
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
      {"second create", [](RelaySocket& s) { return s.Create(RelaySocket::kTcp, 0) && s.Create(1, 0); },
       kErrorSocketOpen},
      {"port above 65535",
       [](RelaySocket& s) { return s.Create(RelaySocket::kUdp, 0) && s.Connect(kLoopback, 65536); },
       kErrorInvalid},
      {"send before connect",
       [&](RelaySocket& s) { return s.Create(RelaySocket::kTcp, 0) && s.Send(&byte, 1) != -1; },
       kErrorNotConnected},
      {"send of nothing",
       [](RelaySocket& s) {
         return s.Create(RelaySocket::kUdp, 0) && s.Connect(kLoopback, 9) && s.Send(nullptr, 1) != -1;
       },
       kErrorNoData},
      {"second TCP connect",
       [&](RelaySocket& s) {
         return s.Create(RelaySocket::kTcp, 0) && s.Connect(kLoopback, server.Port()) &&
                s.Connect(kLoopback, server.Port());
       },
       kErrorConnected},
      {"listen when connected",
       [](RelaySocket& s) {
         return s.Create(RelaySocket::kUdp, 0) && s.Connect(kLoopback, 9) && s.Listen(0, 1);
       },
       kErrorConnected},
      {"closed local port",
       [](RelaySocket& s) { return s.Create(RelaySocket::kTcp, 0) && s.Connect(kLoopback, ClosedPort()); },
       ECONNREFUSED},
  };
  for (const Case& c : cases) {
    RelaySocket socket;
    EXPECT_FALSE(c.run(socket)) << c.what;
    EXPECT_EQ(socket.LastError(), c.code) << c.what;
  }
}

TEST(RelaySocket, TcpByNameSendsAndKeepsWhatComesBack) {
  LoopbackServer server(SocketKind::kStream);
  RelaySocket socket;
  ASSERT_TRUE(socket.Create(RelaySocket::kTcp, 0));
  ASSERT_TRUE(socket.Connect("localhost", server.Port())) << socket.LastError();
  EXPECT_TRUE(socket.IsConnected());
  EXPECT_EQ(socket.SendString("hello"), 5);
  ASSERT_TRUE(server.WaitFor(5));
  EXPECT_EQ(server.Received(), "hello");
  server.Reply("first\nsecond");
  ASSERT_TRUE(Eventually([&] { return socket.QueuedBytes() == 12; }));
  uint8_t part[4];
  EXPECT_EQ(socket.ReadQueued(part, sizeof part), 4u);
  EXPECT_EQ(std::string(part, part + 4), "firs");
  std::u16string line;
  EXPECT_TRUE(socket.ReadQueuedLine(line));
  EXPECT_EQ(line, u"t\n");
  EXPECT_FALSE(socket.ReadQueuedLine(line));
  EXPECT_EQ(line, u"");
  EXPECT_EQ(socket.QueuedBytes(), 6u);
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
  ASSERT_TRUE(socket.Create(RelaySocket::kTcp, 0));
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

TEST(RelaySocket, PeerThatWentAwayFailsTheSendWithoutASignal) {
  LoopbackServer server(SocketKind::kStream, 1);
  RelaySocket socket;
  ASSERT_TRUE(socket.Create(RelaySocket::kTcp, 0));
  ASSERT_TRUE(socket.Connect(kLoopback, server.Port()));
  // More than the two ends' buffers hold: the server goes while the send is
  // under way. SIGPIPE would end the test program here.
  EXPECT_EQ(socket.SendString(std::string(32 << 20, 'y')), -1);
  EXPECT_TRUE(socket.LastError() == EPIPE || socket.LastError() == ECONNRESET) << socket.LastError();
  // The worker saw the end and stopped: nothing spins on the dead socket.
  EXPECT_TRUE(Eventually([&] { return socket.State() == RelayStateClosed; }));
  EXPECT_EQ(socket.Send(reinterpret_cast<const uint8_t*>("z"), 1), -1);
  EXPECT_EQ(socket.LastError(), kErrorNotConnected);
  EXPECT_TRUE(socket.Create(RelaySocket::kTcp, 0));  // the old descriptor is released
}

TEST(RelaySocket, TcpListenerRefusesConnectionsByDefault) {
  RelaySocket listener;
  ASSERT_TRUE(listener.Create(RelaySocket::kTcp, 0));
  ASSERT_TRUE(listener.Listen(0, 1, platform::kLoopbackAddress));
  EXPECT_EQ(listener.State(), RelayStateListening);
  RelaySocket client;
  ASSERT_TRUE(client.Create(RelaySocket::kTcp, 0));
  ASSERT_TRUE(client.Connect(kLoopback, listener.LocalEndpoint().Port));
  // Accepted, then shut down and closed at once: the client sees the end.
  EXPECT_TRUE(Eventually([&] { return !client.IsConnected(); }));
  EXPECT_EQ(listener.Send(reinterpret_cast<const uint8_t*>("z"), 1), -1);
  EXPECT_EQ(listener.LastError(), kErrorNotConnected);
  listener.Close();
  EXPECT_EQ(listener.State(), RelayStateClosed);
}

TEST(RelaySocket, UdpListenerQueuesLinesAndAnswersWithEachEnding) {
  RelaySocket listener;
  ASSERT_TRUE(listener.Create(RelaySocket::kUdp, 0));
  ASSERT_TRUE(listener.Listen(0, 0, platform::kLoopbackAddress));
  RelaySocket sender;
  ASSERT_TRUE(sender.Create(RelaySocket::kUdp, 0));
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

TEST(RelaySocket, QueueStopsGrowingAtItsLimitAndLosesNothing) {
  LoopbackServer server(SocketKind::kStream);
  RelaySocket socket;
  ASSERT_TRUE(socket.Create(RelaySocket::kTcp, 16));
  socket.SetQueueLimit(64);  // four blocks of 16 bytes
  ASSERT_TRUE(socket.Connect(kLoopback, server.Port()));
  ASSERT_EQ(socket.SendString("go"), 2);
  ASSERT_TRUE(server.WaitFor(2));  // the server has its connection: it can answer
  std::string sent;
  for (int i = 0; i < 100; ++i) sent += "line " + std::to_string(i) + "\n";
  server.Reply(sent);
  ASSERT_TRUE(Eventually([&] { return socket.QueuedBytes() == 64; }));
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(socket.QueuedBytes(), 64u);
  std::string got;
  while (got.size() < sent.size()) {
    uint8_t part[64];
    if (!Eventually([&] { return socket.QueuedBytes() > 0; })) break;
    uint32_t n = socket.ReadQueued(part, sizeof part);
    got.append(part, part + n);
  }
  EXPECT_EQ(got, sent);
}

}  // namespace
}  // namespace wavetrace::relay
