// The rules of the Port Scan page (communication properties), the Configure
// Button page (transmit options), the receive options sheet and the ASCII
// chart, without a window.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "app/button_page.h"
#include "app/port_scan_page.h"
#include "app/receive_options.h"
#include "app/reference_screens.h"
#include "core/code_page.h"
#include "core/published_settings.h"

namespace wavetrace::app {
namespace {

using automation::ButtonKind;

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
}

TEST(ButtonPage, ShowsAndWritesTheChosenButtonWithinItsRangeAndLimits) {
  // The whole list of choices: TransmitOptions.ConfigureButtonPageOpensOnHardwareOneAndWritesEachButton.
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
                                     {ButtonKind::kSoftware, 0, u" 1 / 6 s1 c1"}}) {
    page.SetKind(kind);
    page.SetNumber(number);
    EXPECT_EQ(page.Counter() + u" " + page.String() + u" " + page.Caption(), shown);
  }
  page.SetNumber(2);
  page.SetString(std::u16string(600, u'x'));
  page.SetCaption(u"Caption 123");
  page.SetKind(ButtonKind::kHardware);
  page.SetCaption(u"ignored");
  EXPECT_EQ(values.SoftwareButtonData[1], std::u16string(kButtonStringChars, u'x'));
  EXPECT_EQ(values.SoftwareButtonCaption[1], u"Caption 1");
}

// Storing at once, Cancel after edits and OK's compacting of the rules: the
// Qt test ReceiveOptions.OpensWithTheSettingsStoresBoxesAtOnceCancelPutsBackOkApplies.
TEST(ReceiveOptionsSheet, APageNotReadyStoresNothingCancelGoesBackToTheLastApplyAndTheDelayField) {
  core::AppState state;
  state.Log.LOGtimestamp = 1;
  ReceiveOptionsSheet sheet(state);
  sheet.StoreSwitch(RxSwitch::kFilterNP, true);  // its page is not ready: ignored
  EXPECT_EQ(state.Data.FilterNP, 0);
  for (int page = 0; page < kRxOptionsPageCount; ++page) sheet.SetPageReady(static_cast<RxOptionsPage>(page));
  sheet.StoreSwitch(RxSwitch::kNonChars, true);
  EXPECT_TRUE(sheet.AddRule({}));
  sheet.Apply(u"[0D][0A]", {u"a", u"b", 0, 0, 1});
  sheet.StoreSwitch(RxSwitch::kDisableSnR, true);
  state.Log.LOGtimestamp = 0;  // the Logging page's box
  sheet.Cancel();
  EXPECT_EQ(std::tuple(state.Data.NonChars, state.Data.DisableSnR, state.Log.LOGtimestamp,
                       state.Data.SnR_count, state.Data.SnR[1].wcszSearchFor, state.Data.SnR[1].SearchLength),
            std::tuple(1, 0, 1, 1, std::u16string(u"a"), 1));
  EXPECT_TRUE(core::SettingsArePublished(state));

  // The delay field, and its up-down.
  const std::tuple<std::u16string_view, uint32_t, std::optional<std::u16string>> edits[] = {
      {u"9999", 9999, {}}, {u"", 0, {}}, {u"12x", 12, {}}, {u"10000", 0, u"0"}};
  for (const auto& [text, stored, rewrite] : edits) {
    EXPECT_EQ(sheet.EditDelayField(text), rewrite) << core::WideToUtf8(text);
    EXPECT_EQ(state.PublishedRx.Load()->RxDelayReadThread, stored) << core::WideToUtf8(text);
  }
  // The up-down sits at the delay divided by 100 and steps in hundreds.
  const std::tuple<uint32_t, int, int, uint32_t> steps[] = {
      {250, 2, 1, 300}, {0, 0, -1, 0}, {9900, 99, 1, 9999}};
  for (auto [delay, position, step, stepped] : steps) {
    EXPECT_EQ(std::pair(DelayUpDownPosition(delay), SteppedDelay(delay, step)), std::pair(position, stepped))
        << delay << " " << step;
  }
}

TEST(AsciiChart, EveryByteValueInOneRowInBothVariants) {
  // Rows of variant A; B is the same with one blank fewer in front.
  const std::pair<int, std::u16string_view> rows[] = {
      {0, u"         000    00     NUL "}, {8, u"   \x0001     008    08     BS  "},
      {32, u"         032    20     Sp "}, {39, u"   '     039    27     RIGT "},
      {41, u"   )     041    29 "},        {127, u"   \x0001     127    7F "},
      {128, u"   \u20AC     128    80 "},  {160, u"   p     160    A0 "},
  };
  const std::vector<std::u16string> a = AsciiChartRows(false);
  const std::vector<std::u16string> b = AsciiChartRows(true);
  ASSERT_EQ(std::pair(a.size(), b.size()), std::pair(size_t{256}, size_t{256}));
  for (auto [value, row] : rows) EXPECT_EQ(a[static_cast<size_t>(value)], row) << value;
  for (size_t value = 0; value < a.size(); ++value) EXPECT_EQ(u" " + b[value], a[value]) << value;
  EXPECT_EQ(std::pair(PinoutPictureFor(240), PinoutPictureFor(241)),
            std::pair(PinoutPicture::kPortrait, PinoutPicture::kLandscape));
}

}  // namespace
}  // namespace wavetrace::app
