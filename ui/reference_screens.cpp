#include "ui/reference_screens.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontInfo>
#include <QListWidget>
#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

// The pictures are compiled into the program; a static library needs its
// resources pulled in by name, outside any namespace.
static void LoadPinoutPictures() {
  Q_INIT_RESOURCE(pinouts);
}

namespace wavetrace::ui {
namespace {

// Where a control character has no glyph the chart shows a box.
constexpr char16_t kNoGlyph = u'\x0001';
constexpr char16_t kBox = u'\x25A1';

QDialogButtonBox* OkButton(QDialog* dialog) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  return buttons;
}

}  // namespace

AsciiChartDialog::AsciiChartDialog(const std::vector<std::u16string>& rows, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(QStringLiteral("ASCII Chart"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("asciiChart"));
  list_->setFrameShape(QFrame::NoFrame);
  list_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  // A desktop without a fixed font of its own gets fontconfig's.
  if (!QFontInfo(fixed).fixedPitch()) fixed.setFamily(QStringLiteral("monospace"));
  if (parent) {
    const QFont& screen = parent->font();
    if (screen.pixelSize() > 0) {
      fixed.setPixelSize(screen.pixelSize());
    } else {
      fixed.setPointSizeF(screen.pointSizeF());
    }
  }
  list_->setFont(fixed);
  QPalette white = list_->palette();
  white.setColor(QPalette::Base, Qt::white);
  white.setColor(QPalette::Text, Qt::black);
  list_->setPalette(white);
  for (const std::u16string& row : rows) {
    QString text = QString::fromStdU16String(row);
    text.replace(QChar(kNoGlyph), QChar(kBox));
    list_->addItem(text);
  }
  list_->setCurrentRow(0);
  layout->addWidget(list_, 1);
  layout->addWidget(OkButton(this));
}

PinoutsDialog::PinoutsDialog(double scale, QWidget* parent) : QDialog(parent), scale_(scale) {
  LoadPinoutPictures();
  setWindowTitle(QStringLiteral("Comm. Pinouts"));
  portrait_ = new QSvgRenderer(QStringLiteral(":/pinouts/pinouts_portrait.svg"), this);
  landscape_ = new QSvgRenderer(QStringLiteral(":/pinouts/pinouts_landscape.svg"), this);
  QPalette white = palette();
  white.setColor(QPalette::Window, Qt::white);
  setPalette(white);
  setAutoFillBackground(true);
  auto* layout = new QVBoxLayout(this);
  layout->addStretch(1);
  layout->addWidget(OkButton(this));
}

PinoutsDialog::~PinoutsDialog() = default;

bool PinoutsDialog::PicturesLoaded() const {
  return portrait_->isValid() && landscape_->isValid();
}

app::PinoutPicture PinoutsDialog::PictureShown() const {
  return app::PinoutPictureFor(static_cast<int>(width() / scale_));
}

void PinoutsDialog::paintEvent(QPaintEvent* event) {
  QDialog::paintEvent(event);
  QSvgRenderer* picture = PictureShown() == app::PinoutPicture::kPortrait ? portrait_ : landscape_;
  if (!picture->isValid()) return;
  // The picture keeps its proportions in the room above the OK button.
  auto* buttons = findChild<QDialogButtonBox*>();
  QRectF room(0, 0, width(), buttons ? buttons->geometry().top() : height());
  QSizeF size = QSizeF(picture->defaultSize()).scaled(room.size(), Qt::KeepAspectRatio);
  QRectF target(QPointF(room.center().x() - size.width() / 2, 0), size);
  QPainter painter(this);
  picture->render(&painter, target);
}

}  // namespace wavetrace::ui
