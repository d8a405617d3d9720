#pragma once

// Rows of short texts, for a list that a person reads.
//
//     TextColumns list;
//     list.add({{"Groceries", TextStyle::bold}, {"2026-03-14 09:26"}, {"#food", TextStyle::accent}});
//     printText(list.text(Terminal::ofStandardOutput()));
//
// Where styles are understood the columns are aligned, styled and cut so that no line is wider than
// the terminal. Everywhere else a line is its cells as they are, joined with two blanks; an empty
// cell leaves nothing.

#include <string>
#include <utility>
#include <vector>

#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

class TextColumns {
 public:
  struct Cell {
    std::string text;
    TextStyle style = TextStyle::plain;
  };
  using Row = std::vector<Cell>;

  void add(Row row) { rows_.push_back(std::move(row)); }

  // The lines, with a line feed between two of them.
  std::string text(const Terminal& terminal) const;

 private:
  std::vector<size_t> widths(size_t available) const;

  std::vector<Row> rows_;
};

}  // namespace lk
