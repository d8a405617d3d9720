#include "LKCore/EPUB/XHTML.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/EPUB/Drawing.h"
#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/EPUB/XHTMLElements.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::xhtml {

namespace {

constexpr size_t kDeepest = 200;  // open elements

// An element that is open, and what of its children decides what may follow.
struct Frame {
  const Element* element = nullptr;
  std::string_view written;
  bool hasContent = false;     // table: rows; dl: definitions; figure: anything but its caption
  bool hasCaption = false;     // table, figure
  bool hasHead = false;        // table
  bool isComplete = false;     // figure: the caption behind its content is there
  bool endsInTerm = false;     // dl
  bool endsInReading = false;  // ruby
};

bool isWordsOnly(Content content) {
  return content == Content::phrasing || content == Content::ruby;
}

bool isOfTable(Place place) {
  return place == Place::caption || place == Place::rowGroup || place == Place::row ||
         place == Place::cell;
}

// The elements that are open, and the markup up to where they stand. The first one is the body,
// which has no tags here and never closes.
class Nesting {
 public:
  Nesting() { open_.push_back({&element("div"), ""}); }

  Frame& top() { return open_.back(); }
  Content content() const { return open_.back().element->content; }
  bool isDeep() const { return open_.size() > kDeepest; }
  std::string& markup() { return markup_; }

  void open(const Element& element, std::string_view attributes, std::string_view written = {}) {
    if (written.empty()) written = element.written;
    markup_.append("<").append(written).append(attributes).append(">");
    open_.push_back({&element, written});
  }

  void close() {
    const Frame& frame = open_.back();
    const Content content = frame.element->content;
    if (content == Content::terms && frame.endsInTerm) markup_.append("<dd></dd>");
    if (content == Content::ruby && !frame.endsInReading) markup_.append("<rt></rt>");
    markup_.append("</").append(frame.written).append(">");
    open_.pop_back();
  }

  void closeAll() { closeTo(1); }

  void closeTo(size_t count) {
    while (open_.size() > count) close();
  }

  // For words: whatever holds none gets the elements that it lacks.
  void makeRoomForWords() {
    while (true) {
      switch (content()) {
        case Content::flow:
        case Content::phrasing:
        case Content::nothing:
          return;
        case Content::ruby:
          top().endsInReading = false;
          return;
        case Content::figure:
          if (!top().isComplete) {
            top().hasContent = true;
            return;
          }
          close();
          break;
        default:
          openMissing();
      }
    }
  }

  void makeRoomForBlock() {
    while (isWordsOnly(content())) close();
    makeRoomForWords();
  }

  void openDefinition(std::string_view attributes) {
    if (!top().endsInTerm && !top().hasContent) markup_.append("<dt></dt>");
    top().endsInTerm = false;
    top().hasContent = true;
    open(element("dd"), attributes);
  }

  void openRowGroup(const Element& group, std::string_view attributes) {
    const bool isHead = group.name == "thead" && !top().hasHead && !top().hasContent;
    (isHead ? top().hasHead : top().hasContent) = true;
    open(group, attributes, isHead ? "thead" : "tbody");
  }

  // What the top needs between itself and words.
  void openMissing() {
    switch (content()) {
      case Content::items:
        return open(element("li"), "");
      case Content::terms:
        return openDefinition("");
      case Content::table:
        return openRowGroup(element("tbody"), "");
      case Content::rows:
        return open(element("tr"), "");
      default:
        return open(element("td"), "");
    }
  }

  // The count of frames up to the innermost that `accepts`, 0 for none or behind one that `stops`.
  template <typename Accepts, typename Stops>
  size_t find(const Accepts& accepts, const Stops& stops) const {
    for (size_t count = open_.size(); count > 1; --count) {
      const Frame& frame = open_[count - 1];
      if (accepts(frame)) return count;
      if (stops(frame)) return 0;
    }
    return 0;
  }

 private:
  std::vector<Frame> open_;
  std::string markup_;
};

bool isCell(const Frame& frame) {
  return frame.element->place == Place::cell || frame.element->place == Place::caption;
}

bool isBlock(const Frame& frame) {
  const Place place = frame.element->place;
  return place != Place::inline_ && place != Place::reading;
}

class Converter {
 public:
  // Without `known` every link to an element stays a link.
  Converter(std::string_view html, const std::set<std::string, std::less<>>& pictures,
            const TagEnds& ends, const Identifiers* known)
      : html_(html),
        pictures_(pictures),
        ends_(ends),
        known_(known),
        commentEnds_(html, "-->"),
        dataEnds_(html, "]]>"),
        brackets_(html, ">"),
        formulaEnds_(html, "</math"),
        drawingEnds_(html, "</svg"),
        scriptEnds_(html, "</script"),
        styleEnds_(html, "</style") {}

