// Both lexers on text that nobody writes: against the plain reading of the rules, and against
// the clock.

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "LKCore/Base/LinkDetector.h"
#include "LKCore/Base/Text.h"
#include "LexForms.h"
#include "ReferenceLexer.h"
#include "Support/Corpus.h"
#include "Support/Growth.h"

namespace lk {
namespace {

std::vector<std::string> forms(const std::vector<LToken>& tokens) {
  std::vector<std::string> lines;
  for (const LToken& token : tokens) lines.push_back(describe(token));
  return lines;
}

// False at the first difference, so that one fault is one message.
bool agrees(std::string_view text, const std::shared_ptr<const LKProjectTermsSnapshot>& terms) {
  const auto plain = forms(testing::referenceTokens(text, *terms));
  const auto fast = forms(Lexer(text, terms).lex());
  EXPECT_EQ(fast, plain) << ::testing::PrintToString(text);
  testing::formOf(testing::blockTokens(text), text);
  return fast == plain && !::testing::Test::HasFailure();
}

const std::vector<std::string_view> kPieces = {
    "*",      "~",          "=",      ":",      "[",  "]", "(", ")",  "!",  "`",
    "#",      "@",          "<",      "-",      ">",  "a", " ", "\t", "\n", "\u00E9",
    "\u65E5", "\U0001F600", "\u0301", "\u2028", "\r", ".", "1", "\\", "|"};
const std::vector<std::string_view> kPhrases = {
    "**",  "***",    "~~",   "==", "::",        "](",        "[[",           "]]", "![", "<!--",
    "-->", "- [ ] ", "due:", "pr", "project:x", "@20240131", "(http://a.b)", "# ", "> ", "```",
    "[^",  " *",     "* ",   "a*", "*a",        "\n"};

std::string randomText(std::mt19937& random, bool phrases) {
  std::string text;
  const size_t length = random() % 40;
  for (size_t i = 0; i < length; ++i) {
    const auto& pieces = phrases && random() % 2 == 0 ? kPhrases : kPieces;
    text += pieces[random() % pieces.size()];
  }
  return text;
}

TEST(HostileText, IsReadAsThePlainRulesSay) {
  const auto terms = std::make_shared<const LKProjectTermsSnapshot>();
  std::mt19937 random(20240131);
  for (int i = 0; i < 6'000; ++i) ASSERT_TRUE(agrees(randomText(random, i % 2 == 0), terms));
  // Few characters in many orders reach what a wide alphabet misses.
  const std::vector<std::string_view> narrow = {"*", "*", "a", " ", "`", "[", "](", ")", "."};
  for (int i = 0; i < 6'000; ++i) {
    std::string text;
    for (size_t n = random() % 24; n > 0; --n) text += narrow[random() % narrow.size()];
    ASSERT_TRUE(agrees(text, terms));
  }
}

// --- The corpus --------------------------------------------------------------------------------

TEST(Corpus, IsReadAsThePlainRulesSay) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const auto terms = std::make_shared<const LKProjectTermsSnapshot>();
  test::forEachNote([&](const std::filesystem::path& file, const std::string& text) {
    ASSERT_TRUE(agrees(text, terms)) << file;
  });
}

// The mark at a line's head in names that both lexers share; none for all else.
std::string blockMark(std::string_view line) {
  std::string mark;
  for (const PToken& token : testing::blockTokens(line)) {
    if (token.kind == PTokenKind::eol) break;
    const bool none = token.kind == PTokenKind::ignore || token.kind == PTokenKind::tabLevel ||
                      token.kind == PTokenKind::end;
    const std::string all = describe(token);
    if (!none) mark = all.substr(all.find(' ') + 1);
  }
  return mark;
}

std::string inlineMark(std::string_view line, const LToken& token) {
  const std::string all = describe(token);
  std::string mark = all.substr(all.find(' ') + 1);
  switch (token.kind) {
    case LTokenKind::heading:
    case LTokenKind::ordered:
    case LTokenKind::task:
    case LTokenKind::doneTask:
    case LTokenKind::inProgressTask:
    case LTokenKind::cancelledTask:
      return mark;
    case LTokenKind::unordered:
    case LTokenKind::blockQuote:
    case LTokenKind::codeBlockFence:
      return mark.substr(0, mark.find(' '));
    case LTokenKind::admonition:
      return "blockQuote";
    default:
      break;
  }
  // What only the block lexer knows.
  std::string block = blockMark(line);
  for (const char* name : {"tableRow", "horizontalRule", "footnoteDefinition", "htmlComment"}) {
    if (block.starts_with(name)) return block;
  }
  return "";
}

// Why the two may differ about a line, or nothing.
const char* toldDifference(std::string_view line) {
  const std::string_view rest = text::trimmedSpacesTabs(line);
  const size_t hashes = rest.find_first_not_of('#');
  if (line.find("-->") < line.find("<!--")) return "a comment's closing line";
  if (rest.starts_with("0")) return "a number may begin with 0";
  if (rest.starts_with("```") && rest.size() < line.size()) return "a fence after blanks";
  if (hashes >= 2) return "a minor heading is read on, and may be empty";
  if (hashes == 1) return "a hash that is no heading is read on";
  if (!rest.empty() && rest[0] >= '1' && rest[0] <= '9') return "digits are passed over";
  if (text::isBlank(text::decode(line, 0).scalar) && rest.size() == line.size()) {
    return "blanks that only the inline lexer counts";
  }
  return nullptr;
}

TEST(Corpus, IsReadAlikeByBothLexersButForTheToldDifferences) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const auto terms = std::make_shared<const LKProjectTermsSnapshot>();
  size_t alike = 0;
  test::forEachNote([&](const std::filesystem::path& /*file*/, const std::string& text) {
    for (const std::string_view line : text::splitLines(text)) {
      if (line.empty()) continue;
      Lexer lexer(line, terms);
      lexer.nextToken();
      const std::string inlined = inlineMark(line, lexer.nextToken());
      const std::string block = blockMark(line);
      if (inlined == block) {
        ++alike;
      } else {
        EXPECT_NE(toldDifference(line), nullptr) << line << ": " << inlined << " / " << block;
      }
    }
  });
  EXPECT_GT(alike, 1000U);
}

// --- Time --------------------------------------------------------------------------------------

size_t work(const std::string& text) {
  Lexer lexer(text, std::make_shared<const LKProjectTermsSnapshot>());
  size_t tokens = 0;
  while (lexer.nextToken().kind != LTokenKind::end) ++tokens;
  ParagraphLexer block(text);
  while (block.nextToken().kind != PTokenKind::end) ++tokens;
  return tokens + links(text).size();
}

TEST(HostileText, TakesTimeInProportionToItsLength) {
  constexpr size_t kBytes = size_t{8} * 1024;
  for (const std::string_view unit : {"*",
                                      "**a ",
                                      "*a ",
                                      "a* ",
                                      "*a* ",
                                      "***a",
                                      "~~a ",
                                      "==a ",
                                      "::a ",
                                      ":",
                                      "[",
                                      "[[",
                                      "[[a",
                                      "![",
                                      "![*a",
                                      "[*a ",
                                      "[^",
                                      "]",
                                      "](",
                                      "]]",
                                      "(",
                                      "(*a ",
                                      "(a.b/",
                                      "*(x://[",
                                      "x://(a",
                                      "x://a(",
                                      "a@",
                                      "mailto:",
                                      "`",
                                      "`*a ",
                                      "``` ",
                                      "<!--",
                                      "<",
                                      "-->",
                                      "- [ ] due:",
                                      "- [ ] co ",
                                      "1",
                                      "0",
                                      "1. ",
                                      "> ",
                                      ">>",
                                      "#",
                                      "##",
                                      "#a",
                                      "@1",
                                      "_",
                                      "-",
                                      "--- ",
                                      "*~=:[`(!#@",
                                      "a.b-c.",
                                      "\u2014*",
                                      "- [ ]\n",
                                      "*a**b*** [](`(!["}) {
    const double times =
        test::growth(unit, kBytes, [](const std::string& text) { EXPECT_GT(work(text), 0U); });
    EXPECT_LE(times, 8) << unit;
  }
}

}  // namespace
}  // namespace lk
