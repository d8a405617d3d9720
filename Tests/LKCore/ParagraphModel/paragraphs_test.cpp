// From a text to its paragraphs: lines, types, fences and comments.

#include <gtest/gtest.h>

#include <ctime>
#include <set>

#include "LKCore/ParagraphModel/ParagraphPasses.h"
#include "ParagraphForms.h"

namespace lk {
namespace {

using testing::formOf;

struct FormRow {
  const char* name;
  std::string_view text;
  std::string form;
};

std::string formRowName(const ::testing::TestParamInfo<FormRow>& info) {
  return info.param.name;
}

class Paragraphs : public ::testing::TestWithParam<FormRow> {};

TEST_P(Paragraphs, AreMadeOfTheRow) {
  EXPECT_EQ(formOf(makeParagraphs(GetParam().text)), GetParam().form) << GetParam().text;
}

const FormRow kTextRows[] = {
    {"Empty", "", ""},
    {"EveryKind", "## a\n7. a\n* a\n> a\n- [ ] a\n- [x] a\n- [/] a\n- [-] a\n \t\n| a\n---\nplain",
     "heading 2 | ordered 7 | unordered | blockQuote quote 1 | task | doneTask | inProgressTask | "
     "cancelledTask | isEmpty level 2 | tableRow | horizontalRule | undefined"},
    {"LaterMarkCounts", "## - a\n# - a", "unordered | heading 1"},
    {"LoneHash", "#", "undefined"},
    {"Level", "\t\t- a\n    b", "unordered level 2 | undefined level 1"},
    {"QuoteLevels", ">> a\n> > > a\n>\t\n\t> a >",
     "blockQuote quote 2 | blockQuote quote 3 | undefined | blockQuote level 1 quote 1"},
    {"FootnoteOfAWholeTextIsPlain", "[^1]: a", "undefined"},
    {"CarriageReturnLineFeed", "\t- a\r\n- b\r- c", "unordered level 1 | unordered | unordered"},
    {"VerticalTabEndsOnlyTheMark", "- a\v# b\n\f# c", "unordered | undefined"},
    {"AdjacentFences", "```\n```", "codeBlockFence | codeBlockFence"},
    {"FencesPairTwoByTwo", "```js\n# a\n```\n# b\n```\n# c",
     "codeBlockFence | undefined code | codeBlockFence | heading 1 | codeBlockFence unpaired | "
     "heading 1"},
    {"Comment", "<!-- a\n# b\n-->\n# c",
     "htmlCommentOpen | undefined comment | htmlCommentClose | heading 1"},
    {"CommentTakesTheNextClose", "<!--\n<!--\n-->\n-->",
     "htmlCommentOpen | undefined comment | htmlCommentClose | htmlCommentClose"},
    {"OpenComment", "<!--\n# a\n<!--", "htmlCommentOpen | heading 1 | htmlCommentOpen"},
    {"CommentsOpenInCodeIsNone", "```\n<!--\n```\n# a\n-->",
     "codeBlockFence | undefined code | codeBlockFence | heading 1 | htmlCommentClose"},
    {"CommentOverridesCodeAndTables", "<!--\n```\na\n```\n| a |\n|-|\n-->",
     "htmlCommentOpen | undefined comment | undefined comment | undefined comment | undefined "
     "comment | undefined comment | htmlCommentClose"},
    {"Table", "| a |\n| - |\n| b |\n\n| c |",
     "tableRow table header | tableRow table separator | tableRow table data | isEmpty | tableRow"},
    {"TableAfterPipes", "| x |\n| a |\n| - |\nend",
     "tableRow | tableRow table header | tableRow table separator | undefined"},
    {"HeaderMayLookLikeASeparator", "|-|\n|-|", "tableRow table header | tableRow table separator"},
    {"NoSeparator", "| a |\n| : |\n| b |", "tableRow | tableRow | tableRow"},
    {"TableInCode", "```\n| a |\n| - |\n```",
     "codeBlockFence | undefined code | undefined code | codeBlockFence"},
    {"IndentedTable", "\t| a |\n\t| - |",
     "tableRow level 1 table header | tableRow level 1 table separator"},
};

INSTANTIATE_TEST_SUITE_P(Texts, Paragraphs, ::testing::ValuesIn(kTextRows), formRowName);

TEST(ParagraphRanges, CountUTF16UnitsAndEndAtEachLineEnd) {
  const std::string text = "é\n\U0001F600\r\nb\rc\u2028d\u2029e\u0085f\vg\f\n";
  std::string ranges;
  for (const Paragraph& paragraph : makeParagraphs(text)) {
    const std::string line = describe(paragraph);
    ranges.append(line.substr(0, line.find(' '))).append(" ");
  }
  EXPECT_EQ(ranges, "0-2 2-6 6-8 8-10 10-12 12-14 14-19 ");
}

TEST(ParagraphRows, HaveIdsOfTheirOwn) {
  std::set<UUID> ids = {UUID()};
  for (const Paragraph& paragraph : makeParagraphs(std::string(300, '\n'))) {
    ids.insert(paragraph.id);
    EXPECT_EQ(paragraph, Paragraph(paragraph.id, 0));
  }
  EXPECT_EQ(ids.size(), 301U);
}

TEST(ParagraphRows, KnowAFootnotesDefinitionAfterAnEdit) {
  Paragraph paragraph(0);
  paragraph.quoteLevel = 3;
  paragraph.tabLevel = 2;
  classify(paragraph, "[^1]: a\n", LineReading::afterEdit);
  EXPECT_EQ(formOf({&paragraph, 1}), "footnoteDefinition");
}

TEST(Fences, LeaveFoldedOnesAside) {
  std::vector<Paragraph> paragraphs = makeParagraphs("```\na\n```\n# b\n```\nc\n```");
  paragraphs.erase(paragraphs.begin() + 1, paragraphs.begin() + 3);
  paragraphs[0].childrenAreFolded = true;
  pairCodeBlockFences(paragraphs);
  EXPECT_EQ(formOf(paragraphs),
            "codeBlockFence folded | heading 1 | codeBlockFence | undefined code | codeBlockFence");
}

TEST(HostileRows, AreMadeInTimeInProportionToTheirNumber) {
  for (const std::string_view unit :
       {"\n", "<!--\n", "-->\n", "```\n", "|\n", "|-\n", ">", "é", "\v", "1"}) {
    std::string text;
    for (int i = 0; i < 20'000; ++i) text += unit;
    const std::clock_t start = std::clock();
    EXPECT_FALSE(makeParagraphs(text).empty());
    // Far above what it takes, and below what its square would.
    EXPECT_LT(std::clock() - start, 3 * CLOCKS_PER_SEC) << unit;
  }
}

}  // namespace
}  // namespace lk
