#pragma once

// The attributes that elements of a book keep, and the addresses that its links may have.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/EPUB/XHTMLElements.h"

namespace lk::xhtml {

// Identifiers as people write them and as the book has them: a name of XML in ASCII, once.
class Identifiers {
 public:
  // The name for an element; nothing for a blank one and for one that an earlier element has.
  std::optional<std::string> claim(std::string_view written);

  // The name of the element that has the identifier, if there is one.
  std::optional<std::string> find(std::string_view written) const;

 private:
  std::map<std::string, std::string, std::less<>> names_;
  std::map<std::string, size_t, std::less<>> uses_;  // of a name that several identifiers give
  std::set<std::string, std::less<>> taken_;
};

// An "http", "https" or "mailto" address, characters that have no place in one percent-encoded.
// Nothing for any other scheme, for one without a host, and for what no reader could follow.
std::optional<std::string> webAddress(std::string_view written);

// The address of a link: a web address or "#ID" of an element in `known`.
std::optional<std::string> linkAddress(std::string_view written, const Identifiers& known);

struct AttributeContext {
  Identifiers& claimed;
  std::optional<std::string> href = {};  // of a link, already checked
  bool isInOrderedList = false;
};

// ` id="a" style="..."`: what an element keeps, with a blank before each. Sizes, colours and
// alignment of old become style.
std::string writtenAttributes(const Element& element, const std::vector<Attribute>& attributes,
                              AttributeContext context);

// The value of an attribute; nothing when there is none.
const std::string* valueOf(const std::vector<Attribute>& attributes, std::string_view name);

// "en", "de-CH", "zh-Hant-TW".
bool isLanguageTag(std::string_view text);

}  // namespace lk::xhtml
