// What the view draws: the reference screens and the main window on the
// screen (the Screenshots tests also run under Xvfb, CTest:
// ReferenceScreensUnderX, grabbing the real window there), and the pieces that
// need no running program: the receive window's text mapping, the screen fit
// and the tray pictures.
#include <tuple>

#include "app/reference_screens.h"
#include "core/code_page.h"
#include "core/reporting.h"
#include "tests/qt/gui_program.h"
#include "ui/about_dialog.h"
#include "ui/receive_view.h"
#include "ui/reference_screens.h"
#include "ui/screen_scale.h"
#include "ui/tray_icon.h"

namespace wavetrace::ui {
namespace {

using namespace testing;

// The shown window's picture, from the X server when there is one, kept in
// the build folder as name.png.
QImage SavedPicture(QWidget& window, const char* name) {
  EXPECT_TRUE(QTest::qWaitForWindowExposed(&window)) << name;
  QTest::qWait(100);
  const bool x11 = QGuiApplication::platformName() == QLatin1String("xcb");
  QImage picture = (x11 ? window.screen()->grabWindow(window.winId()) : window.grab()).toImage();
  EXPECT_TRUE(picture.save(QDir::current().filePath(QString::fromLatin1(name) + ".png"))) << name;
  return picture;
}

// Each reference screen once on the screen, its picture kept in the build
// folder; a screen that shows nothing has a single colour.
TEST(Screenshots, ReferenceScreens) {
  TestApplication();
  AsciiChartDialog chart(app::AsciiChartRows(false));
  PinoutsDialog portrait(1.0);
  PinoutsDialog landscape(1.0);
  AboutDialog about(u"Rel. 2.71.3089  (11.2008)", true);
  const std::tuple<QDialog*, QSize, const char*> screens[] = {{&chart, {240, 320}, "ascii_chart"},
                                                              {&portrait, {240, 320}, "pinouts_portrait"},
                                                              {&landscape, {320, 240}, "pinouts_landscape"},
                                                              {&about, {240, 320}, "about"}};
  for (auto [dialog, size, name] : screens) {
    dialog->setFixedSize(size);
    dialog->show();
    QImage picture = SavedPicture(*dialog, name);
    dialog->hide();
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 3)
      for (int x = 0; x < picture.width(); x += 3) colours.insert(picture.pixel(x, y));
    EXPECT_GT(colours.size(), 8) << name;
  }
  // The About screen shows the release line, and the warning in automation mode only.
  auto* release = about.findChild<QLabel*>("releaseLine");
  auto* warning = about.findChild<QLabel*>("automationWarning");
  ASSERT_TRUE(release && warning);
  EXPECT_EQ(release->text() + " " + warning->text(),
            "Rel. 2.71.3089  (11.2008) Warning: [ Automation Mode ]");
  EXPECT_EQ(AboutDialog(u"", false).findChild<QLabel*>("automationWarning"), nullptr);
  EXPECT_EQ(chart.List()->count(), 256);
  EXPECT_TRUE(portrait.PicturesLoaded());
  EXPECT_EQ(std::pair(portrait.PictureShown(), landscape.PictureShown()),
            std::pair(app::PinoutPicture::kPortrait, app::PinoutPicture::kLandscape));
}

// The main window in each layout, kept as main_window_<layout>.png (on the X
// server too, with its fonts). Both layouts: menus as wide as their widest
// caption (with its shortcut) and a mnemonic on each; the desktop's receive
// window 80 columns or more of a fixed-pitch font, the whole of a long status
// message, the "paused" mark.
TEST(Screenshots, MainWindowInEachLayoutFitsItsMenusAndTheDesktopShowsEightyColumnsAndWholeMessages) {
  for (auto [layout, name] : {std::pair{app::WindowLayout::kCompact, "main_window_compact"},
                              std::pair{app::WindowLayout::kDesktop, "main_window_desktop"}}) {
    RunShown(
        [&, layout = layout, name = name](MainWindowWidget& window, core::AppState& state) {
          state.Screen.RxInsertAtCaret(
              u"\r\n$GPGGA,120000.00,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*67");
          SavedPicture(window, name);
          for (QAction* title : window.menuBar()->actions())
            EXPECT_FALSE(QKeySequence::mnemonic(title->text()).isEmpty()) << title->text().toStdString();
          // The menus and their submenus.
          for (QMenu* menu : window.menuBar()->findChildren<QMenu*>()) {
            for (QAction* item : menu->actions()) {
              QString caption = QString(item->text()).remove('&') + item->shortcut().toString();
              EXPECT_GT(menu->sizeHint().width(), menu->fontMetrics().horizontalAdvance(caption) + 20)
                  << caption.toStdString();
            }
          }
          const bool desktop = layout == app::WindowLayout::kDesktop;
          ReceiveView* receive = window.Receive();
          const QFontMetrics& fixed = receive->fontMetrics();
          EXPECT_EQ(fixed.horizontalAdvance('i'), fixed.horizontalAdvance('M'));
          EXPECT_GE(receive->VisibleColumns(), desktop ? 80 : 1);
          window.Action(core::cmd::kPauseRxDisplay)->trigger();
          EXPECT_TRUE(WaitUntil([&] { return window.PausedMark()->isVisible(); }));
          if (!desktop) return;
          const std::u16string message =
              u"Error! " + std::u16string(40, u'y') + u" " + std::u16string(152, u'x');
          core::ShowStatus(state, message);
          QLabel* status = window.StatusLine();
          EXPECT_TRUE(WaitUntil([&] {
            return status->text().toStdU16String() == message &&
                   status->height() >= status->heightForWidth(status->width()) &&
                   status->height() > 2 * status->fontMetrics().lineSpacing();
          }));
          EXPECT_EQ(window.Button(core::cmd::kPlay)->y(), window.Button(core::cmd::kClearButton)->y());
        },
        layout);
  }
}

TEST(ReceiveText, EveryCharacterKeepsItsPositionAndLineEndsBecomeOneBreak) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  const std::u16string model = core::BytesToWide(bytes);
  EXPECT_EQ(FromDocumentText(ToDocumentText(model)), model);
  // Characters that would make a paragraph or vanish cannot shift positions.
  QString odd = ToDocumentText(std::u16string{u'a', 0, 0x2029, 0x2028, 0xFDD0});
  ASSERT_EQ(odd.size(), 5);
  EXPECT_EQ(odd.mid(1, 2), QString(2, QChar(0xFFFD)));

