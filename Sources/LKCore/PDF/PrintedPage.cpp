#include "LKCore/PDF/PrintedPage.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::PrintedPage {

namespace {

using LKBindPDFOutline::Heading;
using LKBindPDFOutline::HeadingTag;

constexpr std::string_view kBlanks = " \t\n\r\f/";

bool isTagLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string withAssetSources(std::string_view html) {
  static const Pattern kSource(R"re(src="(?!https?://|larkspire-asset://|data:)([^"]+)")re");
  return kSource.replacingAllByTemplate(html, R"(src="larkspire-asset:///$1")");
}

// --- Attributes ----------------------------------------------------------------------------------

struct Attribute {
  std::string name;  // lower-cased
  std::string_view value;
  size_t start = 0;  // in the HTML, from the blank before it
  size_t end = 0;
};

struct Tag {
  std::string name;  // lower-cased, empty for a closing tag
  std::vector<Attribute> attributes;
  size_t end = 0;  // behind the bracket
};

size_t placeOf(std::string_view html, std::string_view characters, size_t from) {
  return std::min(html.find_first_of(characters, from), html.size());
}

// The tag at a "<" and a letter, read as browsers do; nothing when it never ends, and then no other
// behind it does.
std::optional<Tag> tagAt(std::string_view html, size_t start) {
  Tag tag;
  size_t at = placeOf(html, " \t\n\r\f/>", start + 1);
  tag.name = text::lowercased(html.substr(start + 1, at - start - 1));
  while (true) {
    const size_t before = at;
    at = std::min(html.find_first_not_of(kBlanks, at), html.size());
    if (at == html.size()) return {};
    if (html[at] == '>') break;
    Attribute attribute;
    attribute.start = before;
    size_t end = placeOf(html, " \t\n\r\f/>=", at + 1);  // a "=" at the start is part of the name
    attribute.name = text::lowercased(html.substr(at, end - at));
    const size_t equals = std::min(html.find_first_not_of(" \t\n\r\f", end), html.size());
    if (equals < html.size() && html[equals] == '=') {
      at = std::min(html.find_first_not_of(" \t\n\r\f", equals + 1), html.size());
      if (at == html.size()) return {};
      const char quote = html[at];
      const bool isQuoted = quote == '"' || quote == '\'';
      end = isQuoted ? html.find(quote, at + 1) : placeOf(html, " \t\n\r\f>", at);
      if (end == std::string_view::npos) return {};
      const size_t first = at + (isQuoted ? 1 : 0);
      attribute.value = html.substr(first, end - first);
      if (isQuoted) ++end;
    }
    attribute.end = end;
    at = end;
    tag.attributes.push_back(std::move(attribute));
  }
  tag.end = at + 1;
  return tag;
}

bool isHarmlessLink(std::string_view value) {
  const std::string address = text::lowercased(html::trimmed(value).substr(0, 16));
  static constexpr std::array<std::string_view, 6> kHarmless = {
      "#", "http://", "https://", "mailto:", "tel:", "larkspire://"};
  return std::ranges::any_of(kHarmless,
                             [&](std::string_view start) { return address.starts_with(start); });
}

// An own style that outranks the sheet for paper could still leave the page.
bool outranksSheets(std::string_view style) {
  if (style.find('!') != std::string_view::npos) return true;
  return style.find("&#") != std::string_view::npos ||
         style.find("&excl") != std::string_view::npos;
}

bool isDropped(const Tag& tag, const Attribute& attribute) {
  const bool isLink = attribute.name == "href" || attribute.name == "xlink:href";
  const bool isAnchor = tag.name == "a" || tag.name == "area" || tag.name.ends_with(":a");
  if (isLink && isAnchor) return !isHarmlessLink(attribute.value);
  if (attribute.name == "style") return outranksSheets(attribute.value);
  return attribute.name == "ping" || attribute.name == "formaction" ||
         (attribute.name == "action" && tag.name == "form");
}

std::string withoutDangers(std::string_view html) {
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  for (size_t at = html.find('<'); at != std::string_view::npos; at = html.find('<', at)) {
    if (at + 1 >= html.size() || !isTagLetter(html[at + 1])) {
      ++at;
      continue;
    }
    const std::optional<Tag> tag = tagAt(html, at);
    if (!tag) break;
    const bool isCharset =
        tag->name == "meta" && tag->attributes.size() == 1 && tag->attributes[0].name == "charset";
    if (tag->name == "base" || (tag->name == "meta" && !isCharset)) {
      result.append(html.substr(copied, at - copied));
      copied = tag->end;
    } else {
      for (const Attribute& attribute : tag->attributes) {
        if (!isDropped(*tag, attribute)) continue;
        result.append(html.substr(copied, attribute.start - copied));
        copied = attribute.end;
      }
    }
    at = tag->end;
  }
  return result.append(html.substr(copied));
}

// --- Places to link to ---------------------------------------------------------------------------

void insertBefore(std::string& html, size_t place, std::string_view text) {
  html.insert(std::min(place, html.size()), text);
}

std::string withLanguage(std::string html, std::string_view language) {
  static constexpr std::string_view kOpening = "<html>";
  const size_t start = html.find(kOpening);
  if (start == std::string::npos) return html;
  const std::string opening = "<html lang=\"" + html::escaped(language) + "\">";
  return html.replace(start, kOpening.size(), opening);
}

// A name that the book has nowhere: what begins with it is ours.
std::string freshMark(std::string_view html) {
  for (int number = 0;; ++number) {
    std::string mark = "lk-place-" + std::to_string(number) + "-";
    if (html.find(mark) == std::string_view::npos) return mark;
  }
}

bool isPlainName(std::string_view identifier) {
  return !identifier.empty() && std::ranges::all_of(identifier, [](char c) {
    return isTagLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
}

// The document with identifiers in all headings, a different one in each.
std::string withIdentifiers(std::string_view html, const std::string& mark,
                            std::vector<Heading>& headings) {
  const std::vector<HeadingTag> tags = LKBindPDFOutline::headingTags(html);
  std::string result;
  result.reserve(html.size() + 32 * tags.size());
  size_t copied = 0;
  std::set<std::string> taken;
  for (size_t i = 0; i < tags.size(); ++i) {
    const std::string& own = headings[i].identifier;
    if (isPlainName(own) && taken.insert(own).second) continue;
    headings[i].identifier = mark + std::to_string(i + 1);
    result.append(html.substr(copied, tags[i].attributes - copied));
    // In front of any other: the first one counts.
    result.append(" id=\"").append(headings[i].identifier).append("\"");
    copied = tags[i].attributes;
  }
  return result.append(html.substr(copied));
}

// The identifier goes to the page number in the contents' last line.
bool markContentsEnd(std::string& html, const std::string& identifier) {
  const size_t start = html.find("<nav class=\"bind-toc\"");
  if (start == std::string::npos) return false;
  static constexpr std::string_view kNumber = "<span class=\"toc-page\"";
  const size_t last = html.rfind(kNumber, html.find("</nav>", start));
  if (last == std::string::npos || last < start) return false;
  html.insert(last + kNumber.size(), " id=\"" + identifier + "\"");
  return true;
}

}  // namespace

Document document(std::string_view html, std::string_view language) {
  Document made;
  made.html = withoutDangers(withLanguage(withAssetSources(html), language));
  made.headings = LKBindPDFOutline::headingsFromHTML(made.html);
  const std::string mark = freshMark(made.html);
  made.html = withIdentifiers(made.html, mark, made.headings);
  std::string links = "<div hidden style=\"display: none\">";
  const auto link = [&](const std::string& identifier) {
    links.append("<a href=\"#").append(html::escaped(identifier)).append("\">.</a>");
  };
  if (markContentsEnd(made.html, mark + "0")) link(made.contentsEnd = mark + "0");
  for (const Heading& heading : made.headings) link(heading.identifier);
  insertBefore(made.html, made.html.rfind("</body>"), links + "</div>\n");
  return made;
}

std::string withSheet(std::string_view html, std::string_view sheet) {
  std::string result(html);
  const size_t head = result.find("</head>");
  insertBefore(result, head == std::string::npos ? 0 : head,
               "<style>\n" + std::string(sheet) + "</style>\n");
  return result;
}

std::string paperSheet() {
  return "html, body { overflow-x: clip !important; }\n"
         "body * { position: static !important; }\n"
         "th, td { overflow-wrap: anywhere !important; }\n"
         "iframe, frame, object, embed, video, audio { display: none !important; }\n"
         "body:has(> nav.bind-toc) > :not(h1.bind-chapter, h1.bind-part, h1.bind-chapter ~ *, "
         "h1.bind-part ~ *) { page: bind-front; }\n"
         "h1.bind-chapter ~ .bind-titlepage, h1.bind-part ~ .bind-titlepage { page: auto; }\n";
}

std::string numbersSheet(const std::vector<Heading>& headings,
                         const std::vector<std::string>& values) {
  std::string sheet;
  for (size_t i = 0; i < headings.size(); ++i) {
    if (values[i].empty() || !headings[i].identifier.starts_with("bind-toc-")) continue;
    sheet.append("nav.bind-toc .toc-page[data-target-id=")
        .append(css::quoted(headings[i].identifier));
    sheet.append("]::after { content: ").append(values[i]).append("; }\n");
  }
  return sheet;
}

std::string plainTitlePageSheet(const LKBindTitlePage& title, double textHeightIn) {
  double share = 0.33;
  if (title.verticalPosition == "top") share = 0;
  if (title.verticalPosition == "bottom") share = 0.7;
  return ".bind-titlepage { display: block; min-height: 0; }\n"
         ".bind-titlepage:first-child { padding-top: " +
         css::number(share * textHeightIn) + "in; }\n";
}

}  // namespace lk::PrintedPage
