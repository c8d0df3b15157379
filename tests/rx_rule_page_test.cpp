#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "core/app_state.h"
#include "rx/replace_rules.h"

namespace wavetrace::rx {
namespace {

std::u16string Wide(const std::string& text) {
  return std::u16string(text.begin(), text.end());
}

// Plays a script of page actions, e.g. "add a>b/2 sel 1 c>d/0 rm", where a
// rule is search>replace/mode (0 all, 1 first, 2 last) and "-" an empty one.
void Play(core::DataSettings& data, const std::string& script) {
  std::istringstream in(script);
  const auto fields = [&in] {
    std::string rule;
    in >> rule;
    RuleFields f;
    const size_t arrow = rule.find('>');
    const size_t slash = rule.find('/');
    if (rule != "-") {
      f.SearchFor = Wide(rule.substr(0, arrow));
      f.ReplaceWith = Wide(rule.substr(arrow + 1, slash - arrow - 1));
    }
    const int mode = slash == std::string::npos ? 0 : rule[slash + 1] - '0';
    f.Rall = mode == 0, f.Rfo = mode == 1, f.Rlo = mode == 2;
    return f;
  };
  for (std::string op; in >> op;) {
    if (op == "add") AddRule(data, fields());
    if (op == "ins") InsertRule(data);
    if (op == "rm") RemoveRule(data);
    if (op == "apply") ApplyRulePage(data, fields());
    if (op == "compact") CompactRules(data);
    if (op == "sel") {
      int index = 0;
      in >> index;
      SelectRule(data, fields(), index);
    }
  }
}

// "search>replace/RallRfoRlo" for slots 1 and 2, then count and current.
std::string Show(const core::DataSettings& data) {
  std::string text;
  for (int i = 1; i <= 2; ++i) {
    const core::SnRRule& r = data.SnR[i];
    for (char16_t ch : r.wcszSearchFor + u">" + r.wcszReplaceWith) text += static_cast<char>(ch);
    text += "/" + std::to_string(r.Rall) + std::to_string(r.Rfo) + std::to_string(r.Rlo) + " ";
  }
  return text + std::to_string(data.SnR_count) + "@" + std::to_string(data.SnRCurrentRule);
}

TEST(RulePageTest, ActionsOnTheRuleList) {
  const struct {
    std::string script;
    std::string expected;
  } cases[] = {
      {"", ">/100 >/100 0@1"},
      {"add a>b/2", "a>b/001 >/100 2@2"},
      {"add a>b add c>d", "a>b/100 >/100 2@2"},  // full: the second Add changes nothing
      {"add a>b sel 1 c>d/1", "a>b/100 c>d/010 2@1"},
      {"add a>b sel 9 -", "a>b/100 >/100 2@2"},
      {"add a>b sel 1 c>d/2 rm", "c>d/001 >/100 1@1"},
      {"add a>b sel 1 c>d rm rm", ">/100 >/100 1@1"},  // the last slot stays
      {"add a>b sel 2 c>d rm", "a>b/100 >/100 1@1"},
      {"add a>b/1 sel 1 c>d rm ins", ">/100 c>d/100 2@1"},
      {"sel 1 a>b/1 apply a>b/1 ins", ">/100 a>b/010 2@1"},
      {"add a>b ins", "a>b/100 >/100 2@2"},  // full: Insert changes nothing
      {"sel 1 a>b apply a>b ins sel 1 - apply -", "a>b/100 >/100 1@1"},
      {"add - sel 2 x>y/2 compact", "x>y/001 >/100 2@2"},
      {"add a>r sel 2 b>r apply b>r", "a>r/100 b>r/100 2@2"},
      {"add a>r sel 2 - apply -", "a>r/100 >/100 1@2"},
      {"apply -", ">/100 >/100 0@1"},
  };
  for (const auto& c : cases) {
    core::DataSettings data;
    Play(data, c.script);
    EXPECT_EQ(Show(data), c.expected) << c.script;
  }
}

TEST(RulePageTest, CaptionAndAvailability) {
  core::DataSettings data;
  EXPECT_TRUE(CanAddRule(data));
  Play(data, "add a>b sel 1 a>b");
  EXPECT_EQ(RuleCaption(data), u"1 / 2");
  EXPECT_FALSE(CanAddRule(data));
}

TEST(RulePageTest, ApplyPreparesBytesAndTextsKeep41Characters) {
  core::DataSettings data;
  RuleFields fields;
  fields.SearchFor = u"[0D][0A]" + std::u16string(45, u'a');
  fields.ReplaceWith = u"[7C]";
  ApplyRulePage(data, fields);
  const core::SnRRule& rule = data.SnR[1];
  EXPECT_EQ(rule.wcszSearchFor.size(), 41u);
  EXPECT_EQ(rule.SearchLength, 35);  // 41 characters, two escapes of 4 become 2 bytes
  EXPECT_EQ(std::string(rule.SearchBytes.begin(), rule.SearchBytes.begin() + 3), "\r\na");
  EXPECT_EQ(rule.SearchBytes[35], 0);
  EXPECT_EQ(rule.ReplaceLength, 1);
  EXPECT_EQ(rule.ReplaceBytes[0], '|');
}

}  // namespace
}  // namespace wavetrace::rx
