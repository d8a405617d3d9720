// Which rows are tables, and their cells read and written.

#include <gtest/gtest.h>

#include "LKCore/ParagraphModel/TableGrouping.h"
#include "ParagraphForms.h"

namespace lk {
namespace {

using testing::firstTable;
using testing::formOf;

TEST(TableSeparator, IsMadeOfDashesAndColonsAtTheirEnds) {
  for (const char* row :
       {"| - |", "|-", "|:-:|---:|:--|", "\t|\t-\t|\n", "|| - ||", "| :: | - |"}) {
    EXPECT_TRUE(isTableSeparatorRow(row)) << row;
  }
  for (const char* row : {"", "-", "---", "|", "| : |", "| |", "| --- | x |", "|- -|", "|-:-|",
                          "|:::-|", "|—|", "x | - |"}) {
    EXPECT_FALSE(isTableSeparatorRow(row)) << row;
  }
}

class Regrouping : public ::testing::Test {
 protected:
  void edit(size_t row, std::string_view line) {
    paragraphs[row].text = std::string(line);
    classify(paragraphs[row], line, LineReading::afterEdit);
    regroupTablesInRange(paragraphs, row, row, {});
  }

  std::vector<Paragraph> paragraphs = makeParagraphs("| a |\n| - |\n| b |\n| c |\n\n| d |\n|-|");
};

TEST_F(Regrouping, KeepsATablesIdWhenARowChanges) {
  const UUID id = paragraphs[0].tableID;
  const UUID other = paragraphs[5].tableID;
  EXPECT_NE(id, other);
  EXPECT_NE(id, UUID());
  edit(2, "| B |\n");
  edit(0, "| A |\n");
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(paragraphs[i].tableID, id) << i;
  EXPECT_EQ(paragraphs[4].tableID, UUID());
  EXPECT_EQ(paragraphs[6].tableID, other);
}

TEST_F(Regrouping, PartsAndJoinsTables) {
  edit(2, "text\n");
  EXPECT_EQ(formOf(paragraphs),
            "tableRow table header | tableRow table separator | undefined | tableRow | isEmpty | "
            "tableRow table header | tableRow table separator");
  EXPECT_EQ(paragraphs[3].tableID, UUID());
  edit(2, "| b |\n");
  edit(4, "| joins |\n");
  for (size_t i = 0; i < 7; ++i) EXPECT_EQ(paragraphs[i].tableID, paragraphs[0].tableID) << i;
}

TEST_F(Regrouping, LeavesAFoldedHeaderWithItsId) {
  const UUID id = paragraphs[0].tableID;
  paragraphs.erase(paragraphs.begin() + 1, paragraphs.begin() + 4);
  paragraphs[0].childrenAreFolded = true;
  groupAllTableRows(paragraphs, {});
  EXPECT_EQ(formOf({paragraphs.data(), 2}), "tableRow table header folded | isEmpty");
  EXPECT_EQ(paragraphs[0].tableID, id);
}

TEST_F(Regrouping, NeedsTheCapabilityAndARow) {
  paragraphs[5].text = "text";
  classify(paragraphs[5], "text", LineReading::afterEdit);
  regroupTablesInRange(paragraphs, 0, 6, {.tables = false});
  regroupTablesInRange(paragraphs, 7, 9, {});
  EXPECT_EQ(paragraphs[5].tableRole, TableRole::header);
  regroupTablesInRange(paragraphs, 6, 99, {});
  EXPECT_EQ(formOf({&paragraphs[5], 2}), "undefined | tableRow");
  EXPECT_EQ(formOf(makeParagraphs("|a\n|-", {.tables = false})), "tableRow | tableRow");
}

// --- Cells ---------------------------------------------------------------------------------------

struct CellRow {
  std::string_view line;
  std::vector<std::string_view> cells;
};

TEST(TableCells, AreSplitAtPipesThatNoBackslashKeeps) {
  const CellRow rows[] = {
      {"| a | b |", {"a", "b"}},
      {"| a | b", {"a", "b"}},
      {"| a || b |  ", {"a", "", "b"}},
      {"\t|a|", {"a"}},
      {"a | b |", {}},
      {"", {}},
      {"|", {}},
      {"||", {""}},
      {R"(| a\|b | c\\| d\)", {R"(a\|b)", R"(c\\)", R"(d\)"}},
      {R"(\| a |)", {}},
      {"| é\u0301 | \u65E5\u672C |", {"é\u0301", "\u65E5\u672C"}},
      {"| a|\u0301b |", {"a|\u0301b"}},  // a pipe with an accent is another character
  };
  for (const CellRow& row : rows)
    EXPECT_EQ(LKTableData::splitCells(row.line), row.cells) << row.line;
}

TEST(TableMarkdown, IsAligned) {
  const auto table = firstTable(
      "\U0001F600 before\r\n|L|Centre|R||x\r\n|:-|:-:|-:|\r\n|long cell|ab|1|\r\n|||\r\n"
      "|\u65E5\u672C|e\u0301|2|3|4|cut|\r\n");
  ASSERT_TRUE(table.has_value());
  EXPECT_EQ(table->rows[1], std::vector<std::string>(5));
  EXPECT_EQ(table->toMarkdown(),
            "| L         | Centre |   R |     | x   |\n"
            "| :-------- | :----: | --: | --- | --- |\n"
            "| long cell |   ab   |   1 |     |     |\n"
            "| \u65E5\u672C        |   e\u0301    |   2 | 3   | 4   |\n");
  EXPECT_EQ(LKTableData().toMarkdown(), "");
}

TEST(TableParse, NeedsAHeaderWithCellsAndASeparator) {
  const std::string text = "| a |\n| - |\n| b |";
  const std::vector<Paragraph> paragraphs = makeParagraphs(text);
  const UTF16Text storage(text);
  const auto parse = [&](std::vector<size_t> indices) {
    return LKTableData::parse(paragraphs, indices, storage).has_value();
  };
  EXPECT_TRUE(parse({2, 1, 0}));
  EXPECT_TRUE(parse({0, 1, 99}));
  EXPECT_FALSE(parse({0}));
  EXPECT_FALSE(parse({0, 2}));
  EXPECT_FALSE(parse({1, 2}));
  EXPECT_FALSE(firstTable("|\n| - |").has_value());
  // Ranges that reach beyond the text give what is there.
  EXPECT_FALSE(LKTableData::parse(paragraphs, std::vector<size_t>{0, 1}, UTF16Text("x")));
}

TEST(TableMarkdown, NeverGrowsWithTheSquareOfItsText) {
  std::string rows = "\n|-|\n";
  for (int i = 0; i < 1'000; ++i) rows += "|a|\n";
  EXPECT_FALSE(firstTable(std::string(4'000, '|') + rows).has_value());
  const auto table = firstTable("|" + std::string(20'000, 'h') + "|" + rows);
  ASSERT_TRUE(table.has_value());
  const std::string markdown = table->toMarkdown();
  EXPECT_LT(markdown.size(), 40'000U);
  EXPECT_EQ(firstTable(markdown), table);
}

}  // namespace
}  // namespace lk
