#include "ui/receive_view.h"

#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

namespace wavetrace::ui {
namespace {

constexpr char16_t kZeroWidthSpace = 0x200B;
constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kParagraphSeparator = 0x2029;

char16_t ToDocumentChar(char16_t ch) {
  switch (ch) {
    case u'\r':
      return kZeroWidthSpace;
    case 0:
    case 0x2028:  // line separator
    case kParagraphSeparator:
    case 0xFDD0:  // frame markers of the text document
    case 0xFDD1:
      return kReplacement;
    default:
      return ch;
  }
}

}  // namespace

QString ToDocumentText(std::u16string_view modelText) {
  QString text(static_cast<qsizetype>(modelText.size()), Qt::Uninitialized);
  QChar* out = text.data();
  for (char16_t ch : modelText) *out++ = QChar(ToDocumentChar(ch));
  return text;
}

std::u16string FromDocumentText(const QString& documentText) {
  std::u16string text;
  text.reserve(static_cast<size_t>(documentText.size()));
  for (QChar qch : documentText) {
    char16_t ch = qch.unicode();
    if (ch == kZeroWidthSpace) ch = u'\r';
    if (ch == kParagraphSeparator) ch = u'\n';
    text.push_back(ch);
  }
  return text;
}

ReceiveView::ReceiveView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setUndoRedoEnabled(false);
  setLineWrapMode(QPlainTextEdit::WidgetWidth);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // Nothing is typed here: a blinking caret would only distract.
  setCursorWidth(0);
}

int ReceiveView::Length() const {
  return document()->characterCount() - 1;
}

void ReceiveView::ReplaceRange(int from, int to, std::u16string_view text) {
  int length = Length();
  from = std::clamp(from, 0, length);
  to = std::clamp(to, from, length);
  QTextCursor cursor(document());
  cursor.setPosition(from);
  cursor.setPosition(to, QTextCursor::KeepAnchor);
  if (text.empty()) {
    cursor.removeSelectedText();
  } else {
    cursor.insertText(ToDocumentText(text));
  }
}

void ReceiveView::ResetText(std::u16string_view text) {
  setPlainText(ToDocumentText(text));
}

std::u16string ReceiveView::ModelText() const {
  return FromDocumentText(document()->toRawText());
}

bool ReceiveView::AtEnd() const {
  // The last block in sight, whatever the lazily laid out scroll range says.
  QTextCursor bottom = cursorForPosition(QPoint(0, viewport()->height() - 1));
  return bottom.blockNumber() >= document()->blockCount() - 1;
}

void ReceiveView::ScrollToEnd() {
  // The document lays itself out lazily: the scroll bar's maximum may still be
  // the old one, so go by the caret, which makes the layout catch up.
  // The user's selection stays as it was.
  QTextCursor saved = textCursor();
  QTextCursor end(document());
  end.movePosition(QTextCursor::End);
  setTextCursor(end);
  ensureCursorVisible();
  QScrollBar* bar = verticalScrollBar();
  bar->setValue(bar->maximum());
  int value = bar->value();
  setTextCursor(saved);
  bar->setValue(value);
}

QMimeData* ReceiveView::createMimeDataFromSelection() const {
  // The document's own copy would hand out the zero-width spaces that stand
  // for CR; the clipboard gets the received text instead.
  auto* mime = new QMimeData;
  mime->setText(QString::fromStdU16String(FromDocumentText(textCursor().selectedText())));
  return mime;
}

void ReceiveView::SetPreferredText(int columns, int lines) {
  preferredColumns_ = columns;
  preferredLines_ = lines;
  updateGeometry();
}

int ReceiveView::VisibleColumns() const {
  int margins = 2 * static_cast<int>(document()->documentMargin());
  return (viewport()->width() - margins) / fontMetrics().horizontalAdvance(QLatin1Char('0'));
}

QSize ReceiveView::sizeHint() const {
  if (preferredColumns_ <= 0) return QPlainTextEdit::sizeHint();
  int margins = 2 * (frameWidth() + static_cast<int>(document()->documentMargin()));
  // The scroll bar comes with the first screenful; the columns stay.
  int width = preferredColumns_ * fontMetrics().horizontalAdvance(QLatin1Char('0')) + margins +
              verticalScrollBar()->sizeHint().width();
  return {width, preferredLines_ * fontMetrics().lineSpacing() + margins};
}

}  // namespace wavetrace::ui
