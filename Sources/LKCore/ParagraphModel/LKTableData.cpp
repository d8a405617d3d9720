#include "LKCore/ParagraphModel/LKTableData.h"

#include <algorithm>
#include <numeric>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr size_t kMostFilling = 1'000'000;
constexpr size_t kMostAligned = 16'000'000;
constexpr size_t kLeastWidth = 3;

using Alignment = LKTableData::Alignment;
using Row = std::vector<std::string>;

// The lines of a table by what they are in it.
struct TableLines {
  std::optional<std::string_view> header;
  std::optional<std::string_view> separator;
  std::vector<std::string_view> data;
};

TableLines linesByRole(std::span<const Paragraph> paragraphs, std::span<const size_t> indices,
                       const UTF16Text& storage) {
  TableLines lines;
  for (const size_t index : indices) {
    if (index >= paragraphs.size()) continue;
    const TableRole role = paragraphs[index].tableRole;
    const std::string_view line = text::trimmed(storage.of(paragraphs[index].range));
    if (role == TableRole::header && !lines.header) lines.header = line;
    if (role == TableRole::separator && !lines.separator) lines.separator = line;
    if (role == TableRole::data) lines.data.push_back(line);
  }
  return lines;
}

Alignment alignmentOf(std::string_view mark) {
  const bool leads = mark.starts_with(':');
  const bool trails = mark.ends_with(':');
  if (leads && trails) return Alignment::center;
  if (leads) return Alignment::left;
  return trails ? Alignment::right : Alignment::none;
}

size_t characterCount(std::string_view text) {
  return text::characterEnds(text).size();
}

std::string_view cellAt(const Row& row, size_t column) {
  return column < row.size() ? std::string_view(row[column]) : std::string_view();
}

bool isBlankRow(const Row& row) {
  return std::ranges::all_of(row, [](const std::string& cell) { return cell.empty(); });
}

std::string padded(std::string_view cell, size_t width, Alignment alignment) {
  const size_t length = characterCount(cell);
  const size_t gap = width > length ? width - length : 0;
  size_t left = 0;
  if (alignment == Alignment::right) left = gap;
  if (alignment == Alignment::center) left = gap / 2;
  return std::string(left, ' ').append(cell).append(gap - left, ' ');
}

std::string separatorCell(size_t width, Alignment alignment) {
  switch (alignment) {
    case Alignment::left:
      return ":" + std::string(width - 1, '-');
    case Alignment::center:
      return ":" + std::string(width - 2, '-') + ":";
    case Alignment::right:
      return std::string(width - 1, '-') + ":";
    case Alignment::none:
      return std::string(width, '-');
  }
  return {};
}

std::vector<size_t> columnWidths(const LKTableData& table) {
  std::vector<size_t> widths;
  for (size_t i = 0; i < table.columns.size(); ++i) {
    size_t width = std::max(kLeastWidth, characterCount(table.columns[i].name));
    for (const Row& row : table.rows) width = std::max(width, characterCount(cellAt(row, i)));
    widths.push_back(width);
  }
  const size_t lineWidth = std::accumulate(widths.begin(), widths.end(), size_t{0});
  if (lineWidth > kMostAligned / (table.rows.size() + 2)) {
    std::ranges::fill(widths, kLeastWidth);
  }
  return widths;
}

// One line of `count` cells.
template <typename CellText>
void appendLine(std::string& markdown, size_t count, const CellText& cellText) {
  for (size_t i = 0; i < count; ++i) markdown.append("| ").append(cellText(i)).append(" ");
  markdown.append("|\n");
}

}  // namespace

std::optional<LKTableData> LKTableData::parse(std::span<const Paragraph> paragraphs,
                                              std::span<const size_t> indices,
                                              const UTF16Text& storage) {
  if (indices.size() < 2) return std::nullopt;
  const TableLines lines = linesByRole(paragraphs, indices, storage);
  if (!lines.header || !lines.separator) return std::nullopt;

  LKTableData table;
  const std::vector<std::string_view> marks = splitCells(*lines.separator);
  for (const std::string_view name : splitCells(*lines.header)) {
    const size_t i = table.columns.size();
    table.columns.push_back({std::string(name), alignmentOf(i < marks.size() ? marks[i] : "---")});
  }
  if (table.columns.empty()) return std::nullopt;

  std::vector<std::vector<std::string_view>> rows;
  size_t filling = 0;
  for (const std::string_view line : lines.data) {
    rows.push_back(splitCells(line));
    filling += table.columns.size() - std::min(rows.back().size(), table.columns.size());
  }
  if (filling > kMostFilling) return std::nullopt;
  for (std::vector<std::string_view>& cells : rows) {
    cells.resize(table.columns.size());
    table.rows.emplace_back(cells.begin(), cells.end());
  }
  return table;
}

std::vector<std::string_view> LKTableData::splitCells(std::string_view line) {
  const std::string_view row = text::trimmedBlanks(line);
  std::vector<std::string_view> cells;
  size_t cellStart = 0;
  size_t start = 0;
  bool isEscaped = false;
  for (const size_t end : text::characterEnds(row)) {
    const std::string_view character = row.substr(start, end - start);
    const bool isPipe = character == "|" && !isEscaped;
    if (start == 0 && !isPipe) return {};
    if (isPipe) {
      if (start != 0)
        cells.push_back(text::trimmedBlanks(row.substr(cellStart, start - cellStart)));
      cellStart = end;
    }
    isEscaped = character == "\\" && !isEscaped;
    start = end;
  }
  const std::string_view rest = text::trimmedBlanks(row.substr(cellStart));
  if (!rest.empty()) cells.push_back(rest);
  return cells;
}

std::string LKTableData::toMarkdown() const {
  if (columns.empty()) return {};
  const size_t count = columns.size();
  const std::vector<size_t> widths = columnWidths(*this);
  const auto cell = [&](std::string_view text, size_t i) {
    return padded(text, widths[i], columns[i].alignment);
  };
  std::string markdown;
  appendLine(markdown, count, [&](size_t i) { return cell(columns[i].name, i); });
  appendLine(markdown, count,
             [&](size_t i) { return separatorCell(widths[i], columns[i].alignment); });
  for (const Row& row : rows) {
    if (isBlankRow(row)) continue;
    appendLine(markdown, count, [&](size_t i) { return cell(cellAt(row, i), i); });
  }
  return markdown;
}

}  // namespace lk