  Body convert() {
    while (place_ < html_.size()) {
      const size_t start = std::min(html_.find('<', place_), html_.size());
      takeText(html_.substr(place_, start - place_));
      place_ = start;
      if (place_ < html_.size()) takeMarkup();
    }
    nesting_.closeAll();
    return {std::move(nesting_.markup()), std::move(claimed_), hasDrawings_};
  }

 private:
  void takeText(std::string_view text) {
    if (text.empty() || isMuted_) return;
    const std::string markup = escaped(withoutReferences(text));
    if (!html::trimmed(markup).empty()) nesting_.makeRoomForWords();
    nesting_.markup().append(markup);
  }

  void takeMarkup() {
    const std::string_view rest = html_.substr(place_);
    if (rest.starts_with("<!--") || rest.starts_with("<![CDATA[") || rest.starts_with("<!") ||
        rest.starts_with("<?")) {
      return takeDeclaration(rest);
    }
    const auto tag = tagAt(html_, place_, ends_);
    if (!tag) return takeOneBracket();
    const Element* const element = elementNamed(tag->name);
    const bool isInForeign = place_ < foreignEnd_;
    if (element == nullptr && !isInForeign) return takeAsText(tag->range);
    isMuted_ = false;
    place_ = tag->range.end;
    if (element == nullptr) return;
    if (tag->isEnd) {
      takeEnd(*element);
    } else {
      takeStart(*element, *tag);
    }
  }

  void takeOneBracket() {
    takeText("<");
    ++place_;
  }

  void takeAsText(TextRange range) {
    takeText(range.of(html_));
    place_ = range.end;
  }

  // Comments, processing instructions and the like go; words in a data section stay.
  void takeDeclaration(std::string_view rest) {
    static constexpr std::string_view kData = "<![CDATA[";
    if (rest.starts_with("<!--")) {
      const size_t end = commentEnds_.from(place_ + 4);
      if (end == std::string_view::npos) return takeOneBracket();
      place_ = end + 3;
    } else if (rest.starts_with(kData)) {
      const size_t end = dataEnds_.from(place_ + kData.size());
      if (end == std::string_view::npos) return takeOneBracket();
      takeData(html_.substr(place_ + kData.size(), end - place_ - kData.size()));
      place_ = end + 3;
    } else {
      const size_t end = brackets_.from(place_);
      if (end == std::string_view::npos) return takeOneBracket();
      place_ = end + 1;
    }
  }

  void takeData(std::string_view text) {
    const std::string markup = escaped(text);
    if (!html::trimmed(markup).empty()) nesting_.makeRoomForWords();
    nesting_.markup().append(markup);
  }

  void takeEnd(const Element& element) {
    const bool isWord = element.place == Place::inline_ || element.place == Place::reading;
    const size_t count = nesting_.find(
        [&](const Frame& frame) { return frame.element == &element; },
        [&](const Frame& frame) {
          if (isWord) return isBlock(frame);
          if (element.content == Content::table) return false;
          if (isOfTable(element.place)) return frame.element->content == Content::table;
          if (element.place == Place::item && frame.element->content == Content::items) return true;
          return isCell(frame);
        });
    if (count > 0) nesting_.closeTo(count - 1);
  }

  void takeStart(const Element& element, const Tag& tag) {
    switch (element.place) {
      case Place::unwrapped:
        return;
      case Place::removed:
        return skipRemoved(tag);
      case Place::formula:
        return beginForeign(formulaEnds_);
      case Place::readingMark:
        isMuted_ = rubyAround() > 0;
        return;
      case Place::drawing:
        return takeDrawing(tag);
      case Place::picture:
        return takePicture(element, tag);
      case Place::field:
        return takeField(tag);
      default:
        return takeElement(element, tag);
    }
  }

  void takeElement(const Element& element, const Tag& tag) {
    if (nesting_.isDeep() || !makeRoomFor(element)) return;
    std::string_view written = element.written;
    const std::string attributes = attributesFor(element, tag, written);
    if (element.content == Content::nothing) {
      nesting_.markup().append("<").append(written).append(attributes).append("/>");
      return;
    }
    if (element.place == Place::definition) {
      nesting_.openDefinition(attributes);
    } else if (element.place == Place::rowGroup) {
      nesting_.openRowGroup(element, attributes);
    } else {
      nesting_.open(element, attributes, written);
    }
    if (tag.closesItself) nesting_.close();
  }

