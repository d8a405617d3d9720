#include "Support/XMLCheck.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace lk::test {

namespace {

struct XMLFault {
  std::string text;
};

// The scalar at `offset` and its bytes; no bytes for what is no UTF-8.
std::pair<char32_t, size_t> scalarAt(std::string_view text, size_t offset) {
  const auto byte = [&](size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
  };
  const unsigned first = byte(offset);
  if (first < 0x80) return {first, 1};
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4) return {0, 0};
  char32_t scalar = first & (0x7FU >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(offset + i) & 0xC0U) != 0x80) return {0, 0};
    scalar = (scalar << 6) | (byte(offset + i) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  return scalar < kLeast.at(length) ? std::pair<char32_t, size_t>{0, 0} : std::pair{scalar, length};
}

bool isXMLCharacter(char32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c <= 0xD7FF || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

bool isXMLSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
}

bool isNameCharacter(char c) {
  return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

class XMLReader {
 public:
  explicit XMLReader(std::string_view text) : text_(text) {}

  void read() {
    checkCharacters();
    if (at("<?xml ")) skipPast("<?xml", "?>");
    bool hasRoot = false;
    while (place_ < text_.size()) {
      if (text_[place_] != '<') {
        takeText(!open_.empty());
      } else if (at("<!--")) {
        takeComment();
      } else if (at("<![CDATA[") && !open_.empty()) {
        skipPast("<![CDATA[", "]]>");
      } else if (at("<!DOCTYPE ") && !hasRoot) {
        takeDocumentType();
      } else if (at("<?")) {
        takeInstruction();
      } else if (at("</")) {
        takeClosingTag();
      } else {
        if (open_.empty() && std::exchange(hasRoot, true)) fail("a second root element");
        takeOpeningTag();
      }
    }
    if (!open_.empty()) fail("no end of <" + std::string(open_.back().name) + ">");
    if (!hasRoot) fail("no root element");
  }

 private:
  struct OpenElement {
    std::string_view name;
    size_t prefixes = 0;  // that were declared outside of it
  };

  [[noreturn]] void fail(const std::string& what) const {
    throw XMLFault{what + " at byte " + std::to_string(place_)};
  }

  bool at(std::string_view mark) const { return text_.substr(place_).starts_with(mark); }

  void checkCharacters() {
    for (size_t length = 1; place_ < text_.size(); place_ += length) {
      const auto decoded = scalarAt(text_, place_);
      length = decoded.second;
      if (length == 0) fail("no UTF-8");
      if (!isXMLCharacter(decoded.first)) fail("a forbidden character");
    }
    place_ = 0;
  }

  std::string_view skipPast(std::string_view start, std::string_view end) {
    const size_t inside = place_ + start.size();
    const size_t found = text_.find(end, inside);
    if (found == std::string_view::npos) fail("no end of " + std::string(start));
    place_ = found + end.size();
    return text_.substr(inside, found - inside);
  }

  void takeComment() {
    const size_t start = place_;
    const std::string_view comment = skipPast("<!--", "-->");
    if (comment.find("--") == std::string_view::npos && !comment.ends_with('-')) return;
    place_ = start;
    fail("two hyphens in a comment");
  }

  void takeInstruction() {
    const size_t start = place_;
    const std::string_view name = skipPast("<?", "?>").substr(0, 3);
    place_ = start + 2;
    if (name.empty() || !isNameStart(name[0]) || name == "xml" || name == "XML") {
      fail("an instruction without a name of its own");
    }
    place_ = start;
    skipPast("<?", "?>");
  }

  void takeDocumentType() {
    const std::string_view type = skipPast("<!DOCTYPE ", ">");
    if (type.find_first_of("[<&") != std::string_view::npos) fail("rules in a document type");
  }

  void takeText(bool isInside) {
    const size_t end = std::min(text_.find('<', place_), text_.size());
    while (place_ < end) {
      if (!isInside && !isXMLSpace(text_[place_])) fail("text outside of the root element");
      if (at("]]>")) fail("]]> in a text");
      if (text_[place_] == '&') {
        takeReference();
      } else {
        ++place_;
      }
    }
  }

  void takeReference() {
    const size_t end = text_.find(';', place_);
    if (end == std::string_view::npos || end - place_ > 12) fail("a bare &");
    const std::string_view name = text_.substr(place_ + 1, end - place_ - 1);
    constexpr std::array<std::string_view, 5> kKnown = {"amp", "lt", "gt", "quot", "apos"};
    const bool isNumber = name.starts_with('#') && isXMLCharacter(numberOf(name.substr(1)));
    if (!isNumber && std::ranges::find(kKnown, name) == kKnown.end()) {
      fail("unknown entity &" + std::string(name) + ";");
    }
    place_ = end + 1;
  }

  // 0, which no document may hold, for what is no number.
  static char32_t numberOf(std::string_view digits) {
    const bool isHex = digits.starts_with('x');
    if (isHex) digits.remove_prefix(1);
    uint64_t number = 0;
    for (const char c : digits) {
      const char lower = static_cast<char>(c | 0x20);
      if (c >= '0' && c <= '9') {
        number = number * (isHex ? 16 : 10) + static_cast<uint64_t>(c - '0');
      } else if (isHex && lower >= 'a' && lower <= 'f') {
        number = number * 16 + static_cast<uint64_t>(lower - 'a' + 10);
      } else {
        return 0;
      }
    }
    return static_cast<char32_t>(std::min<uint64_t>(number, 0x110000));
  }

  std::string_view takeName() {
    const size_t start = place_;
    size_t colons = 0;
    if (place_ >= text_.size() || !isNameStart(text_[place_])) fail("no name");
    while (place_ < text_.size() && (isNameCharacter(text_[place_]) || text_[place_] == ':')) {
      if (text_[place_] == ':' && ++colons > 1) fail("two colons in a name");
      ++place_;
    }
    if (text_[place_ - 1] == ':') fail("a name that ends in a colon");
    return text_.substr(start, place_ - start);
  }

  bool skipSpace() {
    const size_t start = place_;
    while (place_ < text_.size() && isXMLSpace(text_[place_])) ++place_;
    return place_ > start;
  }

  void takeOpeningTag() {
    ++place_;
    const size_t outside = prefixes_.size();
    const std::string_view name = takeName();
    std::vector<std::string_view> attributes;
    bool isEmpty = false;
    while (true) {
      const bool hasSpace = skipSpace();
      isEmpty = at("/>");
      if (isEmpty || at(">")) break;
      if (!hasSpace) fail("no blank before an attribute");
      attributes.push_back(takeAttribute());
    }
    place_ += isEmpty ? 2 : 1;
    checkPrefix(name);
    for (const std::string_view attribute : attributes) checkPrefix(attribute);
    std::ranges::sort(attributes);
    if (std::ranges::adjacent_find(attributes) != attributes.end()) fail("an attribute twice");
    if (isEmpty) {
      prefixes_.resize(outside);
    } else {
      open_.push_back({name, outside});
    }
  }

  std::string_view takeAttribute() {
    const std::string_view name = takeName();
    skipSpace();
    if (!at("=")) fail("an attribute without a value");
    ++place_;
    skipSpace();
    if (!at("\"") && !at("'")) fail("a value without quotes");
    const char quote = text_[place_++];
    while (place_ < text_.size() && text_[place_] != quote) {
      if (text_[place_] == '<') fail("< in a value");
      if (text_[place_] == '&') {
        takeReference();
      } else {
        ++place_;
      }
    }
    if (place_ == text_.size()) fail("no end of a value");
    ++place_;
    if (name.starts_with("xmlns:")) prefixes_.push_back(name.substr(6));
    return name;
  }

  void takeClosingTag() {
    place_ += 2;
    const std::string_view name = takeName();
    skipSpace();
    if (!at(">")) fail("no end of a closing tag");
    if (open_.empty() || open_.back().name != name)
      fail("</" + std::string(name) + "> is not open");
    prefixes_.resize(open_.back().prefixes);
    open_.pop_back();
    ++place_;
  }

  void checkPrefix(std::string_view name) const {
    const size_t colon = name.find(':');
    if (colon == std::string_view::npos) return;
    const std::string_view prefix = name.substr(0, colon);
    if (prefix == "xml" || prefix == "xmlns") return;
    if (std::ranges::find(prefixes_, prefix) == prefixes_.end()) {
      fail("the prefix " + std::string(prefix) + " is not declared");
    }
  }

  std::string_view text_;
  size_t place_ = 0;
  std::vector<OpenElement> open_;
  std::vector<std::string_view> prefixes_;
};

}  // namespace

std::optional<std::string> xmlError(std::string_view document) {
  try {
    XMLReader(document).read();
  } catch (const XMLFault& fault) {
    return fault.text;
  }
  return std::nullopt;
}

}  // namespace lk::test
