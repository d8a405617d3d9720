#pragma once

// Values within a style sheet that stands in an HTML document.

#include <string>
#include <string_view>

namespace lk::css {

// "8.5", "11"; what is no finite number is 0.
std::string number(double value);

// The text between quotes. Nothing in it ends the string, the style sheet or the element around it.
std::string quoted(std::string_view text);

}  // namespace lk::css
