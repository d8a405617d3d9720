// Headings as they stand in a book's HTML.

#include <array>

#include "LKCore/Base/Text.h"
#include "LKCore/PDF/LKBindPDFOutline.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindPDFOutline {

namespace {

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string decodedReferences(std::string_view html) {
  return text::replacingAll(html::decoded(html), "&nbsp;", " ");
}

// On one line, without soft hyphens, single blanks between words.
std::string oneLine(std::string_view text) {
  std::string result;
  bool isBehindBlank = false;
  for (size_t i = 0; i < text.size();) {
    const auto [scalar, length] = text::decode(text, i);
    const bool isBlank = scalar < 0x20 || scalar == 0x7F || text::isWhitespaceOrNewline(scalar);
    if (!isBlank && scalar != 0xAD) {
      if (isBehindBlank && !result.empty()) result.push_back(' ');
      result.append(text.substr(i, length));
    }
    isBehindBlank = isBlank || (isBehindBlank && scalar == 0xAD);
    i += length;
  }
  return result;
}

// The value of an attribute in double quotes.
std::string_view attributeValue(std::string_view attributes, std::string_view opening) {
  const size_t start = attributes.find(opening);
  if (start == std::string_view::npos) return {};
  const std::string_view value = attributes.substr(start + opening.size());
  const size_t end = value.find('"');
  return end == std::string_view::npos ? std::string_view() : value.substr(0, end);
}

}  // namespace

std::vector<HeadingTag> headingTags(std::string_view html) {
  std::vector<HeadingTag> tags;
  std::array<bool, 7> isNeverClosed{};
  size_t at = html.find("<h");
  while (at != std::string_view::npos && at + 3 < html.size()) {
    const int level = html[at + 2] - '0';
    size_t next = at + 2;
    if (level >= 1 && level <= 6 && !isWordCharacter(html[at + 3])) {
      const size_t open = html.find('>', at);
      if (open == std::string_view::npos) break;
      bool& isOpen = isNeverClosed[static_cast<size_t>(level)];
      const std::string closing = "</h" + std::to_string(level) + ">";
      const size_t close = isOpen ? std::string_view::npos : html.find(closing, open);
      isOpen = close == std::string_view::npos;
      if (!isOpen) {
        tags.push_back({level, at, at + 3, open + 1, close});
        next = close;
      }
    }
    at = html.find("<h", next);
  }
  return tags;
}

std::string stripTags(std::string_view html) {
  std::string result;
  while (!html.empty()) {
    const size_t start = html.find('<');
    result.append(html.substr(0, start));
    if (start == std::string_view::npos) break;
    const size_t end = html.find('>', start);
    if (end == std::string_view::npos) {
      result.append(html.substr(start));
      break;
    }
    const std::string_view tag = html.substr(start, end - start);
    if (text::lowercased(tag.substr(0, 3)) == "<br") result.push_back(' ');
    html.remove_prefix(end + 1);
  }
  return result;
}

std::vector<Heading> headingsFromHTML(std::string_view html) {
  std::vector<Heading> headings;
  for (const HeadingTag& tag : headingTags(html)) {
    const std::string_view attributes =
        html.substr(tag.attributes, tag.content - 1 - tag.attributes);
    const std::string_view content = html.substr(tag.content, tag.end - tag.content);
    headings.push_back(
        {oneLine(decodedReferences(stripTags(content))), tag.level,
         decodedReferences(attributeValue(attributes, " id=\"")),
         attributeValue(attributes, " class=\"").find("bind-toc-title") != std::string::npos});
  }
  return headings;
}

}  // namespace lk::LKBindPDFOutline
