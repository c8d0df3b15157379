// The "Rx Options" sheet through the menu; its Logging page, opened from the
// RECORD button, and the advanced logging sheet.
#include <tuple>

#include "core/published_settings.h"
#include "tests/qt/gui_program.h"
#include "ui/log_dialogs.h"
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

TEST(LogDialogs, LoggingPageAndAdvancedSheetShowTheSettingsCancelPutsThemBackOkStoresThem) {
  TestApplication();
  core::AppState state;
  QtView view(state);
  QTemporaryDir folder;
  const QString chosen = folder.path() + QStringLiteral("/chosen.Log.Txt");
  state.Log.wszLogDir = u"/tmp/logs/";
  state.Log.wszLogFile = u"run.txt";
  state.Log.LOGtransmitdata = 1;
  const core::LogSettings before = state.Log;
  for (bool ok : {false, true}) {
    // Press and hold on RECORD opens the receive options at the Logging page.
    ModalHandler<ReceiveOptionsDialog> handler([&](ReceiveOptionsDialog& dialog) {
      EXPECT_EQ(dialog.Tabs()->currentWidget(), dialog.Logging());
      LoggingPage& page = *dialog.Logging();
      EXPECT_EQ(page.PathField()->text(), QStringLiteral("/tmp/logs/run.txt"));
      EXPECT_EQ(std::tuple(page.TimestampBox()->isChecked(), page.TransmitDataBox()->isChecked(),
                           page.OverwriteBox()->isChecked()),
                std::tuple(false, true, false));
      page.OverwriteBox()->click();
      EXPECT_EQ(state.Log.LOGoverwrite, 1);
      ModalHandler<QFileDialog> browse([&](QFileDialog& files) {
        EXPECT_EQ(files.windowTitle(), QStringLiteral("Open Log File"));
        EXPECT_EQ(files.nameFilters(), QStringList({"All Log Files (*.Log.Txt)", "All CSV Files (*.CSV)",
                                                    "All TXT Files (*.TXT)", "All Files (*.*)"}));
        // The name typed into the dialog's field, then its own accept.
        files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(chosen);
        static_cast<QDialog&>(files).accept();
      });
      page.BrowseButton()->click();
      EXPECT_EQ(page.PathField()->text(), chosen);
      ModalHandler<AdvancedLoggingDialog> advanced([](AdvancedLoggingDialog& sheet) {
        sheet.TimeFormats()->button(8)->click();
        sheet.accept();
      });
      page.AdvancedButton()->click();
      EXPECT_EQ(state.Log.TimeFormat, 8);
      // A typed path is stored by OK.
      page.TimestampBox()->click();
      page.PathField()->selectAll();
      QTest::keyClicks(page.PathField(), QStringLiteral("/var/tmp/other.csv"));
      Click(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    });
    QContextMenuEvent hold(QContextMenuEvent::Mouse, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(view.Window().Button(core::cmd::kRecord), &hold);
    EXPECT_TRUE(handler.handled);
    EXPECT_EQ(state.Log == before, !ok) << "Cancel undoes the advanced sheet's OK too";
    EXPECT_TRUE(core::SettingsArePublished(state));
  }
  EXPECT_EQ(std::tuple(state.Log.wszLogDir, state.Log.wszLogFile, state.Log.LOGtimestamp,
                       state.Log.LOGoverwrite, state.Log.TimeFormat),
            std::tuple(u"/var/tmp/", u"other.csv", 1, 1, 8));

  // Nothing on the page can be changed while RECORD is on: the fields and buttons, and the switches.
  state.RecordFlag = true;
  LoggingPage page(state);
  EXPECT_FALSE(page.PathField()->isEnabled() || page.TimestampBox()->isEnabled());

  // The advanced sheet by itself (the time format is the 8 the Logging page's run stored).
  state.Log.RecordALL = 0;
  state.Log.RecordDuration = 4;
  state.Log.Delimiter = {'|', 0};
  state.Log.DateFormat = 3;
  const core::LogSettings sheetOpened = state.Log;
  for (bool ok : {false, true}) {
    AdvancedLoggingDialog sheet(state);
    EXPECT_EQ(std::tuple(sheet.RecordAllBox()->isChecked(), sheet.RecordPartialGroup()->isEnabled(),
                         sheet.IntervalField()->value(), sheet.DurationField()->value(),
                         sheet.DurationField()->maximum(), sheet.Delimiters()->checkedId()),
              std::tuple(false, true, 10, 4, 10, -1));
    EXPECT_EQ(sheet.DateFormats()->checkedButton()->text(), QStringLiteral("yyyy-mm-dd"));
    EXPECT_EQ(sheet.TimeFormats()->checkedButton()->text(), QStringLiteral("hh:mm:ss.mmm"));
    // The rules rewrite the fields: a refused interval, and a duration above a lowered interval.
    sheet.IntervalField()->selectAll();
    QTest::keyClicks(sheet.IntervalField(), QStringLiteral("0"));
    EXPECT_EQ(sheet.IntervalField()->text(), QStringLiteral("10"));
    sheet.IntervalField()->selectAll();
    QTest::keyClicks(sheet.IntervalField(), QStringLiteral("3"));
    EXPECT_EQ(state.Log.RecordInterval, 3);
    EXPECT_EQ(std::pair(sheet.DurationField()->value(), sheet.DurationField()->maximum()), std::pair(3, 3));
    sheet.RecordAllBox()->click();
    EXPECT_FALSE(sheet.RecordPartialGroup()->isEnabled());
    sheet.Delimiters()->button(1)->click();
    sheet.RemoveCrLfBox()->click();
    EXPECT_EQ(state.Log.Delimiter[0], '|') << "stored on OK only";
    sheet.DateFormats()->button(1)->click();
    EXPECT_EQ(state.Log.DateFormat, 1);
    ok ? sheet.accept() : sheet.reject();
    EXPECT_EQ(state.Log == sheetOpened, !ok);
  }
  EXPECT_EQ(std::tuple(state.Log.Delimiter[0], state.Log.TSremoveCRLF, state.Log.RecordInterval,
                       state.Log.RecordALL, state.Log.DateFormat),
            std::tuple('\t', 1, 3, 1, 1));
  EXPECT_TRUE(core::SettingsArePublished(state));
}

}  // namespace
}  // namespace wavetrace::ui
