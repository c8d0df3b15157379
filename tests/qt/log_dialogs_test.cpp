// The Logging page of the receive options, opened from the RECORD button,
// and the advanced logging sheet.
#include "ui/log_dialogs.h"
#include "core/published_settings.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_options_dialog.h"

namespace wavetrace::ui {
namespace {

// Opens the receive options at the Logging page as press-and-hold on RECORD
// does; act runs while it is up.
void OpenFromRecordButton(QtView& view, const std::function<void(ReceiveOptionsDialog&)>& act) {
  testing::ModalHandler<ReceiveOptionsDialog> handler([&](ReceiveOptionsDialog& dialog) {
    EXPECT_EQ(dialog.Tabs()->currentWidget(), dialog.Logging());
    act(dialog);
  });
  QContextMenuEvent hold(QContextMenuEvent::Mouse, QPoint(1, 1), QPoint(1, 1));
  QApplication::sendEvent(view.Window().Button(core::cmd::kRecord), &hold);
  EXPECT_TRUE(handler.Handled());
}

TEST(LogDialogs, LoggingPageShowsTheSettingsCancelPutsThemBackOkStoresThem) {
  testing::TestApplication();
  core::AppState state;
  QtView view(state);
  QTemporaryDir folder;
  const QString chosen = folder.path() + QStringLiteral("/chosen.Log.Txt");
  state.Log.wszLogDir = u"/tmp/logs/";
  state.Log.wszLogFile = u"run.txt";
  state.Log.LOGtransmitdata = 1;
  const core::LogSettings before = state.Log;
  OpenFromRecordButton(view, [&](ReceiveOptionsDialog& dialog) {
    LoggingPage& page = *dialog.Logging();
    EXPECT_EQ(page.PathField()->text(), QStringLiteral("/tmp/logs/run.txt"));
    EXPECT_FALSE(page.TimestampBox()->isChecked());
    EXPECT_TRUE(page.TransmitDataBox()->isChecked());
    EXPECT_FALSE(page.OverwriteBox()->isChecked());
    page.OverwriteBox()->click();
    EXPECT_EQ(state.Log.LOGoverwrite, 1);
    testing::ModalHandler<QFileDialog> browse([&](QFileDialog& files) {
      EXPECT_EQ(files.windowTitle(), QStringLiteral("Open Log File"));
      EXPECT_EQ(files.nameFilters(), QStringList({"All Log Files (*.Log.Txt)", "All CSV Files (*.CSV)",
                                                  "All TXT Files (*.TXT)", "All Files (*.*)"}));
      // The name typed into the dialog's field, then its own accept.
      files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(chosen);
      static_cast<QDialog&>(files).accept();
    });
    page.BrowseButton()->click();
    EXPECT_EQ(page.PathField()->text(), chosen);
    testing::ModalHandler<AdvancedLoggingDialog> advanced([](AdvancedLoggingDialog& sheet) {
      sheet.TimeFormats()->button(8)->click();
      sheet.accept();
    });
    page.AdvancedButton()->click();
    EXPECT_EQ(state.Log.TimeFormat, 8);
    testing::Click(dialog, QDialogButtonBox::Cancel);
  });
  EXPECT_TRUE(state.Log == before) << "the advanced sheet's OK is undone too";

  OpenFromRecordButton(view, [&](ReceiveOptionsDialog& dialog) {
    LoggingPage& page = *dialog.Logging();
    page.TimestampBox()->click();
    page.PathField()->selectAll();
    QTest::keyClicks(page.PathField(), QStringLiteral("/var/tmp/other.csv"));
    testing::Click(dialog, QDialogButtonBox::Ok);
  });
  EXPECT_EQ(state.Log.wszLogDir, u"/var/tmp/");
  EXPECT_EQ(state.Log.wszLogFile, u"other.csv");
  EXPECT_EQ(state.Log.LOGtimestamp, 1);
  EXPECT_TRUE(core::SettingsArePublished(state));

  state.RecordFlag = true;
  OpenFromRecordButton(view, [&](ReceiveOptionsDialog& dialog) {
    LoggingPage& page = *dialog.Logging();
    for (QWidget* control :
         {static_cast<QWidget*>(page.PathField()), static_cast<QWidget*>(page.BrowseButton()),
          static_cast<QWidget*>(page.AutoNameButton()), static_cast<QWidget*>(page.AdvancedButton()),
          static_cast<QWidget*>(page.TimestampBox()), static_cast<QWidget*>(page.TransmitDataBox()),
          static_cast<QWidget*>(page.OverwriteBox())}) {
      EXPECT_FALSE(control->isEnabled()) << control->metaObject()->className();
    }
    testing::Click(dialog, QDialogButtonBox::Ok);
  });
  state.RecordFlag = false;
}

TEST(LogDialogs, AdvancedSheetShowsTheSettingsCancelPutsThemBackOkStoresThem) {
  testing::TestApplication();
  core::AppState state;
  state.Log.RecordALL = 0;
  state.Log.RecordDuration = 4;
  state.Log.Delimiter = {'|', 0};
  state.Log.DateFormat = 3;
  state.Log.TimeFormat = 8;
  const core::LogSettings before = state.Log;
  {
    AdvancedLoggingDialog sheet(state);
    EXPECT_FALSE(sheet.RecordAllBox()->isChecked());
    EXPECT_TRUE(sheet.RecordPartialGroup()->isEnabled());
    EXPECT_EQ(sheet.IntervalField()->value(), 10);
    EXPECT_EQ(sheet.DurationField()->value(), 4);
    EXPECT_EQ(sheet.DurationField()->maximum(), 10);
    EXPECT_EQ(sheet.Delimiters()->checkedId(), -1);
    EXPECT_EQ(sheet.DateFormats()->checkedButton()->text(), QStringLiteral("yyyy-mm-dd"));
    EXPECT_EQ(sheet.TimeFormats()->checkedButton()->text(), QStringLiteral("hh:mm:ss.mmm"));
    sheet.IntervalField()->selectAll();
    QTest::keyClicks(sheet.IntervalField(), QStringLiteral("0"));
    EXPECT_EQ(sheet.IntervalField()->text(), QStringLiteral("10"));
    sheet.IntervalField()->selectAll();
    QTest::keyClicks(sheet.IntervalField(), QStringLiteral("3"));
    EXPECT_EQ(state.Log.RecordInterval, 3);
    EXPECT_EQ(sheet.DurationField()->value(), 3);
    EXPECT_EQ(sheet.DurationField()->maximum(), 3);
    sheet.RecordAllBox()->click();
    EXPECT_FALSE(sheet.RecordPartialGroup()->isEnabled());
    sheet.Delimiters()->button(1)->click();
    EXPECT_EQ(state.Log.Delimiter[0], '|') << "stored on OK only";
    sheet.DateFormats()->button(1)->click();
    EXPECT_EQ(state.Log.DateFormat, 1);
    sheet.reject();
  }
  EXPECT_TRUE(state.Log == before);
  AdvancedLoggingDialog sheet(state);
  sheet.Delimiters()->button(1)->click();
  sheet.RemoveCrLfBox()->click();
  sheet.accept();
  EXPECT_EQ(state.Log.Delimiter[0], '\t');
  EXPECT_EQ(state.Log.TSremoveCRLF, 1);
  EXPECT_TRUE(core::SettingsArePublished(state));
}

}  // namespace
}  // namespace wavetrace::ui
