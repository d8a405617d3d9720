#include "LKCore/EPUB/XHTMLElements.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace lk::xhtml {

namespace {

// In the order of the names. What an e-reader cannot do or a book has no use for is written as the
// nearest plain element, so that no word is lost: a text that folds away is there, a field is text.
constexpr std::array<Element, 141> kElements = {{
    {"a", "a", Place::inline_, Content::phrasing},
    {"abbr", "abbr", Place::inline_, Content::phrasing},
    {"acronym", "abbr", Place::inline_, Content::phrasing},
    {"address", "div", Place::block, Content::flow},
    {"applet", "applet", Place::unwrapped, Content::nothing},
    {"area", "area", Place::unwrapped, Content::nothing},
    {"article", "article", Place::block, Content::flow},
    {"aside", "aside", Place::block, Content::flow},
    {"audio", "audio", Place::unwrapped, Content::nothing},
    {"b", "b", Place::inline_, Content::phrasing},
    {"base", "base", Place::unwrapped, Content::nothing},
    {"basefont", "basefont", Place::unwrapped, Content::nothing},
    {"bdi", "span", Place::inline_, Content::phrasing},
    {"bdo", "span", Place::inline_, Content::phrasing},
    {"bgsound", "bgsound", Place::unwrapped, Content::nothing},
    {"big", "span", Place::inline_, Content::phrasing, "font-size: larger"},
    {"blink", "span", Place::inline_, Content::phrasing},
    {"blockquote", "blockquote", Place::block, Content::flow},
    {"body", "body", Place::unwrapped, Content::nothing},
    {"br", "br", Place::lineBreak, Content::nothing},
    {"button", "span", Place::inline_, Content::phrasing},
    {"canvas", "canvas", Place::unwrapped, Content::nothing},
    {"caption", "caption", Place::caption, Content::phrasing},
    {"center", "div", Place::block, Content::flow, "text-align: center"},
    {"cite", "cite", Place::inline_, Content::phrasing},
    {"code", "code", Place::inline_, Content::phrasing},
    {"col", "col", Place::unwrapped, Content::nothing},
    {"colgroup", "colgroup", Place::unwrapped, Content::nothing},
    {"data", "span", Place::inline_, Content::phrasing},
    {"datalist", "datalist", Place::unwrapped, Content::nothing},
    {"dd", "dd", Place::definition, Content::flow},
    {"del", "del", Place::inline_, Content::phrasing},
    {"details", "div", Place::block, Content::flow},
    {"dfn", "i", Place::inline_, Content::phrasing},
    {"dialog", "div", Place::block, Content::flow},
    {"dir", "ul", Place::block, Content::items},
    {"div", "div", Place::block, Content::flow},
    {"dl", "dl", Place::block, Content::terms},
    {"dt", "dt", Place::term, Content::phrasing},
    {"em", "em", Place::inline_, Content::phrasing},
    {"embed", "embed", Place::unwrapped, Content::nothing},
    {"fieldset", "div", Place::block, Content::flow},
    {"figcaption", "figcaption", Place::figureCaption, Content::flow},
    {"figure", "figure", Place::block, Content::figure},
    {"font", "span", Place::inline_, Content::phrasing},
    {"footer", "div", Place::block, Content::flow},
    {"form", "div", Place::block, Content::flow},
    {"frame", "frame", Place::unwrapped, Content::nothing},
    {"frameset", "frameset", Place::unwrapped, Content::nothing},
    {"h1", "h1", Place::heading, Content::phrasing},
    {"h2", "h2", Place::heading, Content::phrasing},
    {"h3", "h3", Place::heading, Content::phrasing},
    {"h4", "h4", Place::heading, Content::phrasing},
    {"h5", "h5", Place::heading, Content::phrasing},
    {"h6", "h6", Place::heading, Content::phrasing},
    {"head", "head", Place::unwrapped, Content::nothing},
    {"header", "div", Place::block, Content::flow},
    {"hgroup", "div", Place::block, Content::flow},
    {"hr", "hr", Place::rule, Content::nothing},
    {"html", "html", Place::unwrapped, Content::nothing},
    {"i", "i", Place::inline_, Content::phrasing},
    {"iframe", "iframe", Place::unwrapped, Content::nothing},
    {"image", "image", Place::unwrapped, Content::nothing},
    {"img", "img", Place::picture, Content::nothing},
    {"input", "input", Place::field, Content::nothing},
    {"ins", "ins", Place::inline_, Content::phrasing},
    {"isindex", "isindex", Place::unwrapped, Content::nothing},
    {"kbd", "kbd", Place::inline_, Content::phrasing},
    {"keygen", "keygen", Place::unwrapped, Content::nothing},
    {"label", "span", Place::inline_, Content::phrasing},
    {"legend", "div", Place::block, Content::flow},
    {"li", "li", Place::item, Content::flow},
    {"link", "link", Place::unwrapped, Content::nothing},
    {"listing", "pre", Place::block, Content::phrasing},
    {"main", "div", Place::block, Content::flow},
    {"map", "map", Place::unwrapped, Content::nothing},
    {"mark", "mark", Place::inline_, Content::phrasing},
    {"marquee", "span", Place::inline_, Content::phrasing},
    {"math", "math", Place::formula, Content::nothing},
    {"menu", "ul", Place::block, Content::items},
    {"meta", "meta", Place::unwrapped, Content::nothing},
    {"meter", "span", Place::inline_, Content::phrasing},
    {"nav", "nav", Place::block, Content::flow},
    {"nobr", "span", Place::inline_, Content::phrasing},
    {"noembed", "noembed", Place::unwrapped, Content::nothing},
    {"noframes", "noframes", Place::unwrapped, Content::nothing},
    {"noscript", "noscript", Place::unwrapped, Content::nothing},
    {"object", "object", Place::unwrapped, Content::nothing},
    {"ol", "ol", Place::block, Content::items},
    {"optgroup", "optgroup", Place::unwrapped, Content::nothing},
    {"option", "option", Place::unwrapped, Content::nothing},
    {"output", "span", Place::inline_, Content::phrasing},
    {"p", "p", Place::block, Content::phrasing},
    {"param", "param", Place::unwrapped, Content::nothing},
    {"picture", "picture", Place::unwrapped, Content::nothing},
    {"plaintext", "pre", Place::block, Content::phrasing},
    {"portal", "portal", Place::unwrapped, Content::nothing},
    {"pre", "pre", Place::block, Content::phrasing},
    {"progress", "span", Place::inline_, Content::phrasing},
    {"q", "q", Place::inline_, Content::phrasing},
    {"rb", "rb", Place::unwrapped, Content::nothing},
    {"rp", "rp", Place::readingMark, Content::nothing},
    {"rt", "rt", Place::reading, Content::phrasing},
    {"rtc", "rtc", Place::unwrapped, Content::nothing},
    {"ruby", "ruby", Place::inline_, Content::ruby},
    {"s", "s", Place::inline_, Content::phrasing},
    {"samp", "samp", Place::inline_, Content::phrasing},
    {"script", "script", Place::removed, Content::nothing},
    {"search", "div", Place::block, Content::flow},
    {"section", "section", Place::block, Content::flow},
    {"select", "select", Place::unwrapped, Content::nothing},
    {"slot", "slot", Place::unwrapped, Content::nothing},
    {"small", "small", Place::inline_, Content::phrasing},
    {"source", "source", Place::unwrapped, Content::nothing},
    {"span", "span", Place::inline_, Content::phrasing},
    {"strike", "s", Place::inline_, Content::phrasing},
    {"strong", "strong", Place::inline_, Content::phrasing},
    {"style", "style", Place::removed, Content::nothing},
    {"sub", "sub", Place::inline_, Content::phrasing},
    {"summary", "div", Place::block, Content::flow},
    {"sup", "sup", Place::inline_, Content::phrasing},
    {"svg", "svg", Place::drawing, Content::nothing},
    {"table", "table", Place::block, Content::table},
    {"tbody", "tbody", Place::rowGroup, Content::rows},
    {"td", "td", Place::cell, Content::flow},
    {"template", "template", Place::unwrapped, Content::nothing},
    {"textarea", "textarea", Place::unwrapped, Content::nothing},
    {"tfoot", "tbody", Place::rowGroup, Content::rows},
    {"th", "th", Place::cell, Content::flow},
    {"thead", "thead", Place::rowGroup, Content::rows},
    {"time", "span", Place::inline_, Content::phrasing},
    {"title", "title", Place::unwrapped, Content::nothing},
    {"tr", "tr", Place::row, Content::cells},
    {"track", "track", Place::unwrapped, Content::nothing},
    {"tt", "code", Place::inline_, Content::phrasing},
    {"u", "u", Place::inline_, Content::phrasing},
    {"ul", "ul", Place::block, Content::items},
    {"var", "var", Place::inline_, Content::phrasing},
    {"video", "video", Place::unwrapped, Content::nothing},
    {"wbr", "wbr", Place::lineBreak, Content::nothing},
    {"xmp", "pre", Place::block, Content::phrasing},
}};

constexpr std::array<std::string_view, 20> kVoidNames = {
    "area", "base",  "basefont", "bgsound", "br",   "col",  "embed", "frame",  "hr",    "image",
    "img",  "input", "isindex",  "keygen",  "link", "meta", "param", "source", "track", "wbr"};

}  // namespace

const Element* elementNamed(std::string_view lowerCaseName) {
  const auto* const found = std::ranges::lower_bound(kElements, lowerCaseName, {}, &Element::name);
  return found != kElements.end() && found->name == lowerCaseName ? found : nullptr;
}

const Element& element(std::string_view name) {
  const Element* const found = elementNamed(name);
  assert(found != nullptr);
  return *found;
}

bool isVoid(std::string_view lowerCaseName) {
  return std::ranges::binary_search(kVoidNames, lowerCaseName);
}

}  // namespace lk::xhtml
