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
      codes.push_back(m.Code);
      if (m.Code == kWmCommand && m.WParam == cmd::kExit) queue.PostQuit(7);
      return m.WParam * 2;
    });
  }
  MessageQueue queue;
  std::vector<uint32_t> codes;
};

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

// That a worker's call runs on the main thread and waits for it:
// ReportingTest.WorkerBoxShownByTheMainThreadWhileTheMainThreadAllocates and the headless scan; the
// repeating timers: Headless.AReconnectingRunWaitsIdleForItsDeviceAndTakesItBackUntilStop.
TEST_F(MessageQueueTest, ServingOnlySendsLeavesPostsQueuedAndShutdownReleasesAWaitingSender) {
  EXPECT_EQ(queue.Send(MakeMessage(kWmCommand, 21)), 42);  // on the main thread: at once
  queue.Post(MakeMessage(kWmRxEnded));
  auto result = std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 3)); });
  while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
    queue.DispatchPendingSends();
  EXPECT_EQ(result.get(), 6);
  EXPECT_EQ(codes, (std::vector<uint32_t>{kWmCommand, kWmRxActive}));
  queue.DispatchPending();
  EXPECT_EQ(codes, (std::vector<uint32_t>{kWmCommand, kWmRxActive, kWmRxEnded}));

  // A sender waiting at the shutdown gets 0 and its message never runs.
  result = std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 5)); });
  EXPECT_EQ(result.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  queue.BeginShutdown();
  EXPECT_EQ(result.get(), 0);
  queue.DispatchPending();
  EXPECT_EQ(codes.size(), 3u);
  // Later senders do not wait at all.
  EXPECT_EQ(std::async(std::launch::async, [this] { return queue.Send(MakeMessage(kWmRxActive, 1)); }).get(),
            0);
}

}  // namespace
}  // namespace wavetrace::core
