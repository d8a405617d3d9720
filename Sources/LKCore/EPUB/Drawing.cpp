#include "LKCore/EPUB/Drawing.h"

#include <algorithm>
#include <array>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::xhtml {

namespace {

constexpr size_t kMostLevels = 50;

struct Shape {
  std::string_view name;
  std::string_view attributes;  // of its own, each between blanks
  bool isShape = false;         // has fill and stroke
  bool isText = false;          // has fonts
  bool holdsText = false;
  bool holdsShapes = false;
};

constexpr std::array<Shape, 12> kShapes = {{
    {"svg", " viewBox width height preserveAspectRatio x y ", true, true, false, true},
    {"g", " transform ", true, true, false, true},
    {"path", " d pathLength transform ", true},
    {"rect", " x y width height rx ry transform ", true},
    {"circle", " cx cy r transform ", true},
    {"ellipse", " cx cy rx ry transform ", true},
    {"line", " x1 y1 x2 y2 transform ", true},
    {"polyline", " points transform ", true},
    {"polygon", " points transform ", true},
    {"text", " x y dx dy rotate textLength transform ", true, true, true},
    {"tspan", " x y dx dy rotate textLength ", true, true, true},
    {"title", " ", false, false, true},
}};

constexpr std::string_view kShapeAttributes =
    " class color fill fill-opacity fill-rule opacity stroke stroke-dasharray stroke-dashoffset "
    "stroke-linecap stroke-linejoin stroke-miterlimit stroke-opacity stroke-width ";
constexpr std::string_view kTextAttributes =
    " font-family font-size font-style font-weight letter-spacing text-anchor ";

const Shape* shapeNamed(std::string_view name) {
  const auto* const found = std::ranges::find(kShapes, name, &Shape::name);
  return found == kShapes.end() ? nullptr : found;
}

bool listHas(std::string_view list, std::string_view name) {
  return list.find(" " + std::string(name) + " ") != std::string_view::npos;
}

bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

class DrawingReader {
 public:
  DrawingReader(std::string_view text, size_t place) : text_(text), place_(place) {}

  size_t place() const { return place_; }

  std::optional<Drawing> read() {
    do {
      if (!takeMarkup()) return std::nullopt;
      if (open_.empty()) return Drawing{std::move(markup_), place_};
      if (!takeText()) return std::nullopt;
    } while (place_ < text_.size());
    return std::nullopt;
  }

 private:
  std::string_view rest() const { return text_.substr(place_); }

  bool takeMarkup() {
    if (rest().starts_with("</")) return takeEnd();
    if (rest().starts_with("<!--")) {
      const size_t end = text_.find("-->", place_);
      place_ = end == std::string_view::npos ? text_.size() : end + 3;
      return end != std::string_view::npos;
    }
    return takeStart();
  }

  bool takeEnd() {
    place_ += 2;
    const std::string_view name = takeName();
    skipSpace();
    if (name != open_.back()->name || !rest().starts_with('>')) return false;
    ++place_;
    markup_.append("</").append(name).append(">");
    open_.pop_back();
    return true;
  }

  bool takeStart() {
    ++place_;
    const std::string_view name = takeName();
    const Shape* const shape = shapeNamed(name);
    if (shape == nullptr || open_.size() == kMostLevels || !mayStandHere(*shape)) return false;
    markup_.append("<").append(name);
    if (open_.empty()) markup_.append(" xmlns=\"http://www.w3.org/2000/svg\"");
    if (!takeAttributes(*shape)) return false;
    const bool isEmpty = rest().starts_with('/');
    if (isEmpty) ++place_;
    if (!rest().starts_with('>')) return false;
    ++place_;
    markup_.append(isEmpty ? "/>" : ">");
    if (!isEmpty) open_.push_back(shape);
    return !(isEmpty && open_.empty());  // a drawing of nothing
  }

  bool mayStandHere(const Shape& shape) const {
    if (open_.empty()) return shape.name == "svg";
    if (shape.name == "svg") return false;
    if (shape.name == "title")
      return open_.back()->holdsShapes && markup_.ends_with('>') && !markup_.ends_with("/>") &&
             !endsElement();
    return shape.name == "tspan" ? open_.back()->holdsText && open_.back()->isText
                                 : open_.back()->holdsShapes;
  }

