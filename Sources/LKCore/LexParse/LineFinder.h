#pragma once

#include <cstddef>
#include <string_view>

namespace lk {

// Finds the next place of one ASCII mark on the current line and remembers it, so that searches
// from rising positions look at each byte once, however many marks in between stay open.
class LineFinder {
 public:
  constexpr explicit LineFinder(std::string_view mark) : mark_(mark) {}

  // The first place of the mark that begins at or after `from` and lies wholly before `lineEnd`;
  // `lineEnd` when there is none.
  size_t find(std::string_view text, size_t from, size_t lineEnd) {
    if (from < from_ || from > at_ || lineEnd != lineEnd_) {
      const size_t found = text.substr(0, lineEnd).find(mark_, from);
      from_ = from;
      at_ = found == std::string_view::npos ? lineEnd : found;
      lineEnd_ = lineEnd;
    }
    return at_;
  }

 private:
  std::string_view mark_;
  size_t from_ = 1;
  size_t at_ = 0;
  size_t lineEnd_ = 0;
};

}  // namespace lk
