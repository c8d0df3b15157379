#pragma once

#include <QPlainTextEdit>
#include <string>
#include <string_view>

namespace wavetrace::ui {

// The model's receive window text as the text document holds it, one
// character for one character, so that positions in the model are positions
// in the document: a CR becomes an invisible zero-width space (the LF of a
// line end makes the break), and the few characters the document would take
// as structure become U+FFFD.
QString ToDocumentText(std::u16string_view modelText);
// The way back, for what the user copies: zero-width spaces become CR again
// and paragraph separators LF.
std::u16string FromDocumentText(const QString& documentText);

// The read-only receive window. It follows the model's edits one by one
// instead of re-reading the whole text.
class ReceiveView : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit ReceiveView(QWidget* parent = nullptr);

  // Replaces [from, to) of the model's text with text. Positions beyond the
  // end are taken as the end.
  void ReplaceRange(int from, int to, std::u16string_view text);
  void ResetText(std::u16string_view text);
  // The text in the model's terms.
  [[nodiscard]] std::u16string ModelText() const;
  [[nodiscard]] int Length() const;

  // Whether the newest line is in view, and bringing it there.
  [[nodiscard]] bool AtEnd() const;
  void ScrollToEnd();

  // The size asked for: room for columns characters of the font on lines
  // lines, with the scroll bar (0: the text edit's own size hint).
  void SetPreferredText(int columns, int lines);
  // How many characters of the font a line shows.
  [[nodiscard]] int VisibleColumns() const;
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  QMimeData* createMimeDataFromSelection() const override;

 private:
  int preferredColumns_ = 0;
  int preferredLines_ = 0;
};

}  // namespace wavetrace::ui
