#pragma once

// The tags of HTML as people write it, one at a time.
//
//     const TagEnds ends(html);
//     const auto tag = tagAt(html, html.find('<'), ends);    // name, attributes, where it ends

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"

namespace lk::xhtml {

// Where tags end: at the first ">" outside of quotes. Made once for a text below 4 GiB, so that tags
// that never end cost no search each.
class TagEnds {
 public:
  explicit TagEnds(std::string_view html);

  // The ">" that ends a tag whose inside goes on at `place`; npos for none.
  size_t from(size_t place) const;

 private:
  std::vector<uint32_t> ends_;  // by place
};

struct Tag {
  std::string name;             // lower-case
  bool isEnd = false;           // "</p>"
  bool closesItself = false;    // "<br/>"
  std::string_view attributes;  // what stands behind the name
  TextRange range;              // with both brackets
};

// The tag that the "<" at `place` begins; nothing when it begins none.
std::optional<Tag> tagAt(std::string_view html, size_t place, const TagEnds& ends);

struct Attribute {
  std::string name;   // lower-case
  std::string value;  // without its quotes, references as the characters they stand for
};

// In their order; of a name that comes again the first counts. At most 64.
std::vector<Attribute> attributesOf(const Tag& tag);

// "&eacute;", "&#233;" and the like as their characters; what is no reference stays.
std::string withoutReferences(std::string_view html);

// For text and for values in quotes of XML: & < > " ' as references, line ends as line feeds, without
// characters that XML has not and without control characters. Always valid UTF-8.
std::string escaped(std::string_view text);

// Looks for a text again and again, from ever later places: once it is not found, it never is.
class LaterPlace {
 public:
  LaterPlace(std::string_view text, std::string_view part) : text_(text), part_(part) {}

  size_t from(size_t start) {
    if (!isGone_ && (!place_ || *place_ < start)) {
      place_ = text_.find(part_, start);
      isGone_ = *place_ == std::string_view::npos;
    }
    return isGone_ ? std::string_view::npos : *place_;
  }

 private:
  std::string_view text_;
  std::string_view part_;
  std::optional<size_t> place_;
  bool isGone_ = false;
};

}  // namespace lk::xhtml
