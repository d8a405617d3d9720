#include "LarkspireCLI/Support/TextColumns.h"

#include <algorithm>
#include <numeric>

namespace lk {

namespace {

constexpr size_t kColumnGap = 2;

void appendPlain(std::string& line, const TextColumns::Row& row) {
  bool isFirst = true;
  for (const TextColumns::Cell& cell : row) {
    if (cell.text.empty()) continue;
    if (!isFirst) line.append(kColumnGap, ' ');
    line += cell.text;
    isFirst = false;
  }
}

void appendAligned(std::string& line, const TextColumns::Row& row,
                   const std::vector<size_t>& widths, const Terminal& terminal) {
  size_t owed = 0;  // blanks before the next text
  for (size_t i = 0; i < row.size(); ++i) {
    if (widths[i] == 0) continue;
    const std::string text = fitted(row[i].text, widths[i]);
    if (!text.empty()) {
      line.append(owed, ' ').append(terminal.in(row[i].style, text));
      owed = 0;
    }
    owed += widths[i] - displayWidth(text) + kColumnGap;
  }
}

}  // namespace

// As wide as the cells where they fit; otherwise the widest columns give way, down to a few
// characters each.
std::vector<size_t> TextColumns::widths(size_t available) const {
  constexpr size_t kNarrowest = 4;
  std::vector<size_t> widths;
  for (const Row& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()), 0);
    for (size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], displayWidth(row[i].text));
    }
  }
  const auto used = static_cast<size_t>(std::ranges::count_if(widths, [](size_t w) { return w; }));
  size_t total = std::accumulate(widths.begin(), widths.end(), size_t{0});
  total += used > 0 ? (used - 1) * kColumnGap : 0;
  while (total > available) {
    const auto widest = std::ranges::max_element(widths);
    if (widest == widths.end() || *widest <= kNarrowest) break;
    --*widest;
    --total;
  }
  return widths;
}

std::string TextColumns::text(const Terminal& terminal) const {
  const std::vector<size_t> columnWidths =
      terminal.styled ? widths(terminal.columns) : std::vector<size_t>();
  std::string lines;
  for (const Row& row : rows_) {
    if (&row != &rows_.front()) lines.push_back('\n');
    if (terminal.styled) {
      appendAligned(lines, row, columnWidths, terminal);
    } else {
      appendPlain(lines, row);
    }
  }
  return lines;
}

}  // namespace lk