  // The attributes; `written` becomes the name that the element has in the book.
  std::string attributesFor(const Element& element, const Tag& tag, std::string_view& written) {
    const std::vector<Attribute> attributes = attributesOf(tag);
    AttributeContext context{claimed_};
    context.isInOrderedList = nesting_.top().written == "ol";
    if (const std::string* const href = valueOf(attributes, "href"); href && element.name == "a") {
      context.href = addressOf(*href);
      if (!context.href) written = "span";
    }
    const bool isStrayCaption =
        element.place == Place::figureCaption && nesting_.content() != Content::figure;
    const bool isStrayReading =
        element.place == Place::reading && nesting_.content() != Content::ruby;
    if (isStrayCaption) written = "div";
    if (isStrayReading) written = "span";
    if (element.place == Place::figureCaption && !isStrayCaption) {
      nesting_.top().hasCaption = true;
      nesting_.top().isComplete = nesting_.top().hasContent;
    }
    if (element.place == Place::reading && !isStrayReading) nesting_.top().endsInReading = true;
    return writtenAttributes(element, attributes, std::move(context));
  }

  std::optional<std::string> addressOf(const std::string& href) const {
    if (known_ != nullptr) return linkAddress(href, *known_);
    return "#";  // whether it stays is known only when all has been read
  }

  // Whether the element can stand here once what has to be closed before it is, and what it lacks
  // around it is open.
  bool makeRoomFor(const Element& element) {
    switch (element.place) {
      case Place::item:
        return makeRoomInList(Content::items, "ul");
      case Place::term:
        if (!makeRoomInList(Content::terms, "dl")) return false;
        nesting_.top().endsInTerm = true;
        return true;
      case Place::definition:
        return makeRoomInList(Content::terms, "dl");
      case Place::caption:
        return makeRoomForTableCaption();
      case Place::rowGroup:
        return makeRoomInTable(Content::table);
      case Place::row:
        return makeRoomInTable(Content::rows);
      case Place::cell:
        return makeRoomInTable(Content::cells);
      case Place::figureCaption:
        return makeRoomForFigureCaption();
      case Place::reading:
        return makeRoomForReading();
      case Place::inline_:
        if (element.name == "a") closeLink();
        nesting_.makeRoomForWords();
        return true;
      case Place::lineBreak:
        nesting_.makeRoomForWords();
        return true;
      default:
        nesting_.makeRoomForBlock();
        return true;
    }
  }

  bool makeRoomInList(Content content, std::string_view missing) {
    const size_t list = nesting_.find(
        [&](const Frame& frame) { return frame.element->content == content; }, isCell);
    if (list > 0) {
      nesting_.closeTo(list);
    } else {
      nesting_.makeRoomForBlock();
      nesting_.open(element(missing), "");
    }
    return true;
  }

  // Closes up to the innermost element of a table that can hold `content`'s children, and opens
  // what lies between. Outside of tables there is no such element.
  bool makeRoomInTable(Content content) {
    const size_t count = nesting_.find(
        [&](const Frame& frame) {
          const Content own = frame.element->content;
          return own == content || own == Content::table ||
                 (content == Content::cells && own == Content::rows);
        },
        [](const Frame&) { return false; });
    if (count == 0) return false;
    nesting_.closeTo(count);
    while (nesting_.content() != content) nesting_.openMissing();
    return true;
  }

  bool makeRoomForTableCaption() {
    if (nesting_.content() != Content::table) return false;
    Frame& table = nesting_.top();
    if (table.hasCaption || table.hasHead || table.hasContent) return false;
    table.hasCaption = true;
    return true;
  }

  bool makeRoomForFigureCaption() {
    while (isWordsOnly(nesting_.content())) nesting_.close();
    if (nesting_.content() == Content::figure && !nesting_.top().hasCaption) return true;
    nesting_.makeRoomForBlock();
    return nesting_.content() != Content::figure;  // the words of a second caption are content
  }

  size_t rubyAround() const {
    return nesting_.find([](const Frame& frame) { return frame.element->content == Content::ruby; },
                         isBlock);
  }

  bool makeRoomForReading() {
    if (const size_t ruby = rubyAround(); ruby > 0) {
      nesting_.closeTo(ruby);
    } else {
      nesting_.makeRoomForWords();
    }
    return true;
  }

  static bool isLink(const Frame& frame) { return frame.element->name == "a"; }

  void closeLink() {
    const size_t link = nesting_.find(isLink, isBlock);
    if (link > 0) nesting_.closeTo(link - 1);
  }

