#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "core/allocation.h"
#include "core/clipboard.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "test_support.h"

namespace wavetrace::core {
namespace {

TEST(FormatErrorCode, CodeInDecimalAndHexWithDescriptions) {
  using platform::kLockPortOperation;
  using platform::kOpenPortOperation;
  // The failure, the text's start, and whether it says busy or gone and how to join dialout.
  using Case = std::tuple<platform::SysResult, std::u16string, bool, bool>;
  for (const auto& [failure, head, busy, dialoutHint] :
       {Case{{ENOENT, kOpenPortOperation}, u": Error code=2 (0x2)", false, false},
        Case{{EBUSY, kOpenPortOperation}, u": Error code=16 (0x10)", true, false},
        Case{{EWOULDBLOCK, kLockPortOperation}, u": Error code=11 (0xb)", true, false},
        Case{{EWOULDBLOCK, "read"}, u": Error code=11 (0xb)", false, false},
        Case{{ENODEV, "read"}, u": Error code=19 (0x13)", true, false},
        Case{{ENXIO, kOpenPortOperation}, u": Error code=6 (0x6)", true, false},
        Case{{EIO, "read"}, u": Error code=5 (0x5)", true, false},
        Case{{EACCES, kOpenPortOperation}, u": Error code=13 (0xd)", false, true},
        Case{{EACCES, "rename"}, u": Error code=13 (0xd)", false, false}}) {
    std::u16string text = FormatErrorCode(failure);
    SCOPED_TRACE(std::to_string(failure.Errno) + " " + failure.Operation);
    EXPECT_EQ(text.rfind(head, 0), 0u);
    EXPECT_EQ(text.find(u"  Desc: The specified network resource or device is either busy or no longer "
                        u"available.") != std::u16string::npos,
              busy);
    // The system's own words, once, in brackets.
    std::u16string words = u" (" + core::Utf8ToWide(platform::ErrorText(failure.Errno)) + u")";
    EXPECT_NE(text.find(words), std::u16string::npos);
    EXPECT_EQ(text.find(words), text.rfind(words));
    EXPECT_EQ(text.find(u"sudo usermod -aG dialout $USER") != std::u16string::npos, dialoutHint);
  }
  EXPECT_EQ(FormatErrorCode({0, "line setting"}), u": Error code=0 (0x0)");
}

class ReportingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    state.View = &view;
    state.MainWindowExists = true;
  }
  AppState state;
  testing::RecordingFrontEnd view;
};

// The texts with their codes: ReceivePathTest (status line) and ProgramOptionsTest (box).
TEST_F(ReportingTest, StatusErrorErrorBoxAndErrorBlock) {
  // Both are bounded like their buffers; the status error leaves the receive window alone.
  ShowStatusError(state, std::u16string(600, u'x'), {});
  EXPECT_EQ(state.Screen.Status().size(), 511u);
  EXPECT_TRUE(state.Screen.RxText().empty());
  ShowErrorBox(state, std::u16string(600, u'x'), platform::OutOfMemory());
  ASSERT_EQ(view.Boxes().size(), 1u);
  EXPECT_EQ(view.Boxes()[0].text.size(), 255u);

  // The error block is framed at the caret; before the window exists it goes nowhere.
  const std::u16string code = FormatErrorCode({ENOENT, "open"});
  state.Screen.RxInsertAtCaret(u"AB");
  state.Screen.RxSetSelection(1, 1);
  WriteErrorBlock(state, u"Oops", {ENOENT, "open"});
  EXPECT_EQ(state.Screen.RxText(), u"A\r\n***\r\nOops" + code + u"\r\n***\r\nB");
  AppState early;
  WriteErrorBlock(early, u"Oops", {ENOENT, "open"});
  EXPECT_TRUE(early.Screen.RxText().empty());

  // In port scan mode a status error is all the receive window shows.
  state.Screen.SetStatus(u"before");
  state.PortScanMode = true;
  ShowStatusError(state, u"Scan failed", {ENOENT, "open"});
  EXPECT_EQ(state.Screen.RxText(), u"Scan failed" + code + u"\r\n");
  EXPECT_EQ(state.Screen.Status(), u"before");
}

TEST_F(ReportingTest, AllocationZeroFillsAndAFailureWritesBothBlocksWithTheCountAsked) {
  CharBuffer bytes;
  WideBuffer wide;
  ASSERT_EQ(AllocCharBuffer(state, bytes, 10) + AllocWideBuffer(state, wide, 5), 0);
  for (size_t i = 0; i < 12; ++i) EXPECT_EQ(bytes[i] + (i < 7 ? wide[i] : 0), 0) << i;  // two spare elements
  // A failed request leaves the buffer empty; a wide one reports characters, not bytes.
  const std::u16string code = FormatErrorCode(platform::OutOfMemory()) + u"\r\n***\r\n";
  for (const auto& [isWide, count, requested] :
       {std::tuple<bool, int64_t, std::u16string>{false, -1, u"Requested Cbytes=[-1]"},
        {false, kMaxAllocationBytes + 1, u"Requested Cbytes=[268435457]"},
        {true, kMaxAllocationBytes / 2 + 1, u"Requested Tbytes=[134217729]"}}) {
    state.Screen.RxClear();
    ASSERT_EQ(AllocCharBuffer(state, bytes, 4) + AllocWideBuffer(state, wide, 4), 0);
    EXPECT_EQ(isWide ? AllocWideBuffer(state, wide, count) : AllocCharBuffer(state, bytes, count), 1);
    EXPECT_TRUE(isWide ? wide.Empty() : bytes.Empty());
    EXPECT_EQ(state.Screen.RxText(), u"\r\n***\r\nError allocating memory space. Possibly low on memory." +
                                         code + u"\r\n***\r\n" + requested + code);
  }
}

TEST_F(ReportingTest, WorkerBoxShownByTheMainThreadWhileTheMainThreadAllocates) {
  // The box of a worker is shown by the main thread; the worker holds the
  // memory lock until the box is dismissed, so no block is handed out while it
  // is up. A main thread that wants the lock must serve the box instead of
  // blocking, or both wait forever.
  view.needsMainThread = true;
  state.Queue.BindMainThread();
  state.MemLock.SetMainThread(std::this_thread::get_id());
  state.MemLock.SetMainThreadWaitHook([this] { state.Queue.DispatchPendingSends(); });
  std::thread::id shownOn;
  view.onBox = [&] { shownOn = std::this_thread::get_id(); };
  std::thread worker([&] { ShowErrorBox(state, u"Error reading", {}); });
  // Wait until the worker holds the lock (the box request is queued); a box that never takes it ends the
  // run here.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (state.MemLock.try_lock()) {
    state.MemLock.unlock();
    if (std::chrono::steady_clock::now() > deadline) std::abort();
    std::this_thread::yield();
  }
  CharBuffer block;
  EXPECT_EQ(AllocCharBuffer(state, block, 16), 0);
  worker.join();
  EXPECT_EQ(shownOn, std::this_thread::get_id());
  EXPECT_EQ(view.Boxes().size(), 1u);
}

// With a window the text reaches the clipboard: MainWindow.ButtonsFieldsClipboardAndFullscreenTalkToTheModel.
TEST_F(ReportingTest, ClipboardNeedsAWindow) {
  view.windowExists = false;
  EXPECT_EQ(CopyTextToClipboard(state, u"again"), 0);
  EXPECT_TRUE(view.clipboard.empty());
  AppState noView;
  EXPECT_EQ(CopyTextToClipboard(noView, u"x"), 0);
}

}  // namespace
}  // namespace wavetrace::core
