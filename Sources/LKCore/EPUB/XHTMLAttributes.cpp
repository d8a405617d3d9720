#include "LKCore/EPUB/XHTMLAttributes.h"

#include <algorithm>
#include <array>
#include <utility>

#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"
#include "LKCore/EPUB/EPUBStyle.h"

namespace lk::xhtml {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

// What an `epub:type` of a note may say.
constexpr std::array<std::string_view, 12> kSemantics = {
    "bodymatter", "chapter",  "dedication", "epigraph", "footnote", "footnotes",
    "foreword",   "glossary", "noteref",    "part",     "preface",  "prologue"};

bool isAlnum(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isDigits(std::string_view text) {
  return !text.empty() && text.size() <= 9 &&
         std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::string nameFrom(std::string_view written) {
  std::string name;
  for (const char c : written) {
    const auto byte = static_cast<unsigned char>(c);
    if (isAlnum(c) || c == '-' || c == '_' || c == '.') {
      name.push_back(c);
    } else {
      name.append({'-', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
  }
  const bool isStart = (name[0] >= 'a' && name[0] <= 'z') || (name[0] >= 'A' && name[0] <= 'Z');
  return isStart ? name : "_" + name;
}

// Labels of letters, digits and hyphens, with a port.
bool isHost(std::string_view host) {
  const size_t colon = host.find(':');
  if (colon != std::string_view::npos) {
    const std::string_view port = host.substr(colon + 1);
    if (!isDigits(port) || port.size() > 5) return false;
    host = host.substr(0, colon);
  }
  for (const std::string_view label : text::split(host, '.')) {
    const bool isPlain = std::ranges::all_of(label, [](char c) { return isAlnum(c) || c == '-'; });
    if (label.empty() || !isPlain || label.starts_with('-') || label.ends_with('-')) return false;
  }
  return true;
}

std::string percentEncoded(std::string_view text) {
  static constexpr std::string_view kPlain = "-._~!$&'()*+,;=:@/?";
  std::string result;
  bool hasFragment = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const auto isHex = [&](size_t place) {
      return place < text.size() && (isAlnum(text[place]) && (text[place] | 32) <= 'f');
    };
    const bool isCode = c == '%' && isHex(i + 1) && isHex(i + 2);
    const bool isFragment = c == '#' && !std::exchange(hasFragment, true);
    if (isAlnum(c) || kPlain.find(c) != std::string_view::npos || isCode || isFragment) {
      result.push_back(c);
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append({'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
  }
  return result;
}

class AttributeWriter {
 public:
  AttributeWriter(const Element& element, AttributeContext context)
      : element_(element), context_(std::move(context)), style_(element.style) {}

  void take(const Attribute& attribute) {
    const std::string& name = attribute.name;
    const std::string& value = attribute.value;
    if (takeGlobal(name, value) || takeLook(name, value)) return;
    if (element_.place == Place::cell) {
      takeOfCell(name, value);
    } else if (element_.name == "ol" || element_.place == Place::item) {
      takeOfList(name, value);
    }
  }

  std::string finish() {
    if (context_.href) write("href", *context_.href);
    addFootnoteSemantics();
    if (!semantics_.empty()) write("epub:type", semantics_);
    if (!style_.empty()) write("style", style_);
    return std::move(result_);
  }

 private:
  bool takeGlobal(const std::string& name, const std::string& value) {
    const bool isID = name == "id" || (name == "name" && element_.name == "a");
    if (isID && id_.empty()) {
      const auto claimed = context_.claimed.claim(value);
      if (!claimed) return true;
      id_ = value;
      write("id", *claimed);
    } else if (name == "class") {
      class_ = value;
      write(name, value);
    } else if (name == "lang" || name == "xml:lang") {
      if (!isLanguageTag(value) || std::exchange(hasLanguage_, true)) return true;
      write("lang", value);
      write("xml:lang", value);
    } else if (name == "dir") {
      const std::string direction = text::lowercased(value);
      if (direction == "ltr" || direction == "rtl" || direction == "auto") write(name, direction);
    } else if (name == "epub:type") {
      takeSemantics(value);
    } else if (isPlainText(name, value)) {
      write(name, value);
    } else {
      return isID;
    }
    return true;
  }

  // What stays as it is.
  static bool isPlainText(const std::string& name, const std::string& value) {
    if (name == "aria-hidden") return value == "true" || value == "false";
    return name == "title" || name == "aria-label" || isData(name);
  }

  // What belongs into a style sheet today.
  bool takeLook(const std::string& name, const std::string& value) {
    const std::string word = text::lowercased(text::trimmed(value));
    if (name == "style") {
      addStyle(value);
    } else if (name == "align") {
      const bool isPicture = element_.place == Place::picture;
      const bool isSide = word == "left" || word == "right";
      if (isPicture && isSide) addStyle("float: " + word);
      if (!isPicture && (isSide || word == "center" || word == "justify")) {
        addStyle("text-align: " + word);
      }
    } else if (name == "valign") {
      const bool isKnown =
          word == "top" || word == "middle" || word == "bottom" || word == "baseline";
      if (isKnown) addStyle("vertical-align: " + word);
    } else if (name == "bgcolor") {
      addStyle("background-color: " + word);
    } else if (name == "color") {
      addStyle("color: " + word);
    } else if (name == "width" || name == "height") {
      takeSize(name, word);
    } else {
      return false;
    }
    return true;
  }

  void takeSize(const std::string& name, std::string_view word) {
    const bool isPicture = element_.place == Place::picture;
    if (isPicture && isDigits(word)) {
      write(name, word);
    } else if (!word.empty()) {
      const bool hasUnit = word.ends_with('%') || word.ends_with("px") || word.ends_with("em");
      addStyle(name + ": " + std::string(word) + (hasUnit ? "" : "px"));
    }
  }

  void takeOfCell(const std::string& name, const std::string& value) {
    int count = 0;
    const bool isSpan = name == "colspan" || name == "rowspan";
    if (isSpan && isDigits(value) && text::parseInteger(value, count)) {
      if (count > 1) write(name, std::to_string(std::min(count, 1000)));
    } else if (name == "scope" && element_.name == "th") {
      if (value == "row" || value == "col") write(name, value);
    }
  }

  void takeOfList(const std::string& name, const std::string& value) {
    static constexpr std::string_view kTypes = "1aAiI";
    int number = 0;
    if (element_.place == Place::item) {
      const bool isNumber = name == "value" && context_.isInOrderedList;
      if (isNumber && text::parseInteger(value, number)) write(name, std::to_string(number));
    } else if (name == "start") {
      if (text::parseInteger(value, number)) write(name, std::to_string(number));
    } else if (name == "reversed") {
      write(name, name);
    } else if (name == "type" && value.size() == 1 && kTypes.find(value) != kTypes.npos) {
      write(name, value);
    }
  }

  void takeSemantics(std::string_view value) {
    for (const std::string_view word : text::split(value, ' ')) {
      if (std::ranges::find(kSemantics, word) == kSemantics.end()) continue;
      if (semantics_.find(word) != std::string::npos) continue;
      semantics_.append(semantics_.empty() ? "" : " ").append(word);
    }
  }

  // By these e-readers know what to show beside the text, and screen readers what to call it.
  void addFootnoteSemantics() {
    if (context_.href && id_.starts_with("fnref-")) {
      semantics_ = "noteref";
      write("role", "doc-noteref");
    } else if (context_.href && class_ == "footnote-backref") {
      write("role", "doc-backlink");
    } else if (element_.place == Place::item && id_.starts_with("fn-")) {
      semantics_ = "footnote";
    } else if (element_.name == "section" && class_.starts_with("footnotes")) {
      semantics_ = "footnotes";
      write("role", "doc-endnotes");
    }
  }

  static bool isData(std::string_view name) {
    static constexpr std::string_view kData = "data-";
    if (!name.starts_with(kData) || name.size() == kData.size()) return false;
    return std::ranges::all_of(name, [](char c) { return isAlnum(c) || c == '-'; });
  }

  void addStyle(std::string_view declarations) {
    const std::string clean = plainDeclarations(declarations);
    if (clean.empty()) return;
    style_.append(style_.empty() ? "" : "; ").append(clean);
  }

  void write(std::string_view name, std::string_view value) {
    result_.append(" ").append(name).append("=\"").append(escaped(value)).append("\"");
  }

  const Element& element_;
  AttributeContext context_;
  std::string result_;
  std::string style_;
  std::string semantics_;
  std::string id_;  // as it was written
  std::string class_;
  bool hasLanguage_ = false;
};

}  // namespace

std::optional<std::string> Identifiers::claim(std::string_view written) {
  const std::string key(text::trimmed(written));
  if (key.empty() || names_.contains(key)) return std::nullopt;
  const std::string base = nameFrom(key);
  std::string name = base;
  while (!taken_.insert(name).second) name = base + "-" + std::to_string(++uses_[base] + 1);
  names_.emplace(key, name);
  return name;
}

std::optional<std::string> Identifiers::find(std::string_view written) const {
  const auto name = names_.find(text::trimmed(written));
  return name == names_.end() ? std::nullopt : std::optional(name->second);
}

std::optional<std::string> webAddress(std::string_view written) {
  const std::string_view address = text::trimmed(written);
  const size_t colon = address.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string scheme = text::lowercased(address.substr(0, colon));
  std::string_view rest = address.substr(colon + 1);
  if (scheme == "mailto") {
    if (rest.empty() || rest.starts_with('/')) return std::nullopt;
    return "mailto:" + percentEncoded(rest);
  }
  if ((scheme != "http" && scheme != "https") || !rest.starts_with("//")) return std::nullopt;
  rest.remove_prefix(2);
  const size_t end = std::min(rest.find_first_of("/?#"), rest.size());
  const std::string_view host = rest.substr(0, end);
  if (!isHost(host)) return std::nullopt;
  return scheme + "://" + std::string(host) + percentEncoded(rest.substr(end));
}

std::optional<std::string> linkAddress(std::string_view written, const Identifiers& known) {
  const std::string_view address = text::trimmed(written);
  if (!address.starts_with('#')) return webAddress(address);
  const std::string_view fragment = address.substr(1);
  std::optional<std::string> name = known.find(fragment);
  if (!name) name = known.find(percentDecoded(fragment));
  return name ? std::optional("#" + *name) : std::nullopt;
}

std::string writtenAttributes(const Element& element, const std::vector<Attribute>& attributes,
                              AttributeContext context) {
  AttributeWriter writer(element, std::move(context));
  for (const Attribute& attribute : attributes) writer.take(attribute);
  return writer.finish();
}

const std::string* valueOf(const std::vector<Attribute>& attributes, std::string_view name) {
  const auto found = std::ranges::find(attributes, name, &Attribute::name);
  return found == attributes.end() ? nullptr : &found->value;
}

bool isLanguageTag(std::string_view text) {
  const std::vector<std::string_view> parts = text::split(text, '-');
  for (size_t i = 0; i < parts.size(); ++i) {
    const std::string_view part = parts[i];
    const bool isWord =
        std::ranges::all_of(part, [&](char c) { return isAlnum(c) && (i > 0 || c > '9'); });
    if (!isWord || part.size() < 2 || part.size() > (i == 0 ? 3 : 8)) return false;
  }
  return true;
}

}  // namespace lk::xhtml
