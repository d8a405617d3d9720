#pragma once

#include <cstddef>
#include <string_view>

namespace lk {

// The words of the text by Unicode's word boundaries: "don't" and "3.14" are one each, punctuation
// is none, and Chinese is divided by ICU's dictionary. Valid UTF-8.
size_t wordCount(std::string_view text);

}  // namespace lk
