#include "LKCore/EPUB/EPUBStyle.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CSSText.h"

namespace lk::xhtml {

namespace {

// Of a style attribute. Nothing here hides words or lays them over others.
constexpr std::array<std::string_view, 40> kPlainProperties = {
    "background-color", "border",          "border-bottom",  "border-collapse", "border-color",
    "border-left",      "border-radius",   "border-right",   "border-style",    "border-top",
    "border-width",     "clear",           "color",          "float",           "font-size",
    "font-style",       "font-variant",    "font-weight",    "height",          "letter-spacing",
    "line-height",      "list-style-type", "margin",         "margin-bottom",   "margin-left",
    "margin-right",     "margin-top",      "max-height",     "max-width",       "padding",
    "padding-bottom",   "padding-left",    "padding-right",  "padding-top",     "text-align",
    "text-decoration",  "text-indent",     "vertical-align", "white-space",     "width"};

constexpr std::array<std::string_view, 8> kPaperProperties = {
    "counter-increment", "counter-reset", "direction",  "page",
    "position",          "size",          "string-set", "unicode-bidi"};

constexpr std::array<std::string_view, 7> kPaperValues = {
    "url(", "target-counter", "string(", "expression(", "attr(", "counter(", "javascript:"};

// Where a stretch of CSS ends: at one of the characters outside of strings, comments and brackets.
size_t endOfStretch(std::string_view sheet, size_t place, std::string_view ends) {
  int depth = 0;
  while (place < sheet.size()) {
    const char c = sheet[place];
    if (depth == 0 && ends.find(c) != std::string_view::npos) return place;
    if (c == '"' || c == '\'') {
      ++place;
      while (place < sheet.size() && sheet[place] != c) place += sheet[place] == '\\' ? 2 : 1;
    } else if (c == '/' && sheet.substr(place).starts_with("/*")) {
      const size_t end = sheet.find("*/", place + 2);
      if (end == std::string_view::npos) return sheet.size();
      place = end + 1;
    } else if (c == '(' || c == '{' || c == '[') {
      ++depth;
    } else if (c == ')' || c == '}' || c == ']') {
      depth = std::max(depth - 1, 0);
    }
    ++place;
  }
  return sheet.size();
}

struct Declaration {
  std::string name;  // lower-case
  std::string_view value;
};

template <typename Take>
void eachDeclaration(std::string_view block, const Take& take) {
  while (!block.empty()) {
    const size_t end = endOfStretch(block, 0, ";");
    const std::string_view text = block.substr(0, end);
    block.remove_prefix(std::min(end + 1, block.size()));
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos) continue;
    take(Declaration{text::lowercased(text::trimmed(text.substr(0, colon))),
                     text::trimmed(text.substr(colon + 1))});
  }
}

bool isOfPaper(const Declaration& declaration) {
  const std::string value = text::lowercased(declaration.value);
  const bool isHeightOfPage = declaration.name == "min-height" && value.ends_with("in");
  return isHeightOfPage ||
         std::ranges::find(kPaperProperties, declaration.name) != kPaperProperties.end() ||
         std::ranges::any_of(kPaperValues, [&](std::string_view part) {
           return value.find(part) != std::string::npos;
         });
}

std::optional<double> pointsOf(std::string_view value) {
  if (!value.ends_with("pt")) return std::nullopt;
  value.remove_suffix(2);
  double points = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), points);
  const bool isNumber = error == std::errc() && end == value.data() + value.size();
  return isNumber ? std::optional(points) : std::nullopt;
}

class ReaderRule {
 public:
  ReaderRule(std::string_view selector, double bodySizePt)
      : isBody_(selector == "body"), bodySizePt_(bodySizePt > 0 ? bodySizePt : 12) {}

  std::string declarations(std::string_view block) const {
    std::string result;
    eachDeclaration(block, [&](const Declaration& declaration) {
      if (declaration.value.empty() || isOfPaper(declaration)) return;
      const bool isOfReader = declaration.name == "font-size" || declaration.name == "line-height";
      if (isBody_ && isOfReader) return;
      result.append("  ").append(declaration.name).append(": ");
      result.append(value(declaration)).append(";\n");
    });
    return result;
  }

 private:
  std::string value(const Declaration& declaration) const {
    const auto points = pointsOf(declaration.value);
    if (declaration.name != "font-size" || !points) return std::string(declaration.value);
    return css::number(*points / bodySizePt_) + "em";
  }

  bool isBody_;
  double bodySizePt_;
};

bool isPlainValue(std::string_view value) {
  static constexpr std::string_view kPunctuation = " #%.,-()";
  int depth = 0;
  for (size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    const bool isWord = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!isWord && kPunctuation.find(c) == std::string_view::npos) return false;
    if (c == '(') ++depth;
    if (c == ')' && --depth < 0) return false;
    if (c != '#') continue;
    const size_t end =
        std::min(value.find_first_not_of("0123456789abcdefABCDEF", i + 1), value.size());
    if (end - i != 4 && end - i != 7) return false;
  }
  return depth == 0 && !value.empty();
}

}  // namespace

std::string readerSheet(std::string_view sheet, double bodySizePt) {
  std::string result;
  while (!sheet.empty()) {
    const std::string_view trimmed = text::trimmedLeading(sheet);
    if (trimmed.starts_with("/*")) {
      const size_t end = trimmed.find("*/", 2);
      if (end == std::string_view::npos) break;
      sheet = trimmed.substr(end + 2);
      continue;
    }
    const size_t block = endOfStretch(trimmed, 0, "{;");
    const std::string_view selector = text::trimmed(trimmed.substr(0, block));
    if (block == trimmed.size()) break;
    const bool hasBlock = trimmed[block] == '{';
    const size_t end = hasBlock ? endOfStretch(trimmed, block + 1, "}") : block;
    if (hasBlock && end < trimmed.size() && !selector.starts_with('@')) {
      const std::string declarations =
          ReaderRule(selector, bodySizePt).declarations(trimmed.substr(block + 1, end - block - 1));
      if (!declarations.empty()) result.append(selector).append(" {\n" + declarations + "}\n");
    }
    sheet = trimmed.substr(std::min(end + 1, trimmed.size()));
  }
  // A relative size would count twice where such elements stand within each other.
  return result.append("pre code, pre kbd, pre samp {\n  font-size: 1em;\n}\n");
}

std::string plainDeclarations(std::string_view declarations) {
  std::string result;
  eachDeclaration(declarations, [&](const Declaration& declaration) {
    const bool isKnown = std::ranges::binary_search(kPlainProperties, declaration.name);
    if (!isKnown || !isPlainValue(declaration.value)) return;
    result.append(result.empty() ? "" : "; ").append(declaration.name).append(": ");
    result.append(declaration.value);
  });
  return result;
}

}  // namespace lk::xhtml
