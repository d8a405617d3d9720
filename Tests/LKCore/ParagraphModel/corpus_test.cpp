// Real notes as paragraphs, beside one run of the block lexer, and their tables written anew.

#include <gtest/gtest.h>

#include <algorithm>

#include "LKCore/LexParse/ParagraphLexer.h"
#include "ParagraphForms.h"
#include "Support/Corpus.h"

namespace lk {
namespace {

// The last mark of each line, without the passes over rows; "undefined" for none.
std::vector<std::string> kindsByLexer(std::string_view text) {
  std::vector<std::string> kinds = {"undefined"};
  ParagraphLexer lexer(text);
  for (PToken token = lexer.nextToken(); token.kind != PTokenKind::end; token = lexer.nextToken()) {
    if (token.kind == PTokenKind::eol) kinds.emplace_back("undefined");
    if (token.kind == PTokenKind::eol || token.kind == PTokenKind::tabLevel ||
        token.kind == PTokenKind::ignore || token.kind == PTokenKind::footnoteDefinition) {
      continue;
    }
    const std::string all = describe(token);
    kinds.back() = all.substr(all.find(' ') + 1);
  }
  return kinds;
}

// The number of paragraphs that have a kind.
size_t checkKinds(const std::vector<Paragraph>& paragraphs, std::string_view text) {
  const std::vector<std::string> kinds = kindsByLexer(text);
  size_t count = 0;
  EXPECT_LE(paragraphs.size(), kinds.size());
  for (size_t i = 0; i < std::min(paragraphs.size(), kinds.size()); ++i) {
    const Paragraph& paragraph = paragraphs[i];
    if (paragraph.inCodeBlock || paragraph.inComment) continue;
    if (paragraph.type.kind == ParagraphKind::isEmpty) continue;
    EXPECT_EQ(describe(paragraph.type), kinds[i]) << paragraph.line();
    if (paragraph.type.kind != ParagraphKind::undefined) ++count;
  }
  return count;
}

size_t checkTables(const std::vector<Paragraph>& paragraphs, const UTF16Text& storage) {
  const auto tables = testing::tablesOf(paragraphs);
  for (const std::vector<size_t>& rows : tables) {
    std::optional<LKTableData> table = LKTableData::parse(paragraphs, rows, storage);
    if (!table) {
      ADD_FAILURE() << "no table: " << paragraphs[rows[0]].line();
      continue;
    }
    std::erase_if(table->rows, [](const std::vector<std::string>& row) {
      return std::ranges::all_of(row, [](const std::string& cell) { return cell.empty(); });
    });
    EXPECT_EQ(testing::firstTable(table->toMarkdown()), table) << table->toMarkdown();
  }
  return tables.size();
}

TEST(Corpus, IsCoveredTypedAndItsTablesReadAlikeAgain) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  size_t typed = 0;
  size_t tables = 0;
  test::forEachNote([&](const std::filesystem::path& file, const std::string& text) {
    const std::vector<Paragraph> paragraphs = makeParagraphs(text);
    const UTF16Text storage(text);
    std::string whole;
    for (const Paragraph& paragraph : paragraphs) whole += storage.of(paragraph.range);
    EXPECT_TRUE(whole == text) << file;
    // To the lexer CR LF is two line ends.
    if (text.find('\r') == std::string::npos) typed += checkKinds(paragraphs, text);
    tables += checkTables(paragraphs, storage);
  });
  EXPECT_GT(typed, 1000U);
  EXPECT_GT(tables, 50U);
}

}  // namespace
}  // namespace lk