  // A script or a style sheet up to its end tag; without one only the tag.
  void skipRemoved(const Tag& tag) {
    LaterPlace& ends = tag.name == "script" ? scriptEnds_ : styleEnds_;
    const size_t start = ends.from(place_);
    const auto end = start < html_.size() ? tagAt(html_, start, ends_) : std::nullopt;
    if (end) place_ = end->range.end;
  }

  // Up to the end tag names that HTML has not are no text, but tags of another language.
  void beginForeign(LaterPlace& ends) {
    const size_t end = ends.from(place_);
    if (end < html_.size()) foreignEnd_ = std::max(foreignEnd_, end);
  }

  void takeDrawing(const Tag& tag) {
    size_t reached = tag.range.start;
    if (reached < noDrawingBefore_) return beginForeign(drawingEnds_);
    const auto drawing = plainDrawing(html_, reached);
    if (!drawing) {
      noDrawingBefore_ = reached;
      return beginForeign(drawingEnds_);
    }
    nesting_.makeRoomForWords();
    nesting_.markup().append(drawing->markup);
    place_ = drawing->end;
    hasDrawings_ = true;
  }

  void takePicture(const Element& element, const Tag& tag) {
    const std::vector<Attribute> attributes = attributesOf(tag);
    const std::string* const source = valueOf(attributes, "src");
    const std::string* const alt = valueOf(attributes, "alt");
    if (source != nullptr && pictures_.contains(*source)) {
      nesting_.makeRoomForWords();
      nesting_.markup().append("<img src=\"").append(escaped(*source)).append("\" alt=\"");
      nesting_.markup().append(escaped(alt != nullptr ? *alt : "")).append("\"");
      nesting_.markup().append(writtenAttributes(element, attributes, {claimed_})).append("/>");
      return;
    }
    // A caption that follows says the description already.
    const bool isSaid = html_.substr(place_).starts_with("<figcaption");
    const std::string label = alt != nullptr && !isSaid ? escaped(*alt) : std::string();
    const auto address = source != nullptr ? webAddress(*source) : std::nullopt;
    const bool isNamed = !html::trimmed(label).empty();
    if (address) {
      takeMissingPicture(*address, isNamed ? label : escaped(*address));
    } else if (isNamed) {
      takeMissingPicture("", label);
    }
  }

  // A picture that a book cannot hold, as its description; with an address as a link, unless it
  // stands in one.
  void takeMissingPicture(const std::string& address, const std::string& label) {
    nesting_.makeRoomForWords();
    const bool links = !address.empty() && nesting_.find(isLink, isBlock) == 0;
    std::string& markup = nesting_.markup();
    markup.append(links ? "<a href=\"" + escaped(address) + "\"" : "<span");
    markup.append(" class=\"missing-picture\">").append(label).append(links ? "</a>" : "</span>");
  }

  void takeField(const Tag& tag) {
    const std::vector<Attribute> attributes = attributesOf(tag);
    const std::string* const type = valueOf(attributes, "type");
    if (type == nullptr || text::lowercased(*type) != "checkbox") return;
    const std::string* const name = valueOf(attributes, "class");
    const bool isCancelled = name != nullptr && *name == "lk-cancelled";
    const bool isInProgress = name != nullptr && *name == "lk-inprogress";
    const bool isChecked = valueOf(attributes, "checked") != nullptr;
    nesting_.makeRoomForWords();
    nesting_.markup().append(isCancelled    ? "\u2612"
                             : isInProgress ? "\u25EA"
                             : isChecked    ? "\u2611"
                                            : "\u2610");
  }

  std::string_view html_;
  const std::set<std::string, std::less<>>& pictures_;
  const TagEnds& ends_;
  const Identifiers* known_;
  Nesting nesting_;
  Identifiers claimed_;
  LaterPlace commentEnds_;
  LaterPlace dataEnds_;
  LaterPlace brackets_;
  LaterPlace formulaEnds_;
  LaterPlace drawingEnds_;
  LaterPlace scriptEnds_;
  LaterPlace styleEnds_;
  size_t place_ = 0;
  size_t foreignEnd_ = 0;       // of the formula or drawing of which only the text stays
  size_t noDrawingBefore_ = 0;  // a drawing that begins before fails there
  bool isMuted_ = false;
  bool hasDrawings_ = false;
};

}  // namespace

Body xhtmlBody(std::string_view html, const std::set<std::string, std::less<>>& pictures) {
  const TagEnds ends(html);
  const Identifiers known = Converter(html, pictures, ends, nullptr).convert().identifiers;
  return Converter(html, pictures, ends, &known).convert();
}

}  // namespace lk::xhtml
