#include <gtest/gtest.h>

#include <string>

#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteFiles/LKIndentation.h"
#include "LKCore/NoteFiles/LKSalvage.h"

namespace lk {
namespace {

struct TextCase {
  std::string name;
  std::string text;
  std::string expected;
};

std::string nameOf(const testing::TestParamInfo<TextCase>& info) {
  return info.param.name;
}

class Tabs : public testing::TestWithParam<TextCase> {};

TEST_P(Tabs, ReplaceLeadingBlanksOnce) {
  const std::string tabs = spacesToTabs(GetParam().text);
  EXPECT_EQ(tabs, GetParam().expected);
  EXPECT_EQ(spacesToTabs(tabs), tabs);
}

INSTANTIATE_TEST_SUITE_P(
    Indentation, Tabs,
    testing::Values(TextCase{"none", "a\n\tb c", "a\n\tb c"},
                    TextCase{"rounding", " a\n   b\n    c\n       d\n        e\n     f",
                             "\ta\n\tb\n\tc\n\td\n\t\te\n\tf"},
                    TextCase{"after_a_tab", "\t  a\n \tb", "\t  a\n\t\tb"},
                    TextCase{"blank_lines", "a\n      \n", "a\n\t\n"},
                    TextCase{"fence", "    ```\n    a\n    ```\n    b",
                             "\t```\n    a\n    ```\n\tb"},
                    TextCase{"two_backticks", "``\n    a", "``\n\ta"},
                    TextCase{"open_fence", "````\n    a\n    b", "````\n    a\n    b"}),
    nameOf);

TEST(Spaces, ReplaceLeadingTabsOutsideFences) {
  EXPECT_EQ(tabsToSpaces("\t\ta\tb\n```\n\tc\n```\n\td"), "        a\tb\n```\n\tc\n```\n    d");
}

class ForeignBlock : public testing::TestWithParam<TextCase> {};

// "TITLE|BODY", the title "-" when there is none.
TEST_P(ForeignBlock, GoesAndLeavesItsTitle) {
  const StrippedDocument stripped = stripForeignFrontMatter(GetParam().text);
  EXPECT_EQ(stripped.title.value_or("-") + "|" + stripped.body, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Files, ForeignBlock,
    testing::Values(TextCase{"none", "# A\n---\ntitle: B\n---", "-|# A\n---\ntitle: B\n---"},
                    TextCase{"unclosed", "---\ntitle: A\nb", "-|---\ntitle: A\nb"},
                    TextCase{"first_title", "---\ntitle: A \ntitle: B\n---\n\n b\n", "A|\n b\n"},
                    TextCase{"double_quotes", "---\ntitle: \"A: b\"\n---\nc", "A: b|c"},
                    TextCase{"single_quotes", "---\ntitle: ''A''\n---", "'A'|"},
                    TextCase{"unlike_quotes", "---\ntitle: \"A'\n---", "\"A'|"},
                    TextCase{"lone_quote", "---\ntitle: \"\n---", "\"|"},
                    TextCase{"empty_title", "---\ntitle: \"\"\n---\nb", "-|b"},
                    TextCase{"nested_title", "---\nbook:\n  title: A\n---\nb", "-|b"},
                    TextCase{"carriage_returns", "---\r\ntitle: A\r\n---\r\nb\r\n", "A|b\r\n"}),
    nameOf);

TEST(ForeignBlock, IsToldFromOursByItsKeys) {
  EXPECT_TRUE(hasLarkspireFrontMatterKey("\n ---\na: b\n  lk-cursor 0\n---\n"));
  EXPECT_TRUE(hasLarkspireFrontMatterKey("---\r\nlk-hash"));
  EXPECT_FALSE(hasLarkspireFrontMatterKey("---\na: lk-b\n ---\nlk-cursor: 0"));
  EXPECT_FALSE(hasLarkspireFrontMatterKey("a\n---\nlk-cursor: 0\n---\n"));
  EXPECT_FALSE(hasLarkspireFrontMatterKey(""));
}

TEST(Salvage, ReadsWhatADamagedBlockStillHolds) {
  const auto note = extractSalvageableFields(
      "---\nid: broken\nlk-cursor: 3\n<<<<<<< mine\nlk-tag-rank:\n  a: m\nstatus: Archived\n"
      "lk-tasks: 1:C0E3A5D8-1F57-4A43-9B6D-7D0B8E2F6A11\n---\n\n  Text\n    more");
  ASSERT_TRUE(note);
  SalvagedFields expected;
  expected.cursorIndex = 3;
  expected.isArchived = true;
  expected.taskEntries = {{1, *UUID::parse("C0E3A5D8-1F57-4A43-9B6D-7D0B8E2F6A11"), {}}};
  expected.userProperties = {{"status", "Archived"}};
  expected.tagRanks = {{"a", "m"}};
  EXPECT_TRUE(note->fields == expected);
  EXPECT_EQ(note->body, "Text\n\tmore");
}

TEST(Salvage, NeverTakesTextIntoAnUnclosedBlock) {
  const auto note = extractSalvageableFields(
      "---\ncreated: 2025-11-02T07:15:00Z\nlk-tag-rank:\n  a: m\nlk-new: 1\nDear Ann: hello\n"
      "lk-cursor: 7\n");
  ASSERT_TRUE(note);
  EXPECT_EQ(note->fields.created, parseISO8601("2025-11-02T07:15:00Z"));
  EXPECT_EQ(note->fields.cursorIndex, std::nullopt);
  EXPECT_EQ(note->body, "Dear Ann: hello\nlk-cursor: 7\n");
  EXPECT_FALSE(extractSalvageableFields("---\nDear Ann: hello"));
  EXPECT_FALSE(extractSalvageableFields("id: 1\n---\n"));
}

}  // namespace
}  // namespace lk
