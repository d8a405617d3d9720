#include "LKCore/LexParse/TokenText.h"

#include <array>
#include <charconv>

#include "LKCore/Base/Text.h"

namespace lk::lexing {

std::string describeRange(const TextRange& range) {
  return std::to_string(range.start) + "-" + std::to_string(range.end);
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (size_t i = 0; i < text.size();) {
    const text::Decoded d = text::decode(text, i);
    if (d.scalar == '"' || d.scalar == '\\') {
      result.append("\\").push_back(text[i]);
    } else if (d.scalar == '\n') {
      result.append("\\n");
    } else if (d.scalar == '\t') {
      result.append("\\t");
    } else if (d.scalar == '\r') {
      result.append("\\r");
    } else if (d.scalar < 0x20 || d.scalar == 0x7F || text::isNewline(d.scalar)) {
      std::array<char, 8> hex{};
      const auto end =
          std::to_chars(hex.data(), hex.data() + hex.size(), static_cast<unsigned>(d.scalar), 16);
      result.append("\\u{").append(hex.data(), end.ptr).append("}");
    } else {
      result.append(text.substr(i, d.length));
    }
    i += d.length;
  }
  return result.append("\"");
}

}  // namespace lk::lexing
