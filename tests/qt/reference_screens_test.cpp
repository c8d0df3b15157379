// The reference screens, Help and the desktop shortcuts: every screen of the
// command table opens from its menu item. The Screenshots tests also run
// under Xvfb (CTest: ReferenceScreensUnderX), where they grab the real window.
#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QSet>
#include <QUrl>
#include <memory>

#include "app/reference_screens.h"
#include "tests/qt/gui_program.h"
#include "ui/about_dialog.h"
#include "ui/receive_view.h"
#include "ui/reference_screens.h"

namespace wavetrace::ui {
namespace {

using namespace testing;
namespace cmd = core::cmd;

// Takes the URLs the desktop would open.
class UrlCatcher : public QObject {
  Q_OBJECT

 public:
  UrlCatcher() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
  ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }
  QList<QUrl> opened;

 public slots:
  void Open(const QUrl& url) { opened << url; }
};

TEST(ReferenceScreens, EveryScreenOfTheMenuOpensAndTheShortcutsReachTheirCommands) {
  RunShown([&](MainWindowWidget& window, core::AppState& state) {
    const std::pair<int, const char*> screens[] = {
        {cmd::kAbout, "wavetrace::ui::AboutDialog"},
        {cmd::kReceiveOptions, "wavetrace::ui::ReceiveOptionsDialog"},
        {cmd::kTransmitOptions, "wavetrace::ui::TransmitOptionsDialog"},
        {cmd::kCommProperties, "wavetrace::ui::CommPropertiesDialog"},
        {cmd::kProgramOptions, "wavetrace::ui::ProgramOptionsDialog"},
        {cmd::kAsciiChart, "wavetrace::ui::AsciiChartDialog"},
        {cmd::kCommPinouts, "wavetrace::ui::PinoutsDialog"},
    };
    for (auto [command, type] : screens) {
      ASSERT_TRUE(window.Action(command)->isEnabled()) << command;
      std::string opened;
      ModalHandler<QDialog> handler([&](QDialog& dialog) {
        opened = dialog.metaObject()->className();
        if (auto* chart = qobject_cast<AsciiChartDialog*>(&dialog)) {
          EXPECT_EQ(chart->List()->count(), 256);
          EXPECT_TRUE(chart->List()->item(0)->text().endsWith("NUL "));
        }
        if (auto* pinouts = qobject_cast<PinoutsDialog*>(&dialog)) {
          EXPECT_TRUE(pinouts->PicturesLoaded());
        }
        dialog.reject();
      });
      window.Action(command)->trigger();
      ASSERT_TRUE(WaitUntil([&] { return handler.Handled() && !QApplication::activeModalWidget(); }));
      EXPECT_EQ(opened, type);
    }

    // F1 opens the manual in the desktop's browser.
    UrlCatcher catcher;
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_F1);
    ASSERT_TRUE(WaitUntil([&] { return !catcher.opened.isEmpty(); }));
    EXPECT_TRUE(catcher.opened.front().toLocalFile().endsWith("/manual/index.html"));
    EXPECT_TRUE(QFile::exists(catcher.opened.front().toLocalFile()));

    // Ctrl+V from the receive window replaces the transmit field; Ctrl+L clears.
    QGuiApplication::clipboard()->setText("pasted");
    state.Screen.SetTxText(u"old");
    ASSERT_TRUE(WaitUntil([&] { return window.TransmitField()->currentText() == "old"; }));
    window.Receive()->setFocus();
    QTest::keyClick(window.Receive(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(WaitUntil([&] { return state.Screen.TxText() == u"pasted"; }));
    state.Screen.RxInsertAtCaret(u"text");
    QTest::keyClick(&window, Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(WaitUntil([&] { return state.Screen.RxText().empty(); }));
  });
}

// Shows a reference screen, waits until it is on the screen and keeps its
// picture in the build folder; a screen that shows nothing has one colour.
void Screenshot(QDialog& dialog, const QString& name) {
  TestApplication();
  dialog.resize(360, 480);
  dialog.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
  QTest::qWait(50);
  QImage picture;
  if (QGuiApplication::platformName() == QLatin1String("xcb")) {
    picture = dialog.screen()->grabWindow(dialog.winId()).toImage();
  } else {
    picture = dialog.grab().toImage();
  }
  dialog.hide();
  ASSERT_FALSE(picture.isNull());
  QSet<QRgb> colours;
  for (int y = 0; y < picture.height(); y += 3)
    for (int x = 0; x < picture.width(); x += 3) colours.insert(picture.pixel(x, y));
  EXPECT_GT(colours.size(), 8) << name.toStdString();
  EXPECT_TRUE(picture.save(QDir::current().filePath(name + QStringLiteral(".png"))));
}

TEST(Screenshots, AsciiChart) {
  TestApplication();
  AsciiChartDialog chart(app::AsciiChartRows(false));
  Screenshot(chart, QStringLiteral("ascii_chart"));
}

TEST(Screenshots, PinoutsInBothOrientations) {
  TestApplication();
  for (auto [size, picture, name] :
       {std::tuple{QSize(240, 320), app::PinoutPicture::kPortrait, "pinouts_portrait"},
        std::tuple{QSize(320, 240), app::PinoutPicture::kLandscape, "pinouts_landscape"}}) {
    PinoutsDialog pinouts(1.0);
    pinouts.setFixedSize(size);
    EXPECT_EQ(pinouts.PictureShown(), picture);
    Screenshot(pinouts, QString::fromLatin1(name));
  }
}

TEST(Screenshots, AboutInAutomationMode) {
  TestApplication();
  AboutDialog about(u"Rel. 2.71.3089  (11.2008)", true);
  Screenshot(about, QStringLiteral("about"));
}

}  // namespace
}  // namespace wavetrace::ui

#include "reference_screens_test.moc"
