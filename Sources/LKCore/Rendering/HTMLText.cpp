#include "LKCore/Rendering/HTMLText.h"

#include <array>
#include <charconv>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk::html {

namespace {

constexpr std::array<std::pair<std::string_view, char>, 6> kReferences = {{{"&amp;", '&'},
                                                                           {"&lt;", '<'},
                                                                           {"&gt;", '>'},
                                                                           {"&quot;", '"'},
                                                                           {"&#39;", '\''},
                                                                           {"&#x27;", '\''}}};

// The scalar of the numeric reference at the start; `length` is that of the reference.
std::optional<char32_t> numericReference(std::string_view text, size_t& length) {
  const size_t end = text.substr(0, 12).find(';');
  if (!text.starts_with("&#") || end == std::string_view::npos) return {};
  const bool isHex = text.size() > 2 && (text[2] == 'x' || text[2] == 'X');
  const size_t start = isHex ? 3 : 2;
  uint32_t code = 0;
  const auto read = std::from_chars(text.data() + start, text.data() + end, code, isHex ? 16 : 10);
  const bool isScalar = code > 0 && code < 0x110000 && (code < 0xD800 || code > 0xDFFF);
  if (read.ec != std::errc() || read.ptr != text.data() + end || !isScalar) return {};
  length = end + 1;
  return code;
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    std::string_view written(&c, 1);
    for (const auto& [reference, character] : kReferences) {
      if (c != character) continue;
      written = reference;
      break;
    }
    result.append(written);
  }
  return result;
}

std::string unescaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    size_t length = 1;
    char c = text.front();
    if (c == '&') {
      for (const auto& [reference, character] : kReferences) {
        if (!text.starts_with(reference)) continue;
        c = character;
        length = reference.size();
        break;
      }
    }
    result.push_back(c);
    text.remove_prefix(length);
  }
  return result;
}

std::string decoded(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const size_t start = text.find("&#");
    result.append(unescaped(text.substr(0, start)));
    if (start == std::string_view::npos) break;
    text.remove_prefix(start);
    size_t length = 2;
    if (const auto scalar = numericReference(text, length)) {
      lk::text::append(result, *scalar);
    } else {
      result.append("&#");
    }
    text.remove_prefix(length);
  }
  return result;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<TagMatch> nextImage(std::string_view html, std::string_view attribute,
                                  bool (*accepts)(std::string_view value), size_t from) {
  static constexpr std::string_view kOpening = "<img";
  for (size_t start = html.find(kOpening, from); start != std::string_view::npos;
       start = html.find(kOpening, from)) {
    const size_t inside = start + kOpening.size() + 1;
    from = inside - 1;
    if (inside > html.size() || !isSpace(html[inside - 1])) continue;
    const size_t bracket = html.find('>', inside);
    if (bracket == std::string_view::npos) return std::nullopt;
    const std::string_view upToBracket = html.substr(0, bracket);
    for (size_t name = upToBracket.find(attribute, inside); name != std::string_view::npos;
         name = upToBracket.find(attribute, name + 1)) {
      const size_t value = name + attribute.size();
      const size_t quote = html.find('"', value);
      if (quote == std::string_view::npos) return std::nullopt;
      if (!accepts(html.substr(value, quote - value))) continue;
      const size_t end = html.find('>', quote);
      if (end == std::string_view::npos) return std::nullopt;
      return TagMatch{{start, end + 1}, {inside, name}, {value, quote}, {quote + 1, end}};
    }
    from = bracket;  // a tag that begins before it ends there too, without the attribute
  }
  return std::nullopt;
}

}  // namespace lk::html
