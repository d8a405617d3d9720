#pragma once

// HTML as people write it, turned into the body of an XHTML document that e-readers take: always
// well-formed, whatever the input, and as far as a checker of books looks, valid.
//
//     xhtmlBody("<p>a<br>b & c<ul><li>d", {}).markup
//     // <p>a<br/>b &amp; c</p><ul><li>d</li></ul>
//
// Elements of HTML alone stay; a name that HTML has not is text with its brackets. What belongs to
// scripts, forms, frames and media goes, and the text inside stays. Words are never lost: a block
// ends the paragraph that it stands in, what misses its list or table gets one. Elements nest at most
// 200 deep; tags beyond are left out, their text stays. Time is linear.
//
// Links lead to the web or to an element that is there, else they are plain text. Pictures are those
// of the book; one from the web becomes a link to it, any other its description. Drawings in SVG of
// plain shapes stay; other drawings and formulas are their text.

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "LKCore/EPUB/XHTMLAttributes.h"

namespace lk::xhtml {

struct Body {
  std::string markup;       // in the XHTML namespace, with the prefix "epub"
  Identifiers identifiers;  // of the elements in it
  bool hasDrawings = false;
};

// `pictures` are the addresses of the book's own pictures. The text is below 4 GiB.
Body xhtmlBody(std::string_view html, const std::set<std::string, std::less<>>& pictures);

}  // namespace lk::xhtml
