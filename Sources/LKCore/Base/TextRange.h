#pragma once

#include <cstddef>
#include <string_view>

namespace lk {

// A byte range of some text, `end` excluded.
struct TextRange {
  size_t start = 0;
  size_t end = 0;

  size_t length() const { return end - start; }
  std::string_view of(std::string_view text) const { return text.substr(start, end - start); }
  bool operator==(const TextRange&) const = default;
};

}  // namespace lk
