// The rules of the Port Scan page (communication properties) and the
// Configure Button page (transmit options), without a window.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "app/button_page.h"
#include "app/port_scan_page.h"
#include "core/messages.h"

namespace wavetrace::app {
namespace {

using automation::ButtonKind;
namespace strip = core::strip;

TEST(PortScanPage, HoldsTheIntervalKeepsTheStripsTxAndCancelPutsTheCustomRateBack) {
  core::AppState state;
  state.Psm.PsmScanInterval = 99;
  state.Psm.PsmSendOnOpen = 1;
  PortScanPage page = OpenPortScanPage(state);
  EXPECT_EQ(page.Values.PsmScanInterval, 60);
  state.Port.CustomBauds_count = 1;  // changed on another page meanwhile
  state.Port.CustomBaud_01 = 31250;
  CancelPortScanPage(state, page);
  EXPECT_EQ(state.Port.CustomBauds_count + state.Port.CustomBaud_01, 0u);
  page.Values = {1, 0, 1, 1, 0, 0, 0};
  ApplyPortScanPage(state, page);
  EXPECT_EQ(state.Psm, (core::PortScanSettings{1, 0, 1, 1, 0, 1, 1}));
  EXPECT_TRUE(state.Screen.StripShown(strip::kPsmStrip));
}

TEST(ButtonPage, ShowsAndWritesTheChosenButtonWithinItsRangeAndLimits) {
  EXPECT_EQ(ButtonStringChoices({u"ATZ"}, false),
            (std::vector<std::u16string>{u"ATZ", u"{PLAY}", u"{STOP}", u"{CLEAR_RECEIVE_WINDOW}",
                                         u"{EXIT_PROGRAM}"}));
  EXPECT_EQ(ButtonStringChoices({}, true).front(), u"{SCREEN_OFF}");

  TransmitOptionValues values;
  values.HardwareButtonData = {u"h1", u"h2", u"h3", u"h4"};
  values.SoftwareButtonData = {u"s1", u"s2", u"s3", u"s4", u"s5", u"s6"};
  values.SoftwareButtonCaption = {u"c1", u"c2", u"c3", u"c4", u"c5", u"c6"};
  ButtonPage page(values);
  // Kind and number asked for, then the counter, string and caption shown.
  for (auto [kind, number, shown] : {std::tuple{ButtonKind::kHardware, 1, u" 1 / 4 h1 c1"},
                                     {ButtonKind::kHardware, 9, u" 4 / 4 h4 c4"},
                                     {ButtonKind::kSoftware, 6, u" 6 / 6 s6 c6"},
                                     {ButtonKind::kHardware, 6, u" 4 / 4 h4 c4"},
                                     {ButtonKind::kSoftware, 0, u" 1 / 6 s1 c1"}}) {
    page.SetKind(kind);
    page.SetNumber(number);
    EXPECT_EQ(page.Counter() + u" " + page.String() + u" " + page.Caption(), shown);
    EXPECT_EQ(page.CaptionEditable(), kind == ButtonKind::kSoftware);
  }
  page.SetNumber(2);
  page.SetString(std::u16string(600, u'x'));
  page.SetCaption(u"Caption 123");
  page.SetKind(ButtonKind::kHardware);
  page.SetCaption(u"ignored");
  EXPECT_EQ(values.SoftwareButtonData[1], std::u16string(kButtonStringChars, u'x'));
  EXPECT_EQ(values.SoftwareButtonCaption[1], u"Caption 1");
}

}  // namespace
}  // namespace wavetrace::app
