#include "LKCore/EPUB/HTMLTags.h"

#include <cmark-gfm.h>
#include <cmark-gfm/houdini.h>

#include <algorithm>
#include <limits>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::xhtml {

namespace {

constexpr uint32_t kNoEnd = std::numeric_limits<uint32_t>::max();
constexpr size_t kMostAttributes = 64;

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isNameCharacter(char c) {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '-';
}

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string loweredText(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lowered);
  return result;
}

// Allowed in XML and of use in a text.
bool isTextScalar(char32_t scalar) {
  if (scalar == '\t' || scalar == '\n') return true;
  if (scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0)) return false;
  return scalar != 0xFFFE && scalar != 0xFFFF;
}

std::string_view reference(char32_t scalar) {
  switch (scalar) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

// A slash that ends a value without quotes belongs to the value: "<a href=http://b.c/>".
bool hasClosingSlash(std::string_view attributes) {
  if (!attributes.ends_with('/')) return false;
  const char before = attributes.size() > 1 ? attributes[attributes.size() - 2] : ' ';
  return html::isSpace(before) || before == '"' || before == '\'';
}

// The value behind "=", and what is left behind it.
std::string_view takeValue(std::string_view& rest) {
  rest.remove_prefix(1);
  while (!rest.empty() && html::isSpace(rest.front())) rest.remove_prefix(1);
  if (rest.empty()) return {};
  const char quote = rest.front();
  if (quote == '"' || quote == '\'') {
    const size_t end = std::min(rest.find(quote, 1), rest.size());
    const std::string_view value = rest.substr(1, end - 1);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return value;
  }
  size_t end = 0;
  while (end < rest.size() && !html::isSpace(rest[end])) ++end;
  const std::string_view value = rest.substr(0, end);
  rest.remove_prefix(end);
  return value;
}

}  // namespace

TagEnds::TagEnds(std::string_view html) : ends_(html.size() + 1, kNoEnd) {
  uint32_t afterDouble = kNoEnd;  // the end of a tag behind the next such quote
  uint32_t afterSingle = kNoEnd;
  for (size_t i = html.size(); i-- > 0;) {
    const uint32_t next = ends_[i + 1];
    switch (html[i]) {
      case '>':
        ends_[i] = static_cast<uint32_t>(i);
        break;
      case '"':
        ends_[i] = afterDouble;
        afterDouble = next;
        break;
      case '\'':
        ends_[i] = afterSingle;
        afterSingle = next;
        break;
      default:
        ends_[i] = next;
    }
  }
}

size_t TagEnds::from(size_t place) const {
  const uint32_t end = ends_[std::min(place, ends_.size() - 1)];
  return end == kNoEnd ? std::string_view::npos : end;
}

std::optional<Tag> tagAt(std::string_view html, size_t place, const TagEnds& ends) {
  Tag tag;
  size_t name = place + 1;
  if (name < html.size() && html[name] == '/') {
    tag.isEnd = true;
    ++name;
  }
  if (name >= html.size() || !isLetter(html[name])) return std::nullopt;
  size_t inside = name;
  while (inside < html.size() && isNameCharacter(html[inside])) ++inside;
  const size_t end = ends.from(inside);
  if (end == std::string_view::npos) return std::nullopt;
  tag.name = loweredText(html.substr(name, inside - name));
  tag.attributes = html.substr(inside, end - inside);
  tag.closesItself = hasClosingSlash(tag.attributes);
  if (tag.closesItself) tag.attributes.remove_suffix(1);
  tag.range = {place, end + 1};
  return tag;
}

std::vector<Attribute> attributesOf(const Tag& tag) {
  std::vector<Attribute> attributes;
  std::string_view rest = tag.attributes;
  while (attributes.size() < kMostAttributes) {
    while (!rest.empty() && (html::isSpace(rest.front()) || rest.front() == '/')) {
      rest.remove_prefix(1);
    }
    if (rest.empty()) break;
    size_t end = 1;  // an attribute may even begin with "="
    while (end < rest.size() && !html::isSpace(rest[end]) && rest[end] != '=' && rest[end] != '/') {
      ++end;
    }
    Attribute attribute{loweredText(rest.substr(0, end)), ""};
    rest.remove_prefix(end);
    while (!rest.empty() && html::isSpace(rest.front())) rest.remove_prefix(1);
    if (rest.starts_with('=')) attribute.value = withoutReferences(takeValue(rest));
    const bool isNew =
        std::ranges::find(attributes, attribute.name, &Attribute::name) == attributes.end();
    if (isNew) attributes.push_back(std::move(attribute));
  }
  return attributes;
}

std::string withoutReferences(std::string_view html) {
  if (html.find('&') == std::string_view::npos) return std::string(html);
  cmark_strbuf buffer;
  cmark_strbuf_init(cmark_get_default_mem_allocator(), &buffer, 0);
  houdini_unescape_html_f(&buffer, reinterpret_cast<const uint8_t*>(html.data()),
                          static_cast<bufsize_t>(html.size()));
  std::string text(reinterpret_cast<const char*>(buffer.ptr), static_cast<size_t>(buffer.size));
  cmark_strbuf_free(&buffer);
  return text;
}

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 16);
  for (size_t i = 0; i < text.size();) {
    const text::Decoded decoded = text::decode(text, i);
    i += decoded.length;
    char32_t scalar = decoded.scalar;
    if (scalar == '\r') {
      if (i < text.size() && text[i] == '\n') continue;
      scalar = '\n';
    }
    if (const std::string_view written = reference(scalar); !written.empty()) {
      result.append(written);
    } else if (isTextScalar(scalar)) {
      text::append(result, scalar);
    }
  }
  return result;
}

}  // namespace lk::xhtml
