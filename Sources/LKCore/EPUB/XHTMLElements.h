#pragma once

// The elements of HTML: which of them a book keeps, under which name, and what may stand where.

#include <string_view>

namespace lk::xhtml {

// Where an element stands, or what becomes of it.
enum class Place {
  block,
  inline_,  // among words
  heading,
  rule,  // a block without content
  lineBreak,
  picture,
  field,  // of a form: only boxes that can be ticked are kept, as characters
  item,
  term,
  definition,
  caption,
  rowGroup,
  row,
  cell,
  figureCaption,
  reading,      // the text above a ruby text
  readingMark,  // brackets for readers without ruby; left out with its text
  drawing,      // svg
  formula,      // math: the text of what is inside stays
  unwrapped,    // the tag goes, what is inside stays
  removed,      // with all that is inside
};

// What an element holds.
enum class Content {
  flow,      // blocks and words
  phrasing,  // words
  items,
  terms,
  table,
  rows,
  cells,
  figure,  // flow with a caption at one end
  ruby,
  nothing,
};

struct Element {
  std::string_view name;     // as people write it, lower-case
  std::string_view written;  // as the book has it
  Place place = Place::inline_;
  Content content = Content::phrasing;
  std::string_view style = {};  // what the written element lacks
};

// Nothing for a name that HTML has not.
const Element* elementNamed(std::string_view lowerCaseName);

// An element that a book keeps under its own name: "p", "li", "td" ...
const Element& element(std::string_view name);

// Without an end tag: "br", "img" ...
bool isVoid(std::string_view lowerCaseName);

}  // namespace lk::xhtml
