#pragma once

// The line separators that are no line feed, as they come from other editors and from pasted
// text, and their replacement before or after lexing.

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace lk {

namespace LKLineSeparators {

constexpr std::array<char32_t, 4> characters = {0x2028, 0x2029, 0x0085, 0x000D};

// True when the text holds one of them.
bool containsAny(std::string_view text);

// The text with each separator replaced by one space, or by one line feed; CR LF counts as one
// separator, and a text without any comes back as it was.
std::string toSpaces(std::string text);
std::string toNewlines(std::string text);

}  // namespace LKLineSeparators

inline std::string lkLineSeparatorsToNewlines(std::string text) {
  return LKLineSeparators::toNewlines(std::move(text));
}

}  // namespace lk
