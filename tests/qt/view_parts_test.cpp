// The pieces of the view that need no running program: the receive
// window's text mapping, the screen fit and the tray pictures.
#include <tuple>

#include "core/code_page.h"
#include "tests/qt/gui_program.h"
#include "ui/receive_view.h"
#include "ui/screen_scale.h"
#include "ui/tray_icon.h"

namespace wavetrace::ui {
namespace {

TEST(ReceiveText, EveryCharacterKeepsItsPositionAndLineEndsBecomeOneBreak) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  const std::u16string model = core::BytesToWide(bytes);
  EXPECT_EQ(static_cast<size_t>(ToDocumentText(model).size()), model.size());
  EXPECT_EQ(FromDocumentText(ToDocumentText(model)), model);
  // Characters that would make a paragraph or vanish cannot shift positions.
  QString odd = ToDocumentText(std::u16string{u'a', 0, 0x2029, 0x2028, 0xFDD0});
  ASSERT_EQ(odd.size(), 5);
  EXPECT_EQ(odd.mid(1, 2), QString(2, QChar(0xFFFD)));

  testing::TestApplication();
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
  testing::TestApplication();
  QImage idle = MakeTrayIcon(false).pixmap(32, 32).toImage();
  QImage active = MakeTrayIcon(true).pixmap(32, 32).toImage();
  EXPECT_NE(idle, active);
  EXPECT_NE(qAlpha(idle.pixel(4, 16)), 0);
}

}  // namespace
}  // namespace wavetrace::ui
