#pragma once

// Whether a style mark may open or close, and whether an opening one has its closer on the line.
//
// A closer is found by walking forward from the mark: constructs that hide marks (images, links,
// code, URLs in parentheses) are jumped over, a nested opener makes the walk deeper, a closer at
// depth 0 ends it. Done once for each opener that walk is quadratic in a hostile line. But where
// it goes from a place depends on that place alone, so one sweep from the line's end backward
// answers it for every place: from a closer, the place itself; from an opener, the answer behind
// the closer that it meets; from anything else, the answer of the next place. Where nothing but
// plain text stands between an opener and its closer, no sweep is needed.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "LKCore/LexParse/LToken.h"

namespace lk {

// What the characters around a run of delimiters allow the style marks in it.
struct Flanks {
  size_t start = 0;  // of the run, UTF-8 bytes
  size_t end = 0;
  bool validLeft = false;   // a mark here may open
  bool validRight = false;  // a mark here may close
};

// The flanks of the run that holds byte `at`, which must be a delimiter.
Flanks flanksOf(std::string_view text, size_t at);

// The scalar whose doubling writes a two-character style, or for italic the single "*".
char styleScalar(TextStyle style);

class CloserSearch {
 public:
  explicit CloserSearch(std::string_view text) : text_(text) {}

  // `flanksOf`, remembering the last run.
  const Flanks& flanks(size_t at);

  // Whether a search from byte `from` finds a closer of `style` before `lineEnd`. Calls for one
  // line come with rising positions.
  bool finds(TextStyle style, size_t from, size_t lineEnd);

 private:
  // The closer met from each byte of base...lineEnd, relative to base, or kNone.
  struct Table {
    size_t base = 0;
    size_t lineEnd = 0;
    std::vector<uint32_t> closer;
  };

  void build(Table& table, TextStyle style, size_t base, size_t lineEnd);

  std::string_view text_;
  Flanks run_;
  std::array<Table, 6> tables_;
};

}  // namespace lk
