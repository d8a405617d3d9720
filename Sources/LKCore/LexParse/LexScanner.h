#pragma once

// A cursor over the Unicode scalars of a text, decoded where they stand.
//
//   LexScanner scanner("ab");
//   scanner.current();   // 'a'
//   scanner.advance();
//   scanner.next();      // LexScanner::sentinel: nothing is there
//
// The text must stay alive and unchanged. A U+FFFF that really stands in the text reads like the
// sentinel; `isAtEnd` tells the two apart.

#include <cstddef>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"

namespace lk {

class LexScanner {
 public:
  static constexpr char32_t sentinel = 0xFFFF;

  explicit LexScanner(std::string_view text) : text_(text) {}

  std::string_view text() const { return text_; }
  size_t index() const { return index_; }  // UTF-8 bytes
  bool isAtEnd() const { return index_ == text_.size(); }

  // The scalars around the index; the sentinel beyond either end of the text.
  char32_t current() const { return scalarAt(index_); }
  char32_t previous() const;
  char32_t next() const;
  char32_t nextNext() const;

  // One scalar on. At the end this is a mistake of the caller's: it is logged, and std::logic_error
  // says "Cant Advance beyond end of text".
  void advance();

  // To a scalar boundary, at most the text's size.
  void seek(size_t index) { index_ = index; }

  // The byte `ahead` bytes from the index, or -1 beyond the end; cheap, and enough for ASCII marks.
  int byte(size_t ahead = 0) const {
    const size_t at = index_ + ahead;
    return at < text_.size() ? static_cast<unsigned char>(text_[at]) : -1;
  }

  // True when a line end or the end of the text stands `ahead` bytes from the index.
  bool isLineOver(size_t ahead = 0) const {
    const size_t at = index_ + ahead;
    return at >= text_.size() || lexing::terminatorLength(text_, at) != 0;
  }

  struct Indent {
    int level = 0;  // see lexing::indentLevel
    bool isIndented = false;
  };

  // Steps over the spaces (U+0020) and tabs at the index, and no other blank.
  Indent scanLeadingWhitespace();

 private:
  char32_t scalarAt(size_t at) const;
  size_t after(size_t at) const;

  std::string_view text_;
  size_t index_ = 0;
};

}  // namespace lk
