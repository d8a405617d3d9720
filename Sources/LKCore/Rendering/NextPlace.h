#pragma once

#include <cstddef>
#include <string_view>

namespace lk {

// The next place of one of some characters of a text, remembered: however often it is asked for
// ever later places, all answers together cost one pass over the text.
class NextPlace {
 public:
  NextPlace(std::string_view text, std::string_view characters)
      : text_(text), characters_(characters) {}

  // At or after byte `start`, which never goes back from one call to the next; npos for none.
  size_t from(size_t start) {
    if (!isKnown_ || place_ < start) place_ = text_.find_first_of(characters_, start);
    isKnown_ = true;
    return place_;
  }

 private:
  std::string_view text_;
  std::string_view characters_;
  size_t place_ = 0;
  bool isKnown_ = false;
};

}  // namespace lk
