#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

// How text may look where it goes: the width to wrap at and whether bold is understood.
struct Terminal {
  size_t width = 80;    // columns
  bool styled = false;  // never under NO_COLOR or TERM=dumb

  // As standard output is: a terminal's own width between 40 and 100 columns; 80 columns and no
  // style for a file or pipe.
  static Terminal ofStandardOutput();

  std::string bold(std::string_view text) const;
};

// The columns that `text`, one line, takes: 2 for wide characters and emoji, 0 for combining and
// other invisible ones.
size_t displayWidth(std::string_view text);

// The text in lines of at most `width` columns, broken at spaces; a line feed in it stays a break.
// A word that is wider than that has a line of its own. At least one line.
std::vector<std::string> wrapped(std::string_view text, size_t width);

}  // namespace lk
