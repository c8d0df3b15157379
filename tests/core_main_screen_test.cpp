#include <gtest/gtest.h>

#include "core/main_screen.h"

namespace wavetrace::core {
namespace {

using Kind = ScreenEvent::Kind;

// Replays the receive-window events on a copy, as a view does.
std::u16string Replay(std::u16string text, const std::vector<ScreenEvent>& events) {
  for (const auto& e : events) {
    if (e.Type == Kind::kRxEdit)
      text.replace(static_cast<size_t>(e.From), static_cast<size_t>(e.To - e.From), e.Text);
    if (e.Type == Kind::kRxReset) text = e.Text;
  }
  return text;
}

TEST(ReceiveWindow, EditingLikeAnEditControlAndOneResetForAViewFarBehind) {
  MainScreen screen;
  screen.SetEventsEnabled(true);
  screen.RxInsertAtCaret(u"Hello");
  screen.RxSetCaretToEnd();
  // The caret, a selection (reversed, or ending beyond the text) or all (-1) is replaced; the caret
  // then stands after the new text.
  struct Edit {
    int32_t from, to, caret;
    std::u16string text, expected;
  };
  for (const auto& e : {Edit{5, 5, 11, u" world", u"Hello world"}, Edit{0, 5, 0, u"", u" world"},
                        Edit{3, 1, 2, u"-", u" -rld"}, Edit{2, 999, 3, u"!", u" -!"},
                        Edit{-1, 0, 7, u"all new", u"all new"}}) {
    if (e.from != 5) e.from < 0 ? screen.RxSelectAll() : screen.RxSetSelection(e.from, e.to);
    screen.RxReplaceSelection(e.text);
    EXPECT_EQ(screen.RxText(), e.expected) << e.from << "," << e.to;
    EXPECT_EQ(screen.RxSelection(), (std::pair{e.caret, e.caret})) << e.from << "," << e.to;
  }
  // Insert at caret clears a selection first.
  screen.RxSetSelection(0, 3);
  screen.RxInsertAtCaret(u"+");
  EXPECT_EQ(screen.RxText(), u"all+ new");
  EXPECT_EQ(Replay(u"", screen.TakeEvents()), u"all+ new");
  EXPECT_TRUE(screen.TakeEvents().empty());

  // A view that falls far behind gets one reset instead.
  screen.SetStatus(u"s1");
  std::u16string chunk(64 * 1024, u'x');
  for (int i = 0; i < 200; ++i) screen.RxInsertAtCaret(chunk);
  screen.SetStatus(u"s2");
  auto events = screen.TakeEvents();
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(events.back().Type, Kind::kRxReset);
  EXPECT_EQ(std::count_if(events.begin(), events.end(), [](auto& e) { return e.Type == Kind::kStatus; }), 2);
  EXPECT_EQ(Replay(u"all+ new", events), screen.RxText());
}

TEST(ScreenModel, ButtonsMenusAndTransmitField) {
  MainScreen screen;
  // Without a view no events are kept.
  screen.SetStatus(u"x");
  screen.RxInsertAtCaret(u"y");
  EXPECT_TRUE(screen.TakeEvents().empty());
  screen.SetEventsEnabled(true);
  screen.EnableButton(6001, false);
  screen.SetButtonPressed(6003, true);
  screen.GreyMenuItem(221, true);
  screen.CheckMenuItem(8102, true);
  // Changes in a row collapse into one re-read for the view (which then shows them:
  // MainWindow.StartUpShowsTheWelcomeTextTitleStatusAndTheModelsControls; that every change is told:
  // Headless.AReconnectingRunWaitsIdleForItsDeviceAndTakesItBackUntilStop).
  EXPECT_EQ(screen.TakeEvents().size(), 1u);

  screen.SetTxHistory({u"AT", u"ATZ"});
  screen.SetTxText(u"typed");
  screen.SetTxSelection(1);
  EXPECT_EQ(std::pair(screen.TxSelection(), screen.TxText()), std::pair(1, std::u16string(u"ATZ")));
  screen.SetTxSelection(5);  // no entry chosen: the field keeps its text
  EXPECT_EQ(std::pair(screen.TxSelection(), screen.TxText()), std::pair(-1, std::u16string(u"ATZ")));
}

}  // namespace
}  // namespace wavetrace::core
