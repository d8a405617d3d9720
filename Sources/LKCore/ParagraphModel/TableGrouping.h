#pragma once

// Which rows of pipes make a table: a header, a separator row right below it, and all rows of
// pipes that follow. The rows' `text` must be set.

#include <cstddef>
#include <map>
#include <span>
#include <string_view>

#include "LKCore/Base/UUID.h"
#include "LKCore/ParagraphModel/LKEditorCapabilities.h"
#include "LKCore/ParagraphModel/Paragraph.h"

namespace lk {

// True for a line like "| --- | :-: |": after the first pipe nothing but pieces of "-", each with
// ":" allowed at its ends, and a "-" in one of them. Blanks around pieces and blank pieces count
// for nothing.
bool isTableSeparatorRow(std::string_view line);

// The ids of tables by the index of the header row.
using TableIDs = std::map<size_t, UUID>;

// Finds the tables whose header is one of the rows `from` to `to`, both included, and sets
// `inTable`, `tableRole` and `tableID` of their rows, which may reach beyond `to`. A table gets the
// id that its header's index has in `existingHeaderIDs`, else a new one. Sets nothing on others.
void scanForTables(std::span<Paragraph> paragraphs, size_t from, size_t to,
                   const TableIDs& existingHeaderIDs);

// Works the tables out anew around the rows `from` to `to`, both included, as far as table rows
// stand next to them. A table whose header kept its place keeps its id; a folded header stays one.
// Without the capability `tables`, and with `from` beyond the end, nothing happens.
void regroupTablesInRange(std::span<Paragraph> paragraphs, size_t from, size_t to,
                          const LKEditorCapabilities& capabilities);

// The same for all rows.
void groupAllTableRows(std::span<Paragraph> paragraphs, const LKEditorCapabilities& capabilities);

}  // namespace lk
