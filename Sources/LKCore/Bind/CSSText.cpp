#include "LKCore/Bind/CSSText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace lk::css {

std::string number(double value) {
  if (!std::isfinite(value)) return "0";
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return end.ec == std::errc() ? std::string(digits.data(), end.ptr) : "0";
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    const bool isSpecial = byte < 0x20 || byte == 0x7F ||
                           std::string_view("\"'\\<>&").find(c) != std::string_view::npos;
    if (byte == 0) {
      result.append("\xEF\xBF\xBD");  // a style sheet has no such character
    } else if (isSpecial) {
      std::array<char, 16> escape{};
      std::snprintf(escape.data(), escape.size(), "\\%x ", static_cast<unsigned>(byte));
      result.append(escape.data());
    } else {
      result.push_back(c);
    }
  }
  return result.append("\"");
}

}  // namespace lk::css
