#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wavetrace::automation {

// A tag name keeps at most this many characters.
inline constexpr size_t kTagChars = 31;

// One command of a script file: <KEYWORD>argument<closing tag>.
struct ScriptCommand {
  std::u16string Keyword;     // upper case
  std::u16string ClosingTag;  // upper case; never checked
  std::u16string Argument;
};

// Finds the next command from cursor: a "<", a ">" after it, a "<" after that
// and a ">" after that. On success fills command and moves cursor two
// characters past the second "<" (so the closing tag's name is scanned again
// as text between commands); false, with cursor unchanged, when the four are
// not all there.
bool FindNextCommand(std::u16string_view text, size_t& cursor, ScriptCommand& command);

enum class Keyword { kUnknown, kComment, kDelay, kConfig, kSend, kPlay, kStop, kExitProgram };
// The keyword an upper-cased tag names.
Keyword KeywordOf(std::u16string_view upperTag);

// The number a DELAY argument gives, as the C library reads a decimal
// integer: leading blanks, a sign, digits; anything else ends it (0 when
// there are no digits). Held to 0..INT32_MAX.
int ScriptNumber(std::u16string_view text);

}  // namespace wavetrace::automation
