#pragma once

// A text in UTF-8 whose places are told in UTF-16 units, as editors tell them.
//
//   UTF16Text storage("é\U0001F600x");
//   storage.utf16Offset(6);  // 3: the x
//   storage.of({1, 2});      // the emoji
//
// ASCII costs one look at the text; other text keeps one number for each 64 bytes. The text must
// outlive the object.

#include <cstddef>
#include <string_view>
#include <vector>

namespace lk {

// A stretch of a text, in UTF-16 units.
struct UTF16Range {
  size_t location = 0;
  size_t length = 0;

  size_t end() const { return location + length; }
  bool operator==(const UTF16Range&) const = default;
};

class UTF16Text {
 public:
  explicit UTF16Text(std::string_view text);

  size_t length() const { return length_; }  // UTF-16 units

  // The place of a byte offset, which must be at most the text's size.
  size_t utf16Offset(size_t byte) const;

  // The byte offset of a place. Between the halves of a surrogate pair it is the start of that
  // scalar; beyond the end it is the text's size.
  size_t byteOffset(size_t place) const;

  // The text of the range, as far as the range lies within the text.
  std::string_view of(const UTF16Range& range) const;

 private:
  std::string_view text_;
  size_t length_ = 0;
  std::vector<size_t> unitsBefore_;  // each block of bytes; empty for ASCII
};

}  // namespace lk
