#include "LKCore/ParagraphModel/TableGrouping.h"

#include <algorithm>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

bool isPipeRow(const Paragraph& paragraph) {
  return paragraph.type.kind == ParagraphKind::tableRow && !paragraph.inCodeBlock;
}

// A row that may be, or may have been, one of a table.
bool isTableGround(const Paragraph& paragraph) {
  return paragraph.inTable || paragraph.type.kind == ParagraphKind::tableRow;
}

bool beginsTable(std::span<const Paragraph> paragraphs, size_t i) {
  return isPipeRow(paragraphs[i]) && !paragraphs[i].childrenAreFolded &&
         isPipeRow(paragraphs[i + 1]) && isTableSeparatorRow(paragraphs[i + 1].line());
}

void joinTable(Paragraph& paragraph, TableRole role, const UUID& id) {
  paragraph.inTable = true;
  paragraph.tableRole = role;
  paragraph.tableID = id;
}

void leaveTable(Paragraph& paragraph) {
  paragraph.inTable = false;
  paragraph.tableRole = TableRole::none;
  paragraph.tableID = {};
}

}  // namespace

bool isTableSeparatorRow(std::string_view line) {
  const std::string_view row = text::trimmed(line);
  if (!row.starts_with('|')) return false;
  bool hasDash = false;
  for (std::string_view piece : text::split(row.substr(1), '|')) {
    piece = text::trimmedBlanks(piece);
    if (piece.starts_with(':')) piece.remove_prefix(1);
    if (piece.ends_with(':')) piece.remove_suffix(1);
    if (piece.find_first_not_of('-') != std::string_view::npos) return false;
    hasDash = hasDash || !piece.empty();
  }
  return hasDash;
}

void scanForTables(std::span<Paragraph> paragraphs, size_t from, size_t to,
                   const TableIDs& existingHeaderIDs) {
  UUIDBatch newIDs;
  for (size_t i = from; i <= to && i + 1 < paragraphs.size(); ++i) {
    if (!beginsTable(paragraphs, i)) continue;
    const auto known = existingHeaderIDs.find(i);
    const UUID id = known != existingHeaderIDs.end() ? known->second : newIDs.next();
    joinTable(paragraphs[i], TableRole::header, id);
    joinTable(paragraphs[i + 1], TableRole::separator, id);
    size_t end = i + 2;
    while (end < paragraphs.size() && isPipeRow(paragraphs[end]) &&
           !paragraphs[end].childrenAreFolded) {
      joinTable(paragraphs[end++], TableRole::data, id);
    }
    i = end - 1;
  }
}

void regroupTablesInRange(std::span<Paragraph> paragraphs, size_t from, size_t to,
                          const LKEditorCapabilities& capabilities) {
  if (!capabilities.tables || from >= paragraphs.size()) return;
  to = std::min(to, paragraphs.size() - 1);
  while (from > 0 && isTableGround(paragraphs[from - 1])) --from;
  while (to + 1 < paragraphs.size() && isTableGround(paragraphs[to + 1])) ++to;

  TableIDs headerIDs;
  for (size_t i = from; i <= to; ++i) {
    Paragraph& paragraph = paragraphs[i];
    if (paragraph.tableRole == TableRole::header) headerIDs.emplace(i, paragraph.tableID);
    if (paragraph.type.kind == ParagraphKind::tableRow && paragraph.childrenAreFolded) {
      paragraph.inTable = true;
      paragraph.tableRole = TableRole::header;
    } else {
      leaveTable(paragraph);
    }
  }
  scanForTables(paragraphs, from, to, headerIDs);
}

void groupAllTableRows(std::span<Paragraph> paragraphs, const LKEditorCapabilities& capabilities) {
  if (!paragraphs.empty()) regroupTablesInRange(paragraphs, 0, paragraphs.size() - 1, capabilities);
}

}  // namespace lk
