#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

#include "core/message_queue.h"
#include "core/messages.h"

namespace wavetrace::core {
namespace {

class MessageQueueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    queue.BindMainThread();
    queue.SetHandler([this](const Message& m) {
      handledOn.push_back(std::this_thread::get_id());
      codes.push_back(m.Code);
      if (m.Code == kWmCommand && m.WParam == cmd::kExit) queue.PostQuit(7);
      return m.WParam * 2;
    });
  }
  MessageQueue queue;
  std::vector<std::thread::id> handledOn;
  std::vector<uint32_t> codes;
};

// A worker's call run on the main thread:
// ReportingTest.WorkerBoxShownByTheMainThreadWhileTheMainThreadAllocates.
TEST_F(MessageQueueTest, SendRunsOnTheMainThreadAndAWorkerWaits) {
  EXPECT_EQ(queue.Send(MakeMessage(kWmCommand, 21)), 42);  // on the main thread: at once
  auto result = std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 5)); });
  // Nothing runs until the main thread serves the queue.
  EXPECT_EQ(result.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) queue.DispatchPending();
  EXPECT_EQ(result.get(), 10);
  EXPECT_EQ(handledOn, std::vector<std::thread::id>(2, std::this_thread::get_id()));
}

TEST_F(MessageQueueTest, PostedMessagesKeepTheirOrderAndQuitEndsTheLoop) {
  std::thread worker([this] {
    for (int i = 0; i < 100; ++i) queue.Post(MakeMessage(kWmRxSuspended, i));
    queue.PostCommand(cmd::kExit);
    queue.Post(MakeMessage(kWmRxEnded));  // after quit: never handled
  });
  EXPECT_EQ(queue.RunLoop(), 7);
  worker.join();
  ASSERT_EQ(codes.size(), 101u);
  EXPECT_EQ(codes.back(), kWmCommand);
  EXPECT_FALSE(queue.Post(MakeMessage(kWmRxActive)));
}

TEST_F(MessageQueueTest, ServingOnlySendsLeavesPostsQueuedAndShutdownReleasesAWaitingSender) {
  queue.Post(MakeMessage(kWmRxEnded));
  auto result = std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 3)); });
  while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
    queue.DispatchPendingSends();
  EXPECT_EQ(codes, std::vector<uint32_t>{kWmRxActive});
  queue.DispatchPending();
  EXPECT_EQ(codes, (std::vector<uint32_t>{kWmRxActive, kWmRxEnded}));

  // A sender waiting at the shutdown gets 0 and its message never runs.
  result = std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 5)); });
  EXPECT_EQ(result.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  queue.BeginShutdown();
  EXPECT_EQ(result.get(), 0);
  queue.DispatchPending();
  EXPECT_EQ(codes.size(), 2u);
  // Later senders do not wait at all.
  EXPECT_EQ(std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 1)); }).get(),
            0);
}

TEST_F(MessageQueueTest, TimersFireRepeatedlyUntilKilled) {
  int ticks = 0;
  queue.SetHandler([&](const Message& m) {
    if (m.Code == kWmTimer && m.WParam == kKeepAliveTimerId && ++ticks == 3) queue.PostQuit(0);
    return int64_t{0};
  });
  queue.SetTimer(kKeepAliveTimerId, 5);
  EXPECT_GE(queue.NextTimerDelayMs(), 0);
  EXPECT_LE(queue.NextTimerDelayMs(), 5);
  queue.RunLoop();
  EXPECT_EQ(ticks, 3);
  queue.KillTimer(kKeepAliveTimerId);
  EXPECT_EQ(queue.NextTimerDelayMs(), -1);
}

}  // namespace
}  // namespace wavetrace::core
