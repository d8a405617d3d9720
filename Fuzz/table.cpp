// Any text as the rows of a table: cells hold the row's text, and what is written reads alike.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/ParagraphModel/LKTableData.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// Every line a row: the first the header, the second the separator.
std::optional<lk::LKTableData> read(std::string_view text) {
  std::vector<lk::Paragraph> rows;
  size_t location = 0;
  for (const lk::TextRange& line : lk::paragraphLines(text)) {
    lk::Paragraph& row = rows.emplace_back(lk::UUID(), location);
    row.range.length = lk::text::utf16Count(line.of(text));
    row.tableRole = rows.size() == 1   ? lk::TableRole::header
                    : rows.size() == 2 ? lk::TableRole::separator
                                       : lk::TableRole::data;
    location = row.range.end();
  }
  std::vector<size_t> indices(rows.size());
  std::iota(indices.begin(), indices.end(), size_t{0});
  return lk::LKTableData::parse(rows, indices, lk::UTF16Text(text));
}

// The cells stand in the line in their order, with nothing but pipes and blanks outside of them.
void checkCells(std::string_view line) {
  const char* done = line.data();
  const auto isFiller = [](std::string_view between) {
    for (size_t i = 0; i < between.size();) {
      const lk::text::Decoded scalar = lk::text::decode(between, i);
      if (scalar.scalar != '|' && !lk::text::isBlank(scalar.scalar)) return false;
      i += scalar.length;
    }
    return true;
  };
  const std::vector<std::string_view> cells = lk::LKTableData::splitCells(line);
  for (const std::string_view cell : cells) {
    require(cell.data() >= done && isFiller({done, static_cast<size_t>(cell.data() - done)}));
    require(lk::text::trimmedBlanks(cell) == cell);
    done = cell.data() + cell.size();
  }
  const auto left = static_cast<size_t>(line.data() + line.size() - done);
  require(cells.empty() || isFiller({done, left}));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) {
    read(text);
    return 0;
  }
  for (const lk::TextRange& line : lk::paragraphLines(text)) checkCells(line.of(text));
  std::optional<lk::LKTableData> table = read(text);
  if (!table) return 0;
  for (const auto& row : table->rows) require(row.size() == table->columns.size());
  const std::string markdown = table->toMarkdown();
  std::erase_if(table->rows, [](const std::vector<std::string>& row) {
    return std::ranges::all_of(row, [](const std::string& cell) { return cell.empty(); });
  });
  const std::optional<lk::LKTableData> again = read(markdown);
  require(again == table && again->toMarkdown() == markdown);
  return 0;
}
