// The natural size of an SVG document, by its root element alone.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "LKCore/Pictures/PictureBytes.h"

namespace lk {

namespace {

bool isMarkupSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

size_t skipMarkupSpace(std::string_view text, size_t at) {
  while (at < text.size() && isMarkupSpace(text[at])) ++at;
  return at;
}

// Behind `end` when the text begins with `start`; the start itself otherwise.
size_t behind(std::string_view text, size_t at, std::string_view start, std::string_view end) {
  if (!text.substr(at).starts_with(start)) return at;
  const size_t found = text.find(end, at + start.size());
  return found == std::string_view::npos ? text.size() : found + end.size();
}

// A document type may hold rules between brackets.
size_t behindDocumentType(std::string_view text, size_t at) {
  if (!text.substr(at).starts_with("<!DOCTYPE")) return at;
  const size_t mark = text.find_first_of("[>", at);
  if (mark == std::string_view::npos) return text.size();
  if (text[mark] == '>') return mark + 1;
  const size_t rules = text.find(']', mark);
  const size_t end = rules == std::string_view::npos ? rules : text.find('>', rules);
  return end == std::string_view::npos ? text.size() : end + 1;
}

// The tag of the root element, without its brackets; nothing when it is no "svg".
std::optional<std::string_view> rootTag(std::string_view text) {
  size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  for (size_t before = text.size() + 1; before != at;) {
    before = at;
    at = skipMarkupSpace(text, at);
    at = behind(text, at, "<!--", "-->");
    at = behind(text, at, "<?", "?>");
    at = behindDocumentType(text, at);
  }
  if (at >= text.size() || text[at] != '<') return std::nullopt;
  const size_t nameEnd = text.find_first_of(" \t\r\n/>", at);
  if (nameEnd == std::string_view::npos) return std::nullopt;
  const std::string_view name = text.substr(at + 1, nameEnd - at - 1);
  if (name != "svg" && !name.ends_with(":svg")) return std::nullopt;
  char quote = 0;
  for (size_t end = nameEnd; end < text.size(); ++end) {
    const char c = text[end];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return text.substr(nameEnd, end - nameEnd);
    }
  }
  return std::nullopt;
}

// The value of an attribute of a tag.
std::optional<std::string_view> attributeOf(std::string_view tag, std::string_view name) {
  for (size_t at = skipMarkupSpace(tag, 0); at < tag.size(); at = skipMarkupSpace(tag, at)) {
    const size_t equals = tag.find('=', at);
    if (equals == std::string_view::npos) return std::nullopt;
    std::string_view found = tag.substr(at, equals - at);
    while (!found.empty() && isMarkupSpace(found.back())) found.remove_suffix(1);
    const size_t open = skipMarkupSpace(tag, equals + 1);
    if (open >= tag.size() || (tag[open] != '"' && tag[open] != '\'')) return std::nullopt;
    const size_t close = tag.find(tag[open], open + 1);
    if (close == std::string_view::npos) return std::nullopt;
    if (found == name) return tag.substr(open + 1, close - open - 1);
    at = close + 1;
  }
  return std::nullopt;
}

// A number at the start of the text, which it is taken from.
std::optional<double> takeNumber(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n,"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
  return number;
}

struct LengthUnit {
  std::string_view name;
  double pixels;
};

constexpr std::array<LengthUnit, 10> kLengthUnits = {{{"", 1},
                                                      {"px", 1},
                                                      {"pt", 96.0 / 72},
                                                      {"pc", 16},
                                                      {"in", 96},
                                                      {"cm", 96 / 2.54},
                                                      {"mm", 96 / 25.4},
                                                      {"q", 96 / 101.6},
                                                      {"em", 16},
                                                      {"ex", 8}}};

// "12.5mm" in CSS pixels; 0 for a share of what is around it ("100%") and for no length.
double lengthIn(std::optional<std::string_view> value) {
  if (!value) return 0;
  std::string_view rest = *value;
  const auto number = takeNumber(rest);
  if (!number) return 0;
  while (!rest.empty() && isMarkupSpace(rest.back())) rest.remove_suffix(1);
  for (const LengthUnit& unit : kLengthUnits) {
    const bool isUnit = std::ranges::equal(
        rest, unit.name, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
    if (isUnit) return std::max(0.0, *number * unit.pixels);
  }
  return 0;
}

}  // namespace

bool isSVG(std::string_view bytes) {
  return rootTag(bytes).has_value();
}

StoredPicture storedSVG(std::string_view document) {
  StoredPicture picture;
  const auto tag = rootTag(document);
  if (!tag) return picture;
  picture.width = lengthIn(attributeOf(*tag, "width"));
  picture.height = lengthIn(attributeOf(*tag, "height"));
  std::string_view box = attributeOf(*tag, "viewBox").value_or(std::string_view());
  takeNumber(box);
  takeNumber(box);
  const double boxWidth = takeNumber(box).value_or(0);
  const double boxHeight = takeNumber(box).value_or(0);
  if (boxWidth <= 0 || boxHeight <= 0) return picture;
  if (picture.width <= 0 && picture.height <= 0) {
    picture.width = boxWidth;
    picture.height = boxHeight;
  } else if (picture.width <= 0) {
    picture.width = picture.height * boxWidth / boxHeight;
  } else if (picture.height <= 0) {
    picture.height = picture.width * boxHeight / boxWidth;
  }
  return picture;
}

}  // namespace lk
