#pragma once

// A table's cells, read from its rows and written back as aligned Markdown.
//
//   const auto table = LKTableData::parse(paragraphs, {{3, 4, 5}}, UTF16Text(text));
//   table->toMarkdown();  // "| a   | b   |\n| --- | --: |\n| 1   |   2 |\n"
//
// A cell is a piece of its line as it stands there, blanks at its ends aside: a pipe in it is
// written "\|". What was read is written so that it reads alike again, except that rows without
// any text are dropped. Reading and writing take time and room in proportion to the text, however
// uneven its rows are.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/UTF16Text.h"
#include "LKCore/ParagraphModel/Paragraph.h"

namespace lk {

struct LKTableData {
  enum class Alignment : uint8_t { left, center, right, none };

  struct Column {
    std::string name;
    Alignment alignment = Alignment::none;

    bool operator==(const Column&) const = default;
  };

  std::vector<Column> columns;
  std::vector<std::vector<std::string>> rows;  // each as long as `columns` when parsed

  // The table of the paragraphs at `indices`, told apart by `tableRole`; their ranges are places in
  // `storage`. Short rows are filled with empty cells, long ones cut. Nothing without a header that
  // has cells and a separator, and for a table that would need more than a million cells of filling.
  // Indices beyond the paragraphs are passed over.
  static std::optional<LKTableData> parse(std::span<const Paragraph> paragraphs,
                                          std::span<const size_t> indices,
                                          const UTF16Text& storage);

  // The cells of one row without its line end, as pieces of the line; none when it does not begin
  // with a pipe. A backslash keeps the character behind it, so "\|" ends no cell.
  static std::vector<std::string_view> splitCells(std::string_view line);

  // Header, separator and body lines, each with a line feed; empty without columns. Columns are as
  // wide as their longest cell in characters, at least 3. Only where that would take more than
  // 16 million characters the cells stand unaligned.
  std::string toMarkdown() const;

  bool operator==(const LKTableData&) const = default;
};

}  // namespace lk
