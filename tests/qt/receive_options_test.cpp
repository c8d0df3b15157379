// The "Rx Options" sheet through the menu (RECORD's press and hold: log_dialogs_test).
#include "core/published_settings.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_options_dialog.h"

namespace wavetrace::ui {
namespace {

using namespace testing;
using app::RxSwitch;

TEST(ReceiveOptions, OpensWithTheSettingsStoresBoxesAtOnceCancelPutsBackOkApplies) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    state.Data.wcszPostambleKeysRX = u"[0D]";
    state.Data.NonChars = 1;
    state.Data.RxDelayReadThread = 250;
    state.Data.SnR_count = 1;
    state.Data.SnR[1].wcszSearchFor = u"ab";
    state.Data.SnR[1].Rall = 0;
    state.Data.SnR[1].Rlo = 1;
    const core::DataSettings before = state.Data;
    CancelThenOk<ReceiveOptionsDialog>(
        window, core::cmd::kReceiveOptions,
        [&](ReceiveOptionsDialog& sheet) {
          QStringList tabs;
          for (int i = 0; i < sheet.Tabs()->count(); ++i) tabs << sheet.Tabs()->tabText(i);
          EXPECT_EQ(tabs, QStringList({"Filters", "Replace", "Logging", "Relay", "Advanced"}));
          EXPECT_EQ(std::tuple(sheet.Tabs()->currentIndex(), sheet.PostambleField()->text(),
                               sheet.SwitchBox(RxSwitch::kNonChars)->isChecked(), sheet.SearchField()->text(),
                               sheet.RuleModes()->checkedId(), sheet.DelayField()->value()),
                    std::tuple(0, QString("[0D]"), true, QString("ab"), 2, 250));
          sheet.SwitchBox(RxSwitch::kFilterNP)->click();
          EXPECT_EQ(state.PublishedRx.Load()->FilterNP, 1) << "stored at once";
          sheet.KeyList()->setCurrentIndex(1);  // "LineFeed"
          sheet.AddKeyButton()->click();
          // Rule 2 added, the list full; rule 1 emptied, so OK compacts rule 2 into its place.
          sheet.AddRuleButton()->click();
          EXPECT_EQ(sheet.RuleCounter()->text(), "2 / 2");
          EXPECT_FALSE(sheet.AddRuleButton()->isEnabled() || sheet.InsertRuleButton()->isEnabled());
          sheet.SearchField()->setText("cd");
          sheet.RuleNumber()->setValue(1);
          sheet.SearchField()->clear();
          sheet.DelayField()->selectAll();
          QTest::keyClicks(sheet.DelayField(), "12345");  // four characters
        },
        [&](bool ok) {
          EXPECT_TRUE(core::SettingsArePublished(state));
          EXPECT_EQ(state.Data == before, !ok);
          if (!ok) return;
          EXPECT_EQ(
              std::tuple(state.Data.PostambleLengthRX, state.Data.SnR_count, state.Data.SnR[1].wcszSearchFor,
                         state.Data.RxDelayReadThread, state.Data.FilterNP),
              std::tuple(2, 1, std::u16string(u"cd"), 1234u, 1));
        });
  });
}

}  // namespace
}  // namespace wavetrace::ui
