#include "automation/script_scanner.h"

#include <array>
#include <cstdint>
#include <utility>

namespace wavetrace::automation {
namespace {

std::u16string UpperTag(std::u16string_view tag) {
  std::u16string upper(tag.substr(0, kTagChars));
  for (char16_t& c : upper) {
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
  }
  return upper;
}

}  // namespace

bool FindNextCommand(std::u16string_view text, size_t& cursor, ScriptCommand& command) {
  size_t open1 = text.find(u'<', cursor);
  if (open1 == std::u16string_view::npos) return false;
  size_t close1 = text.find(u'>', open1 + 1);
  if (close1 == std::u16string_view::npos) return false;
  size_t open2 = text.find(u'<', close1 + 1);
  if (open2 == std::u16string_view::npos) return false;
  size_t close2 = text.find(u'>', open2 + 1);
  if (close2 == std::u16string_view::npos) return false;
  command.Keyword = UpperTag(text.substr(open1 + 1, close1 - open1 - 1));
  command.ClosingTag = UpperTag(text.substr(open2 + 1, close2 - open2 - 1));
  command.Argument = std::u16string(text.substr(close1 + 1, open2 - close1 - 1));
  cursor = open2 + 2;
  return true;
}

Keyword KeywordOf(std::u16string_view upperTag) {
  static constexpr std::array<std::pair<std::u16string_view, Keyword>, 7> kKeywords = {{
      {u"COMMENT", Keyword::kComment},
      {u"DELAY", Keyword::kDelay},
      {u"CONFIG", Keyword::kConfig},
      {u"SEND", Keyword::kSend},
      {u"PLAY", Keyword::kPlay},
      {u"STOP", Keyword::kStop},
      {u"EXITPROGRAM", Keyword::kExitProgram},
  }};
  for (auto [name, keyword] : kKeywords) {
    if (upperTag == name) return keyword;
  }
  return Keyword::kUnknown;
}

int ScriptNumber(std::u16string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) negative = text[i++] == u'-';
  int64_t value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i] - u'0');
    if (value > INT32_MAX) value = INT32_MAX;
  }
  return negative ? 0 : static_cast<int>(value);
}

}  // namespace wavetrace::automation
