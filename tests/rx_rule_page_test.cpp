#include <gtest/gtest.h>

#include <string>

#include "core/app_state.h"
#include "rx/replace_rules.h"

namespace wavetrace::rx {
namespace {

RuleFields Fields(const std::u16string& search, const std::u16string& replace, int32_t mode = 0) {
  RuleFields fields;
  fields.SearchFor = search;
  fields.ReplaceWith = replace;
  fields.Rall = mode == 0;
  fields.Rfo = mode == 1;
  fields.Rlo = mode == 2;
  return fields;
}

// Slot contents as "search>replace/mode" for slots 1 and 2.
std::string Slots(const core::DataSettings& data) {
  std::string text;
  for (int i = 1; i <= 2; ++i) {
    const core::SnRRule& rule = data.SnR[i];
    for (char16_t ch : rule.wcszSearchFor) text += static_cast<char>(ch);
    text += '>';
    for (char16_t ch : rule.wcszReplaceWith) text += static_cast<char>(ch);
    text += '/' + std::to_string(rule.Rall) + std::to_string(rule.Rfo) + std::to_string(rule.Rlo);
    if (i == 1) text += ' ';
  }
  return text;
}

TEST(RulePageTest, AddStoresAndAppendsUntilFull) {
  core::DataSettings data;
  EXPECT_EQ(RuleCaption(data), u"1 / 0");
  EXPECT_TRUE(AddRule(data, Fields(u"a", u"b", 2)));
  EXPECT_EQ(Slots(data), "a>b/001 >/100");
  EXPECT_EQ(data.SnR_count, 2);
  EXPECT_EQ(data.SnRCurrentRule, 2);
  EXPECT_FALSE(CanAddRule(data));
  EXPECT_FALSE(AddRule(data, Fields(u"c", u"d")));
  EXPECT_EQ(Slots(data), "a>b/001 >/100") << "a full list changes nothing";
  EXPECT_EQ(RuleCaption(data), u"2 / 2");
}

TEST(RulePageTest, SelectStoresTheFieldsBeforeMoving) {
  core::DataSettings data;
  AddRule(data, Fields(u"a", u"b"));
  SelectRule(data, Fields(u"c", u"d", 1), 1);
  EXPECT_EQ(Slots(data), "a>b/100 c>d/010");
  EXPECT_EQ(data.SnRCurrentRule, 1);
  SelectRule(data, RuleFieldsOf(data, 1), 5);
  EXPECT_EQ(data.SnRCurrentRule, 2) << "the index is clamped to the rule count";
}

TEST(RulePageTest, RemoveMovesLaterRulesDownButKeepsOneSlot) {
  core::DataSettings data;
  AddRule(data, Fields(u"a", u"b"));
  SelectRule(data, Fields(u"c", u"d", 2), 1);
  RemoveRule(data);
  EXPECT_EQ(Slots(data), "c>d/001 >/100");
  EXPECT_EQ(data.SnR_count, 1);
  EXPECT_EQ(data.SnRCurrentRule, 1);
  RemoveRule(data);
  EXPECT_EQ(Slots(data), ">/100 >/100");
  EXPECT_EQ(data.SnR_count, 1) << "the last rule's slot stays";
}

TEST(RulePageTest, RemoveTheSecondRuleClampsTheIndex) {
  core::DataSettings data;
  AddRule(data, Fields(u"a", u"b"));
  SelectRule(data, Fields(u"c", u"d"), 2);
  RemoveRule(data);
  EXPECT_EQ(Slots(data), "a>b/100 >/100");
  EXPECT_EQ(data.SnRCurrentRule, 1);
}

TEST(RulePageTest, InsertMovesRulesUpAndClearsTheCurrentSlot) {
  core::DataSettings data;
  data.SnR_count = 1;
  StoreRuleFields(data, Fields(u"a", u"b", 1));
  EXPECT_TRUE(InsertRule(data));
  EXPECT_EQ(Slots(data), ">/100 a>b/010");
  EXPECT_EQ(data.SnR_count, 2);
  EXPECT_FALSE(InsertRule(data));
  EXPECT_EQ(Slots(data), ">/100 a>b/010");
}

TEST(RulePageTest, CompactRulesClosesGaps) {
  core::DataSettings data;
  data.SnR_count = 2;
  data.SnR[2].wcszSearchFor = u"x";
  data.SnR[2].wcszReplaceWith = u"y";
  data.SnR[2].Rall = 0;
  data.SnR[2].Rlo = 1;
  CompactRules(data);
  EXPECT_EQ(Slots(data), "x>y/001 >/100");
}

TEST(RulePageTest, ApplyCompactsRecountsAndPrepares) {
  const struct {
    std::u16string first;
    std::u16string second;
    int32_t count;
    std::string slots;
  } cases[] = {
      {u"[0D][0A]", u"b", 2, "[0D][0A]>r/100 b>r/100"},
      {u"", u"b", 1, "b>r/100 >/100"},
      {u"a", u"", 1, "a>r/100 >r/100"},
      {u"", u"", 0, ">r/100 >r/100"},
  };
  for (const auto& c : cases) {
    core::DataSettings data;
    data.SnR_count = 2;
    data.SnR[2].wcszSearchFor = c.second;
    data.SnR[2].wcszReplaceWith = u"r";
    data.SnRCurrentRule = 1;
    ApplyRulePage(data, Fields(c.first, u"r"));
    EXPECT_EQ(data.SnR_count, c.count);
    EXPECT_EQ(Slots(data), c.slots);
  }
  core::DataSettings data;
  ApplyRulePage(data, Fields(u"[0D][0A]", u"[7C]"));
  EXPECT_EQ(data.SnR[1].SearchLength, 2);
  EXPECT_EQ(data.SnR[1].SearchBytes[0], '\r');
  EXPECT_EQ(data.SnR[1].SearchBytes[1], '\n');
  EXPECT_EQ(data.SnR[1].ReplaceLength, 1);
  EXPECT_EQ(data.SnR[1].ReplaceBytes[0], '|');
}

TEST(RulePageTest, TextsKeep41Characters) {
  core::DataSettings data;
  StoreRuleFields(data, Fields(std::u16string(50, u'a'), std::u16string(45, u'b')));
  EXPECT_EQ(data.SnR[1].wcszSearchFor.size(), 41u);
  EXPECT_EQ(data.SnR[1].wcszReplaceWith.size(), 41u);
  data.SnR_count = 1;
  PrepareRules(data);
  EXPECT_EQ(data.SnR[1].SearchLength, 41);
  EXPECT_EQ(data.SnR[1].SearchBytes[41], 0);
}

}  // namespace
}  // namespace wavetrace::rx
