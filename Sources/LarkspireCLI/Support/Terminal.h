#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

enum class TextStyle { plain, bold, dim, accent, alert };

// How text may look where it goes: the widths to keep to and whether styles are understood.
struct Terminal {
  size_t width = 80;    // columns, for running text
  size_t columns = 80;  // the terminal's own, for tables
  bool styled = false;  // never under NO_COLOR or TERM=dumb

  // As standard output is: running text in a terminal's own width between 40 and 100 columns; 80
  // columns and no style for a file or pipe.
  static Terminal ofStandardOutput();

  std::string bold(std::string_view text) const { return in(TextStyle::bold, text); }
  std::string in(TextStyle style, std::string_view text) const;
};

// The columns that `text`, one line, takes: 2 for wide characters and emoji, 0 for combining and
// other invisible ones.
size_t displayWidth(std::string_view text);

// The text as one line of a terminal: without control characters, and when it is wider than `width`
// columns cut there with a closing "…".
std::string fitted(std::string_view text, size_t width);

// The text without the characters that could command a terminal.
std::string withoutControls(std::string_view text);

// The text in lines of at most `width` columns, broken at spaces; a line feed in it stays a break.
// A word that is wider than that has a line of its own. At least one line.
std::vector<std::string> wrapped(std::string_view text, size_t width);

}  // namespace lk
