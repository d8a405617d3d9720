// The paragraphs of any bytes: they cover the text, fences stand in pairs, and what the passes say
// holds together, also when they run again after an edit.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"
#include "LKCore/ParagraphModel/ParagraphPasses.h"
#include "LKCore/ParagraphModel/TableGrouping.h"

namespace {

using lk::Paragraph;
using lk::ParagraphKind;
using lk::TableRole;
using Rows = std::vector<Paragraph>;

void require(bool holds) {
  if (!holds) std::abort();
}

bool is(const Paragraph& row, ParagraphKind kind) {
  return row.type.kind == kind;
}

void checkCover(const Rows& rows, std::string_view text) {
  const lk::UTF16Text storage(text);
  const bool isValid = lk::text::isValidUTF8(text);
  std::string whole;
  size_t place = 0;
  for (const Paragraph& row : rows) {
    require(row.range.location == place && !row.line().empty());
    require(row.range.length == lk::text::utf16Count(row.line()) || !isValid);
    require(storage.of(row.range) == row.line() || !isValid);
    require(!lk::describe(row).empty());
    place = row.range.end();
    whole += row.line();
  }
  require(whole == text && place == storage.length());
}

void checkType(const Paragraph& row) {
  require(row.tabLevel >= 0 && row.tabLevel <= 22);
  require(!is(row, ParagraphKind::footnoteDefinition));
  require(row.type.headingLevel() <= 6 && (row.type.headingLevel() > 0) == row.type.isHeading());
  require((row.quoteLevel > 0) >= is(row, ParagraphKind::blockQuote));
  if (row.inCodeBlock || row.inComment) require(is(row, ParagraphKind::undefined) && !row.inTable);
  require(!(row.inCodeBlock && row.inComment));
  require(row.inTable == (row.tableRole != TableRole::none));
  require(row.inTable == (row.tableID != lk::UUID()));
  if (row.inTable) require(is(row, ParagraphKind::tableRow));
}

// Outside of comments fences come two by two with code between them, and an odd one is the last.
void checkFences(const Rows& rows) {
  bool isOpen = false;
  bool wasUnpaired = false;
  for (const Paragraph& row : rows) {
    if (is(row, ParagraphKind::codeBlockFence)) {
      require(!wasUnpaired);
      wasUnpaired = row.isUnpairedFence;
      isOpen = !wasUnpaired && !isOpen;
    } else {
      require(row.inCodeBlock == isOpen);
      require(!row.isUnpairedFence);
    }
  }
  require(!isOpen);
}

void checkComments(const Rows& rows) {
  bool isOpen = false;
  bool hasUnclosed = false;
  for (const Paragraph& row : rows) {
    if (is(row, ParagraphKind::htmlCommentClose)) {
      require(!hasUnclosed);
      isOpen = false;
    } else {
      require(row.inComment == isOpen);
    }
    if (is(row, ParagraphKind::htmlCommentOpen)) {
      isOpen = &row != &rows.back() &&
               ((&row + 1)->inComment || is(*(&row + 1), ParagraphKind::htmlCommentClose));
      hasUnclosed = !isOpen;
    }
  }
}

void checkTables(const Rows& rows) {
  for (size_t i = 0; i < rows.size(); ++i) {
    const Paragraph* above = i > 0 ? &rows[i - 1] : nullptr;
    const bool continues = above != nullptr && above->tableID == rows[i].tableID;
    switch (rows[i].tableRole) {
      case TableRole::header:
        require(!continues && i + 1 < rows.size());
        require(rows[i + 1].tableRole == TableRole::separator);
        break;
      case TableRole::separator:
        require(continues && above->tableRole == TableRole::header);
        require(lk::isTableSeparatorRow(rows[i].line()));
        break;
      case TableRole::data:
        require(continues);
        break;
      case TableRole::none:
        // A row right below a table would belong to it.
        require(!is(rows[i], ParagraphKind::tableRow) || above == nullptr || !above->inTable);
        break;
    }
  }
}

void runPasses(Rows& rows) {
  lk::pairCodeBlockFences(rows);
  lk::groupAllTableRows(rows, {});
  lk::pairCommentBlocks(rows);
}

std::vector<std::string> forms(const Rows& rows) {
  std::vector<std::string> lines;
  for (const Paragraph& row : rows) lines.push_back(lk::describe(row) + row.tableID.text());
  return lines;
}

// One row becomes text, as by an edit: grouping around it gives what grouping all rows gives.
void checkEdit(Rows rows, size_t row) {
  rows[row].type = {};
  Rows all = rows;
  lk::regroupTablesInRange(rows, row, row, {});
  lk::groupAllTableRows(all, {});
  checkTables(rows);
  for (size_t i = 0; i < rows.size(); ++i) require(rows[i].tableRole == all[i].tableRole);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Rows rows = lk::makeParagraphs(text);
  checkCover(rows, text);
  for (const Paragraph& row : rows) checkType(row);
  checkTables(rows);
  checkComments(rows);
  const std::vector<std::string> before = forms(rows);
  runPasses(rows);
  require(forms(rows) == before);
  if (!rows.empty()) checkEdit(rows, size % rows.size());

  // Fences without the comments, which override them.
  for (Paragraph& row : rows) lk::classify(row, row.line(), lk::LineReading::wholeText);
  lk::pairCodeBlockFences(rows);
  checkFences(rows);
  return 0;
}
