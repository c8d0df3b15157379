// The "Rx Options" sheet through the menu and from RELAY's press and hold.
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

#include "core/published_settings.h"
#include "tests/qt/gui_program.h"
#include "ui/log_dialogs.h"
#include "ui/receive_options_dialog.h"
#include "ui/relay_dialogs.h"

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
    state.Data.SnR[1].wcszReplaceWith = u"X";
    state.Data.SnR[1].Rall = 0;
    state.Data.SnR[1].Rlo = 1;
    const core::DataSettings before = state.Data;
    const std::u16string logFile = state.Log.wszLogFile;

    CancelThenOk<ReceiveOptionsDialog>(
        window, core::cmd::kReceiveOptions,
        [&](ReceiveOptionsDialog& sheet) {
          QStringList tabs;
          for (int i = 0; i < sheet.Tabs()->count(); ++i) tabs << sheet.Tabs()->tabText(i);
          EXPECT_EQ(tabs, QStringList({"Filters", "Replace", "Logging", "Relay", "Advanced"}));
          EXPECT_EQ(sheet.Tabs()->currentIndex(), 0);
          EXPECT_EQ(sheet.PostambleField()->text(), "[0D]");
          EXPECT_EQ(sheet.SwitchBox(RxSwitch::kNonChars)->isChecked(), state.Data.NonChars == 1);
          EXPECT_EQ(sheet.SearchField()->text(), QString::fromStdU16String(state.Data.SnR[1].wcszSearchFor));
          EXPECT_EQ(sheet.RuleModes()->checkedId(), state.Data.SnR[1].Rlo == 1 ? 2 : 0);
          EXPECT_EQ(sheet.DelayField()->value(), static_cast<int>(state.Data.RxDelayReadThread));
          EXPECT_NE(sheet.Logging(), nullptr);
          EXPECT_NE(sheet.Relay(), nullptr);

          // A box is stored and published the moment it is clicked.
          sheet.SwitchBox(RxSwitch::kFilterNP)->click();
          EXPECT_EQ(state.PublishedRx.Load()->FilterNP, 1);
          sheet.KeyList()->setCurrentIndex(1);  // "LineFeed"
          sheet.AddKeyButton()->click();
          EXPECT_EQ(sheet.PostambleField()->text(), "[0D][0A]");
          // Rule 2 added (the list is full: Add and Insert grey), rule 1 emptied.
          sheet.AddRuleButton()->click();
          EXPECT_EQ(sheet.RuleCounter()->text(), "2 / 2");
          EXPECT_FALSE(sheet.AddRuleButton()->isEnabled() || sheet.InsertRuleButton()->isEnabled());
          sheet.SearchField()->setText("cd");
          sheet.RuleNumber()->setValue(1);
          EXPECT_EQ(sheet.SearchField()->text(), "ab");
          sheet.SearchField()->clear();
          sheet.RuleModes()->button(1)->click();
          EXPECT_EQ(state.Data.SnR[1].Rfo, 1);
          sheet.DelayField()->selectAll();
          QTest::keyClicks(sheet.DelayField(), "12345");
          EXPECT_EQ(state.Data.RxDelayReadThread, 1234u);
          sheet.Logging()->TimestampBox()->click();
          sheet.Relay()->NetworkEnableBox()->click();
        },
        [&](bool ok) {
          if (!ok) {
            EXPECT_TRUE(state.Data == before);
            EXPECT_TRUE(core::SettingsArePublished(state));
            return;
          }
          EXPECT_EQ(state.Data.PostambleLengthRX, 2);
          EXPECT_EQ(state.Data.SnR_count, 1);
          EXPECT_EQ(state.Data.SnR[1].wcszSearchFor, u"cd");
          EXPECT_EQ(state.Data.SnR[1].SearchLength, 2);
          EXPECT_EQ(state.Data.FilterNP + state.Data.EnableTCPIPrelay + state.Log.LOGtimestamp, 3);
          EXPECT_EQ(state.Data.RxDelayReadThread, 1234u);
          EXPECT_EQ(state.Log.wszLogFile, logFile);
          EXPECT_TRUE(core::SettingsArePublished(state));
        });

    // Press and hold on RELAY opens the sheet at its Relay page.
    ModalHandler<ReceiveOptionsDialog> relay([](ReceiveOptionsDialog& sheet) {
      EXPECT_EQ(sheet.Tabs()->currentWidget(), sheet.Relay());
      Click(sheet, QDialogButtonBox::Cancel);
    });
    QContextMenuEvent hold(QContextMenuEvent::Mouse, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(window.Button(core::cmd::kRelay), &hold);
    EXPECT_TRUE(relay.Handled());
  });
}

}  // namespace
}  // namespace wavetrace::ui