  // A title comes first of all within its element.
  bool endsElement() const {
    const size_t bracket = markup_.rfind('<');
    return bracket + 1 < markup_.size() && markup_[bracket + 1] == '/';
  }

  bool takeAttributes(const Shape& shape) {
    std::string names = " ";
    for (skipSpace(); place_ < text_.size() && isNameStart(text_[place_]); skipSpace()) {
      const std::string_view name = takeName();
      skipSpace();
      if (!rest().starts_with('=')) return false;
      ++place_;
      skipSpace();
      const char quote = rest().empty() ? ' ' : rest().front();
      if (quote != '"' && quote != '\'') return false;
      const size_t end = text_.find_first_of(quote == '"' ? "\"<" : "'<", place_ + 1);
      if (end == std::string_view::npos || text_[end] == '<' || listHas(names, name)) return false;
      const std::string_view value = text_.substr(place_ + 1, end - place_ - 1);
      place_ = end + 1;
      names.append(name).append(" ");
      if (!takeAttribute(shape, name, value)) return false;
    }
    return true;
  }

  bool takeAttribute(const Shape& shape, std::string_view name, std::string_view value) {
    const bool isRoot = open_.empty();
    if (isRoot && name == "xmlns") return value == "http://www.w3.org/2000/svg";
    if (isRoot && (name == "version" || name == "xmlns:xlink")) return true;  // of no use here
    const bool isKnown = listHas(shape.attributes, name) ||
                         (shape.isShape && listHas(kShapeAttributes, name)) ||
                         (shape.isText && listHas(kTextAttributes, name));
    const std::string plain = withoutReferences(value);
    if (!isKnown || plain.empty() || plain.find_first_of("(:") != std::string::npos) {
      if (!isKnown || name != "transform") return false;
    }
    markup_.append(" ").append(name).append("=\"").append(escaped(plain)).append("\"");
    return true;
  }

  // Up to the next "<".
  bool takeText() {
    const size_t end = std::min(text_.find('<', place_), text_.size());
    const std::string plain = withoutReferences(text_.substr(place_, end - place_));
    place_ = end;
    if (text::trimmed(plain).empty()) return true;
    if (!open_.back()->holdsText) return false;
    markup_.append(escaped(plain));
    return true;
  }

  std::string_view takeName() {
    const size_t start = place_;
    while (place_ < text_.size() &&
           (isNameStart(text_[place_]) || (text_[place_] >= '0' && text_[place_] <= '9') ||
            text_[place_] == '-' || text_[place_] == ':')) {
      ++place_;
    }
    return text_.substr(start, place_ - start);
  }

  void skipSpace() {
    while (place_ < text_.size() && html::isSpace(text_[place_])) ++place_;
  }

  std::string_view text_;
  size_t place_;
  std::string markup_;
  std::vector<const Shape*> open_;
};

}  // namespace

std::optional<Drawing> plainDrawing(std::string_view text, size_t& place) {
  DrawingReader reader(text, place);
  std::optional<Drawing> drawing = reader.read();
  place = reader.place();
  return drawing;
}

std::optional<std::string> plainDrawingFile(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  bytes = html::trimmed(bytes);
  while (bytes.starts_with("<?xml") || bytes.starts_with("<!--")) {
    const std::string_view end = bytes[1] == '?' ? "?>" : "-->";
    const size_t place = bytes.find(end);
    if (place == std::string_view::npos) return std::nullopt;
    bytes = html::trimmed(bytes.substr(place + end.size()));
  }
  if (!bytes.starts_with("<svg") || !text::isValidUTF8(bytes)) return std::nullopt;
  size_t place = 0;
  const auto drawing = plainDrawing(bytes, place);
  if (!drawing || !html::trimmed(bytes.substr(drawing->end)).empty()) return std::nullopt;
  return drawing->markup;
}

}  // namespace lk::xhtml