  TestApplication();
  ReceiveView view;
  view.ResetText(u"one\r\ntwo\r\nthree");
  EXPECT_EQ(view.document()->blockCount(), 3);
  EXPECT_EQ(view.Length(), 15);
  // Positions are the model's: replace "two" (5..8); beyond the end means the end.
  view.ReplaceRange(5, 8, u"2");
  view.ReplaceRange(100, 200, u"!");
  view.ReplaceRange(0, 5, u"");
  EXPECT_EQ(view.ModelText(), u"2\r\nthree!");
}

TEST(ScreenFit, APanelGetsTheLayoutADesktopItsFontAndRoom) {
  // A panel, no screen, then a desktop: scale from the font (clamped both ways), height share, height bound.
  const std::tuple<QSize, int, double, QSize> cases[] = {
      {{320, 240}, 16, 1.0, {320, 240}},   {{}, 16, 1.0, {240, 320}},
      {{1920, 1050}, 22, 2.0, {480, 640}}, {{800, 570}, 9, 1.0, {256, 342}},
      {{640, 480}, 33, 2.5, {360, 480}},
  };
  for (auto [screen, font, scale, window] : cases) {
    ScreenFit fit = FitToScreen(screen, font);
    EXPECT_EQ(std::pair(fit.Scale, fit.WindowSize), std::pair(scale, window))
        << screen.width() << "x" << screen.height() << " " << font;
  }
}

TEST(TrayPictures, ActiveAndIdleDiffer) {
  TestApplication();
  QImage idle = MakeTrayIcon(false).pixmap(32, 32).toImage();
  QImage active = MakeTrayIcon(true).pixmap(32, 32).toImage();
  EXPECT_NE(idle, active);
  EXPECT_NE(qAlpha(idle.pixel(4, 16)), 0);
}

}  // namespace
}  // namespace wavetrace::ui
