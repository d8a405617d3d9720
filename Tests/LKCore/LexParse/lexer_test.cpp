#include "LKCore/LexParse/Lexer.h"

#include <gtest/gtest.h>

#include <memory>

#include "LexForms.h"

namespace lk {
namespace {

using testing::formOf;
using testing::LexRow;

std::shared_ptr<const LKProjectTermsSnapshot> clientTerms() {
  auto terms = std::make_shared<LKProjectTermsSnapshot>();
  terms->metadataKeywords = {"client", "område", "two words", "project"};
  terms->setKeywordTables();
  return terms;
}

class InlineLexer : public ::testing::TestWithParam<LexRow> {};

TEST_P(InlineLexer, ReadsTheRow) {
  const std::string_view text = GetParam().text;
  EXPECT_EQ(formOf(Lexer(text, clientTerms()).lex(), text), GetParam().form) << text;
}

const LexRow kLineStarts[] = {
    {"TabsAndSpacesIndent", "\t  x", R"x(tabLevel 2 | string "x")x"},
    {"FiveSpacesAreTwoLevels", "     x", R"x(tabLevel 2 | string "x")x"},
    {"ManySpacesWithATab", " \t        x", R"x(tabLevel 3 | string "x")x"},
    {"UnicodeSpacesIndent", "\xC2\xA0\xE3\x80\x80x", R"x(tabLevel 1 | string "x")x"},
    {"IndentStopsAt22", "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\tx",
     R"x(tabLevel 22 | string "x")x"},
    {"HeadingAndTag", "# Hi #tag", R"x(heading 1 | string "Hi " | tag "#tag")x"},
    {"HeadingIsTheOnlyMark", "# 1. - x", R"x(heading 1 | string "1. - x")x"},
    {"BareHashes", "#\n# \n## \n#",
     R"x(string "#" | eol | string "# " | eol | string "## " | eol | string "#")x"},
    {"CarriageReturnIsHeadingText", "# \r", "heading 1 | eol"},
    {"SixHashes", "###### x", R"x(heading 6 | string "x")x"},
    {"SevenHashes", "####### x", R"x(string "######" | string "#" | string " x")x"},
    {"IndentedHashIsText", "    # text", R"x(tabLevel 1 | string "# text")x"},
    {"IndentedTag", "\t#tag", R"x(tabLevel 1 | tag "#tag")x"},
    {"HashNumber", "#1 x", R"x(string "#1 x")x"},
    {"Bullets", "- a\n* b\n+ c",
     R"x(unordered "-" | string "a" | eol | unordered "*" | string "b" | eol | string "+ c")x"},
    {"DashWord", "-x", R"x(string "-" | string "x")x"},
    {"DashesAreNoBullet", "-- x", R"x(string "-" | string "- x")x"},
    {"DashLinkIsNoBullet", "- [a](u)", R"x(string "-" | string " " | bracket "a" | url "u")x"},
    {"Statuses", "- [ ] a\n- [x] b\n- [X]\n- [/] c\n- [-] d",
     R"x(task | string "a" | eol | doneTask | string "b" | eol | doneTask | eol | inProgressTask | string "c" | eol | cancelledTask | string "d")x"},
    {"StatusNeedsASpace", "- [x]y", R"x(string "-" | string " " | string "[" | string "x]y")x"},
    {"Numbers", "12. x\n007. y", R"x(ordered 12 | string "x" | eol | string "007. y")x"},
    {"NumberTooBig", "9223372036854775808. x", R"x(string "9223372036854775808. x")x"},
    {"LargestNumber", "9223372036854775807. ", "ordered 9223372036854775807"},
    {"ZeroIsText", "0. item", R"x(string "0. item")x"},
    {"Quotes", "> > a\n>\n>>\n>text",
     R"x(blockQuote "> >" | string " a" | eol | blockQuote ">" | eol | blockQuote ">>" | eol | string ">" | string "text")x"},
    {"Admonition", "> [!tip] Do", R"x(admonition TIP ">" | string " Do")x"},
    {"AdmonitionInUnicodeCase", "> [!t\u0131p]", R"x(admonition TIP ">")x"},
    {"UnknownAdmonition", "> [!HOT] x",
     R"x(blockQuote ">" | string " " | string "[" | string "!" | string "HOT] x")x"},
    {"Fence", "```swift x\n````", R"x(codeBlockFence "swift x" | eol | codeBlockFence "`")x"},
    {"FenceAfterSpacesNotTab", "  ```\n\t```",
     R"x(tabLevel 1 | codeBlockFence "" | eol | tabLevel 1 | string "``" | string "`")x"},
    {"TwoBackticksAtTheStart", "``x``", R"x(string "``" | string "x" | string "``")x"},
    {"Pipe", "|a|", R"x(string "|" | string "a|")x"},
    {"LineEnds", "a\r\nb\u2028c\u0085",
     R"x(string "a" | eol | eol | string "b" | eol | string "c" | eol)x"},
    {"OneMarkALine", "- - [ ] x", R"x(unordered "-" | string "- " | string "[" | string " ] x")x"},
};

const LexRow kInlineMarks[] = {
    {"TagEnds", "#foo, #foo) #foo: #foo#bar #a_b #b.",
     R"x(string "#foo" | string ", " | string "#foo" | string ") " | tag "#foo" | string ":" | string " " | tag "#foo" | string "#" | string "bar " | string "#a" | string "_b " | tag "#b" | string ".")x"},
    {"TagsInAnyScript", "#\u65E5\u672C\u8A9E #caf\u00E9 #cafe\u0301/x-1",
     "tag \"#\u65E5\u672C\u8A9E\" | string \" \" | tag \"#caf\u00E9\" | string \" \" | "
     "tag \"#cafe\u0301/x-1\""},
    {"TagMidWord", "a#b *#c", R"x(string "a" | string "#" | string "b " | string "*" | tag "#c")x"},
    {"Dates", "@20240131 @2024013 x@20240131 @20240131.",
     R"x(dateRef "@20240131" | string " " | string "@2024013" | string " x" | string "@" | string "20240131 " | dateRef "@20240131" | string ".")x"},
    {"DateBeforeAComma", "@20240131, @ @",
     R"x(string "@20240131" | string ", " | string "@" | string " " | string "@")x"},
    {"DateWithADash", "@2024-013 @me", R"x(string "@2024-013" | string " " | string "@me")x"},
    {"Link", "[a](b) (x)", R"x(bracket "a" | url "b" | string " " | string "(" | string "x)")x"},
    {"EmptyLinkParts", "[](b) [a]() ![](u)",
     R"x(string "[" | string "]" | url "b" | string " " | bracket "a" | string "(" | string ") " | image "" | url "u")x"},
    {"BracketOverALineEnd", "[a\n](b)",
     R"x(string "[" | string "a" | eol | string "]" | url "b")x"},
    {"BackLinks", "[[a b|c#d]] [[]] [[a[b]]",
     R"x(backLink "a b|c#d" | string " " | string "[" | string "[" | string "]] " | string "[" | string "[" | string "a" | string "[" | string "b]]")x"},
    {"FailedBackLinkMayBeALink", "[[a](b)", R"x(string "[" | bracket "a" | url "b")x"},
    {"Footnotes", "[^1] [^] [^a[b]",
     R"x(footnoteRef "1" | string " " | string "[" | string "^] " | string "[" | string "^a" | string "[" | string "b]")x"},
    {"Code", "`a*b` `` ` x",
     R"x(inlineCode "a*b" | string " " | string "``" | string " " | string "`" | string " x")x"},
    {"Comments", "<!-- a -->b <!-- c",
     R"x(htmlComment " a " | string "b " | string "<" | string "!" | string "-- c")x"},
    {"CommentNeedsItsOwnEnd", "<!-->x", R"x(string "<" | string "!" | string "-->x")x"},
    {"IndentedComment", " <!--a-->", R"x(tabLevel 1 | htmlComment "a")x"},
    {"Meta", "- [ ] cold due:2024-01-01 overdue:x contexts:a,b client:acme",
     R"x(task | string "c" | string "old " | taskMeta due "2024-01-01" | string " overdue" | string ":" | string "x " | taskMeta contexts "a,b" | string " " | taskMeta client "acme")x"},
    {"MetaInAnyScript", "- [x] omr\u00E5de:a omr\u00E5de:b",
     R"x(doneTask | taskMeta område "a" | string " " | taskMeta område "b")x"},
    {"EmptyMeta", "- [ ] due: x Due:y",
     R"x(task | string "d" | string "ue" | string ":" | string " x Due" | string ":" | string "y")x"},
    {"NoMetaOffTasks", "due:2024-01-01", R"x(string "due" | string ":" | string "2024-01-01")x"},
    {"MetaEndsWithItsLine", "- [ ] a\ndue:b",
     R"x(task | string "a" | eol | string "due" | string ":" | string "b")x"},
};

const LexRow kStyles[] = {
    {"Emphasis", "*a* b", R"x(leftEmphasis | string "a" | rightEmphasis | string " b")x"},
    {"BoldInEmphasis", "*a**b**c*",
     R"x(leftEmphasis | string "a" | leftBold | string "b" | rightBold | string "c" | rightEmphasis)x"},
    {"ThreeStars", "***a***",
     R"x(leftEmphasis | leftBold | string "a" | rightBold | rightEmphasis)x"},
    {"UnevenStars", "**a*", R"x(string "*" | leftEmphasis | string "a" | rightEmphasis)x"},
    {"BulletBeforeEmphasis", "* a*", R"x(unordered "*" | string "a" | string "*")x"},
    {"SpacedStars", "a * b * c", R"x(string "a " | string "* b " | string "* c")x"},
    {"QuoteAtTheLineStart", "**\"a\"**", R"x(leftBold | string "\"a\"" | rightBold)x"},
    {"QuoteBehindAWord", "a**\"b\"**",
     R"x(string "a" | string "*" | string "*\"b\"" | string "*" | string "*")x"},
    {"StarInALink", "*a [a*b](c*d) e",
     R"x(string "*a " | bracket "a*b" | url "c*d" | string " e")x"},
    {"StarInCode", "*a `*` e", R"x(string "*a " | inlineCode "*" | string " e")x"},
    {"StarInAnImage", "*a ![*](u*) e*",
     R"x(leftEmphasis | string "a " | image "*" | url "u*" | string " e" | rightEmphasis)x"},
    {"StarInAURL", "*a (http://x.y/*b) e",
     R"x(string "*a " | string "(" | string "http" | string ":" | string "//x.y/" | string "*b) e")x"},
    {"StarInParentheses", "*a (b* c)",
     R"x(leftEmphasis | string "a " | string "(" | string "b" | rightEmphasis | string " c)")x"},
    {"StyleWithinALine", "**a\nb**",
     R"x(string "*" | string "*a" | eol | string "b" | string "*" | string "*")x"},
    {"Doubled", "~~a~~ ==b== ::c::",
     R"x(leftStrikethrough | string "a" | rightStrikethrough | string " " | leftHighlight | string "b" | rightHighlight | string " " | legacyLeftHighlight | string "c" | legacyRightHighlight)x"},
    {"Singles", "~a~ b=c d:e",
     R"x(string "~" | string "a" | string "~" | string " b" | string "=" | string "c d" | string ":" | string "e")x"},
    {"NestedSameStyle", "**a **b** c**",
     R"x(leftBold | string "a " | leftBold | string "b" | rightBold | string " c" | rightBold)x"},
    {"LoneStars", "****", R"x(string "*" | string "*" | string "*" | string "*")x"},
};

INSTANTIATE_TEST_SUITE_P(LineStarts, InlineLexer, ::testing::ValuesIn(kLineStarts),
                         testing::rowName);
INSTANTIATE_TEST_SUITE_P(Marks, InlineLexer, ::testing::ValuesIn(kInlineMarks), testing::rowName);
INSTANTIATE_TEST_SUITE_P(Styles, InlineLexer, ::testing::ValuesIn(kStyles), testing::rowName);

TEST(InlineLexer, YieldsEndAloneForTheEmptyTextAndEndAgainBehindIt) {
  Lexer lexer("", clientTerms());
  EXPECT_EQ(describe(lexer.nextToken()), "0-0 end");
  EXPECT_EQ(describe(lexer.nextToken()), "0-0 end");
}

TEST(InlineLexer, ReadsTheNoncharacterFFFFAsText) {
  const std::string_view text = "a\xEF\xBF\xBF*b*";
  EXPECT_EQ(formOf(Lexer(text, clientTerms()).lex(), text),
            "string \"a\xEF\xBF\xBF\" | leftEmphasis | string \"b\" | rightEmphasis");
}

TEST(LToken, WritesItsSourceForm) {
  for (const std::string_view text :
       {"\t\t- [/] a **b** due:x #t [[l]] ![i](u) [a](b)", "### h",
        "12. ~~x~~ ==y== ::z::", "> [!NOTE] *e* `c` <!--k--> [^1]", "```sh\n", "- @20240131 x"}) {
    std::string written;
    for (const LToken& token : Lexer(text, clientTerms()).lex()) written += sourceForm(token);
    EXPECT_EQ(written, text);
  }
}

TEST(LexScanner, WalksByScalarWithASentinelAtBothEnds) {
  LexScanner scanner("\u00E9\U0001F600z");
  EXPECT_EQ(scanner.previous(), LexScanner::sentinel);
  EXPECT_EQ(scanner.current(), U'\u00E9');
  EXPECT_EQ(scanner.next(), U'\U0001F600');
  EXPECT_EQ(scanner.nextNext(), U'z');
  for (int i = 0; i < 3; ++i) scanner.advance();
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_EQ(scanner.previous(), U'z');
  EXPECT_EQ(scanner.current(), LexScanner::sentinel);
  EXPECT_THROW(scanner.advance(), std::logic_error);
}

}  // namespace
}  // namespace lk
