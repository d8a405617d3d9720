#include "LKCore/LexParse/ParagraphLexer.h"

#include <gtest/gtest.h>

#include "LKCore/LexParse/LKLineSeparators.h"
#include "LexForms.h"

namespace lk {
namespace {

using testing::formOf;
using testing::LexRow;

class BlockLexer : public ::testing::TestWithParam<LexRow> {};

TEST_P(BlockLexer, ReadsTheRow) {
  const std::string_view text = GetParam().text;
  EXPECT_EQ(formOf(testing::blockTokens(text), text), GetParam().form) << text;
}

const LexRow kRows[] = {
    {"Empty", "", ""},
    {"OneScalar", "\u00E9", "eol"},
    {"Plain", "abc\nd", "ignore | eol | eol"},
    {"Indents", " \t x\n\u00A0y", "tabLevel 2 | eol | ignore | eol"},
    {"HashAlone", "#", ""},
    {"HashAndSpace", "# ", "ignore | eol"},
    {"HashAndLineFeed", "#\n", "ignore | eol"},
    {"HashSpaceLineFeed", "# \n", "ignore | eol"},
    {"Heading", "# x", "heading 1 | eol"},
    {"HeadingKeepsItsKind", "# - item", "heading 1 | ignore | eol"},
    {"MinorHeadingIsReadOn", "## - item", "heading 2 | unordered | ignore | eol"},
    {"BareMinorHeading", "### ", "heading 3"},
    {"SevenHashes", "####### x", "ignore | ignore | eol"},
    {"IndentedHash", "  # x", "tabLevel 1 | ignore | ignore | eol"},
    {"HashWord", "#tag", "ignore | ignore | eol"},
    {"Ordered", "0. x\n12. y", "ordered 0 | eol | ordered 12 | eol"},
    {"DigitsThenDash", "12- x", "ignore | ignore | unordered | eol"},
    {"DigitThenWord", "1x", "ignore | eol"},
    {"NumberTooBigLosesDigits", "19223372036854775807. x",
     "ignore | ordered 9223372036854775807 | eol"},
    {"LeadingZerosFit", "00000000000000000000000007. x", "ordered 7 | eol"},
    {"Rules", "---\n--- \n*****\n___",
     "horizontalRule | eol | horizontalRule | eol | horizontalRule | eol | horizontalRule"},
    {"NoRules", "--- x\n***x\n__\n_",
     "ignore | ignore | eol | ignore | ignore | eol | ignore | eol | eol"},
    {"SpacedRulesAreBullets", "- - -\n* * *",
     "unordered | ignore | eol | unordered | ignore | eol"},
    {"Checkboxes", "- [ ]  two\n- [/] x\n- [-] x\n- [X]\n- [x]",
     "task | ignore | eol | inProgressTask | eol | cancelledTask | eol | doneTask | eol | "
     "doneTask"},
    {"NoCheckboxes", "- [x]y\n- [link](u)\n-item",
     "ignore | ignore | eol | ignore | ignore | eol | ignore | ignore | eol"},
    {"IndentedBullet", "    - item", "tabLevel 1 | unordered | ignore | eol"},
    {"Quotes", "> text\n>\n>>\n> > x\n>text",
     "blockQuote | ignore | eol | blockQuote | eol | blockQuote | eol | blockQuote | eol | ignore "
     "| eol"},
    {"QuoteKeepsItsKind", "> - item", "blockQuote | ignore | eol"},
    {"Fence", "```js\n  ```\n\t```\n``x",
     "codeBlockFence | ignore | eol | tabLevel 1 | ignore | eol | tabLevel 1 | ignore | eol | "
     "ignore | eol"},
    {"TableRow", "| a |", "tableRow | ignore | eol"},
    {"FootnoteDefinition", "[^1]: x\n[^]: x\n[^1] x\n[1]: x",
     "footnoteDefinition | eol | ignore | eol | ignore | eol | ignore | eol"},
    {"CommentOpen", "<!-- a\nb -->", "htmlCommentOpen | eol | htmlCommentClose"},
    {"CommentOnOneLine", "<!-- a -->", "ignore | eol"},
    {"CommentLater", "x <!-- y", "ignore | eol"},
    {"CommentCloseThenOpen", "--> <!--", "htmlCommentClose"},
    {"IndentedCommentOpen", " <!-- a", "tabLevel 1 | ignore | eol"},
    {"CommentInTheNextLine", "a\n<!--", "eol | htmlCommentOpen"},
    {"CarriageReturnLineFeed", "- a\r\n", "unordered | eol | eol"},
};

INSTANTIATE_TEST_SUITE_P(Lines, BlockLexer, ::testing::ValuesIn(kRows), testing::rowName);

TEST(LineSeparators, AreReplacedOneByOneWithCRLFAsOne) {
  const std::string all = "a\r\nb\rc\u2028d\u2029e\u0085f\ng\u2014";
  EXPECT_EQ(LKLineSeparators::toSpaces(all), "a b c d e f\ng\u2014");
  EXPECT_EQ(lkLineSeparatorsToNewlines(all), "a\nb\nc\nd\ne\nf\ng\u2014");
  EXPECT_TRUE(LKLineSeparators::containsAny(all));
  EXPECT_FALSE(LKLineSeparators::containsAny("a\nb\u2014\u00E9"));
}

}  // namespace
}  // namespace lk
