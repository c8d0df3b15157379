#include <gtest/gtest.h>

#include <array>

#include "core/allocation.h"
#include "rx/log_cache.h"
#include "rx/receive_window.h"
#include "test_support.h"

namespace wavetrace::rx {
namespace {

class ReceiveWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    state.View = &view;
    ASSERT_EQ(core::AllocWideBuffer(state, state.g_RxWindowBuf, core::kRxWindowBufChars), 0);
    ASSERT_EQ(AllocLogCache(state), 0);
  }
  static std::u16string Pattern(size_t n, char16_t first = u'a') {
    std::u16string text(n, u' ');
    for (size_t i = 0; i < n; ++i) text[i] = static_cast<char16_t>(first + i % 26);
    return text;
  }
  void Append(const std::u16string& text) {
    AppendToRxWindowBuf(state, core::RxSettingsOf(state), text.c_str());
  }

  core::AppState state;
  testing::RecordingFrontEnd view;
};

TEST_F(ReceiveWindowTest, AppendingKeepsWhatFits) {
  Append(u"abc");
  state.Data.PauseRxDisplay = 1;
  Append(u"lost");
  state.Data.PauseRxDisplay = 0;
  Append(u"def");
  // Text stops at its first zero, as a string copy does.
  AppendToRxWindowBuf(state, core::RxSettingsOf(state), u"gh\0ij");
  EXPECT_EQ(WaitingText(state), u"abcdefgh");
  // An oversized block keeps its fixed middle slice.
  std::u16string big = Pattern(20000, u'A');
  Append(big);
  EXPECT_EQ(WaitingText(state), big.substr(8192, 4096));
}

TEST_F(ReceiveWindowTest, OverflowMovesBytesNotCharacters) {
  std::u16string old = Pattern(16300);
  std::u16string added = Pattern(100, u'A');
  Append(old);
  Append(added);
  std::u16string waiting = WaitingText(state);
  // The front half of the kept 16200 characters moved down by 100; the rest
  // still holds what stood there before; then the new text.
  EXPECT_EQ(waiting.substr(0, 8100), old.substr(100, 8100));
  EXPECT_EQ(waiting.substr(8100, 8100), old.substr(8100, 8100));
  EXPECT_EQ(waiting.substr(16200), added);
  // A block as long as what waits replaces it all.
  Append(Pattern(16300, u'0'));
  EXPECT_EQ(WaitingText(state), Pattern(16300, u'0'));
}

TEST_F(ReceiveWindowTest, RefreshArithmetic) {
  // Shown and waiting characters, then shown afterwards and dropped from the front.
  const std::array<int32_t, 4> cases[] = {
      {0, 100, 100, 0},           {16000, 384, 16384, 0},     {10000, 7000, 8808, 8192},
      {16000, 9000, 16000, 9000}, {5000, 16384, 16384, 5000},
  };
  for (auto [shown, waiting, shownAfter, dropped] : cases) {
    state.Screen.RxClear();
    std::u16string shownText = Pattern(static_cast<size_t>(shown), u'a');
    state.Screen.RxInsertAtCaret(shownText);
    state.Screen.SetShownCount(shown);
    std::u16string waitingText = Pattern(static_cast<size_t>(waiting), u'A');
    Append(waitingText);
    RefreshReceiveWindow(state, core::RxSettingsOf(state));
    EXPECT_EQ(state.Screen.ShownCount(), shownAfter) << shown << "+" << waiting;
    std::u16string expected =
        waiting >= 16384 ? waitingText : shownText.substr(static_cast<size_t>(dropped)) + waitingText;
    EXPECT_EQ(state.Screen.RxText(), expected) << shown << "+" << waiting;
    EXPECT_TRUE(WaitingText(state).empty());
    EXPECT_TRUE(state.Screen.RxRedraw());
  }
}

TEST_F(ReceiveWindowTest, SixRefreshesThenOneFlushAndNothingWhileClosed) {
  int countdown = kRefreshCountdown;
  Append(u"x");
  RxWndUpdateCycle(state, countdown);
  EXPECT_TRUE(state.Screen.RxText().empty());  // no port: nothing, the countdown included

  state.PortOpen = true;
  const uint8_t record[] = "log";
  for (int cycle = 0; cycle < 7; ++cycle) {
    AppendToLogCache(state, record, 3);
    Append(u"y");
    RxWndUpdateCycle(state, countdown);
    bool flushCycle = cycle == 6;
    EXPECT_EQ(state.DataLogCacheCount == 0, flushCycle) << cycle;
    EXPECT_EQ(WaitingText(state).empty(), !flushCycle) << cycle;
  }
  EXPECT_EQ(countdown, kRefreshCountdown);
  EXPECT_EQ(state.Screen.RxText(), u"xyyyyyy");
}

TEST_F(ReceiveWindowTest, LogCacheOverflowWarnsAndDropsEverything) {
  std::vector<uint8_t> block(65000, 'a');
  EXPECT_EQ(AppendToLogCache(state, block.data(), 65000), 0);
  EXPECT_EQ(state.DataLogCacheCount, 65000u);
  std::vector<uint8_t> more(535, 'b');
  EXPECT_EQ(AppendToLogCache(state, more.data(), 535), 1);
  EXPECT_EQ(state.DataLogCacheCount, 0u);
  ASSERT_EQ(view.Boxes().size(), 1u);
  EXPECT_EQ(view.Boxes()[0].text.rfind(u"Warning!  MAXcachesize reached.", 0), 0u);
  // A zero byte cuts the copy but not the count.
  const uint8_t withZero[] = {'x', 0, 'y'};
  EXPECT_EQ(AppendToLogCache(state, withZero, 3), 0);
  EXPECT_EQ(state.DataLogCacheCount, 3u);
  EXPECT_STREQ(reinterpret_cast<const char*>(state.DataLogCache.Data()), "x");
}

}  // namespace
}  // namespace wavetrace::rx
