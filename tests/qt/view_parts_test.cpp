// The pieces of the view that need no running program: the receive
// window's text mapping, the screen fit and the tray pictures.
#include <QImage>
#include <QTextDocument>

#include "core/code_page.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"
#include "ui/screen_scale.h"
#include "ui/tray_icon.h"

namespace wavetrace::ui {
namespace {

TEST(ReceiveText, EveryCodePageCharacterKeepsItsPosition) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  std::u16string model = core::BytesToWide(bytes);
  QString document = ToDocumentText(model);
  ASSERT_EQ(static_cast<size_t>(document.size()), model.size());
  EXPECT_EQ(FromDocumentText(document), model);
}

TEST(ReceiveText, LineEndsBecomeOneBreakAndCopyBack) {
  testing::TestApplication();
  ReceiveView view;
  view.ResetText(u"one\r\ntwo\r\nthree");
  EXPECT_EQ(view.document()->blockCount(), 3);
  EXPECT_EQ(view.Length(), 15);
  EXPECT_EQ(view.ModelText(), u"one\r\ntwo\r\nthree");
  // Positions are the model's: replace "two" (5..8).
  view.ReplaceRange(5, 8, u"2");
  EXPECT_EQ(view.ModelText(), u"one\r\n2\r\nthree");
  // Beyond the end means the end.
  view.ReplaceRange(100, 200, u"!");
  EXPECT_EQ(view.ModelText(), u"one\r\n2\r\nthree!");
  view.ReplaceRange(0, 5, u"");
  EXPECT_EQ(view.ModelText(), u"2\r\nthree!");
}

TEST(ReceiveText, StructureCharactersCannotShiftPositions) {
  std::u16string model = {u'a', 0, 0x2029, 0x2028, 0xFDD0, u'b'};
  QString document = ToDocumentText(model);
  ASSERT_EQ(document.size(), 6);
  EXPECT_EQ(document.at(1).unicode(), 0xFFFD);
  EXPECT_EQ(document.at(2).unicode(), 0xFFFD);
  testing::TestApplication();
  ReceiveView view;
  view.ResetText(model);
  EXPECT_EQ(view.Length(), 6);
  EXPECT_EQ(view.document()->blockCount(), 1);
}

TEST(ScreenFit, HandheldPortraitScreensScaleInHalfSteps) {
  ScreenFit exact = FitToScreen(QSize(480, 640));
  EXPECT_EQ(exact.Scale, 2.0);
  EXPECT_EQ(exact.WindowSize, QSize(480, 640));
  ScreenFit between = FitToScreen(QSize(800, 570));
  EXPECT_EQ(between.Scale, 1.5);
  EXPECT_EQ(between.WindowSize, QSize(360, 480));
}

TEST(ScreenFit, DesktopsStopAtTheLargestScale) {
  ScreenFit desktop = FitToScreen(QSize(1920, 1050));
  EXPECT_EQ(desktop.Scale, 2.5);
  EXPECT_EQ(desktop.WindowSize, QSize(600, 800));
}

TEST(ScreenFit, SmallPanelsGetTheWholeArea) {
  for (QSize panel : {QSize(320, 240), QSize(480, 320), QSize(240, 320)}) {
    ScreenFit fit = FitToScreen(panel);
    EXPECT_EQ(fit.Scale, 1.0);
    EXPECT_EQ(fit.WindowSize, panel);
  }
  ScreenFit none = FitToScreen(QSize());
  EXPECT_EQ(none.Scale, 1.0);
  EXPECT_EQ(none.WindowSize, QSize(240, 320));
}

TEST(TrayPictures, ActiveAndIdleDiffer) {
  testing::TestApplication();
  QImage idle = MakeTrayIcon(false).pixmap(32, 32).toImage();
  QImage active = MakeTrayIcon(true).pixmap(32, 32).toImage();
  ASSERT_FALSE(idle.isNull());
  ASSERT_FALSE(active.isNull());
  EXPECT_NE(idle, active);
  // Drawn, not empty: the corner is clear, the inside is not.
  EXPECT_NE(qAlpha(idle.pixel(4, 16)), 0);
}

}  // namespace
}  // namespace wavetrace::ui
