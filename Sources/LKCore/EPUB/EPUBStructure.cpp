// Parts and chapters of a book, and the document that leads to them.

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/EPUB/LKBindEPUBBuilder.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindEPUBBuilder {

namespace {

constexpr std::string_view kHeadingEnd = "</h1>";
constexpr std::string_view kNavTitle = "Table of Contents";

bool isWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::string_view kindClass(StructuralH1Kind kind) {
  return kind == StructuralH1Kind::part ? "bind-part" : "bind-chapter";
}

// The kind that the last such class of an opening tag says.
std::optional<StructuralH1Kind> kindOf(std::string_view tag) {
  std::optional<StructuralH1Kind> kind;
  size_t last = 0;
  for (const StructuralH1Kind candidate : {StructuralH1Kind::chapter, StructuralH1Kind::part}) {
    const std::string attribute = "class=\"" + std::string(kindClass(candidate)) + "\"";
    const size_t place = tag.rfind(attribute);
    if (place == std::string_view::npos || isWord(tag[place - 1]) || place < last) continue;
    kind = candidate;
    last = place;
  }
  return kind;
}

std::optional<std::string> identifierOf(std::string_view tag) {
  static constexpr std::string_view kID = "id=\"";
  for (size_t place = tag.find(kID); place != std::string_view::npos;
       place = tag.find(kID, place + 1)) {
    if (!html::isSpace(tag[place - 1])) continue;
    const size_t start = place + kID.size();
    const size_t end = tag.find('"', start);
    if (end == std::string_view::npos || end == start) return std::nullopt;
    return xhtml::withoutReferences(tag.substr(start, end - start));
  }
  return std::nullopt;
}

// An identifier by position, for a heading without its own.
std::string identifierOf(const StructuralH1Opening& opening, size_t index) {
  return opening.existingID.value_or("bind-heading-" + std::to_string(index + 1));
}

// Words without tags; line breaks are blanks.
std::string plainTitle(std::string_view html) {
  std::string title;
  for (size_t place = 0; place < html.size();) {
    const size_t start = std::min(html.find('<', place), html.size());
    title.append(xhtml::withoutReferences(html.substr(place, start - place)));
    const size_t end = html.find('>', start);
    if (start == html.size() || end == std::string_view::npos) break;
    if (text::lowercased(html.substr(start, 3)) == "<br") title.push_back(' ');
    place = end + 1;
  }
  return std::string(text::trimmed(title));
}

std::string navLink(std::string_view id, std::string_view title) {
  const std::string label = xmlEscape(title);
  std::string link = "<a href=\"content.xhtml";
  if (!id.empty()) link.append("#").append(xmlEscape(id));
  link.append("\">").append(text::trimmed(label).empty() ? "Untitled" : label);
  return link.append("</a>");
}

}  // namespace

std::vector<StructuralH1Opening> findStructuralH1Openings(std::string_view body) {
  static constexpr std::string_view kOpening = "<h1";
  std::vector<StructuralH1Opening> openings;
  size_t end = 0;
  for (size_t start = body.find(kOpening); start != std::string_view::npos;
       start = body.find(kOpening, end)) {
    const size_t inside = start + kOpening.size();
    end = inside;
    if (inside == body.size() || isWord(body[inside])) continue;
    const size_t bracket = body.find('>', inside);
    if (bracket == std::string_view::npos) break;
    const TextRange range{start, bracket + 1};
    if (const auto kind = kindOf(range.of(body))) {
      openings.push_back({*kind, range, identifierOf(range.of(body))});
    }
    end = bracket;
  }
  return openings;
}

std::vector<StructuralTOCEntry> extractStructuralTOC(std::string_view body) {
  std::vector<StructuralTOCEntry> entries;
  xhtml::LaterPlace ends(body, kHeadingEnd);
  const std::vector<StructuralH1Opening> openings = findStructuralH1Openings(body);
  for (size_t i = 0; i < openings.size(); ++i) {
    const size_t start = openings[i].range.end;
    const size_t next = i + 1 < openings.size() ? openings[i + 1].range.start : body.size();
    const size_t end = std::min(ends.from(start), next);  // also where it is npos
    entries.push_back({openings[i].kind, plainTitle(body.substr(start, end - start)),
                       identifierOf(openings[i], i)});
  }
  return entries;
}

std::string addChapterAnchors(std::string_view body) {
  std::string result;
  result.reserve(body.size() + 1024);
  size_t copied = 0;
  size_t index = 0;
  for (const StructuralH1Opening& opening : findStructuralH1Openings(body)) {
    result.append(body.substr(copied, opening.range.start - copied)).append("<h1 id=\"");
    result.append(xmlEscape(identifierOf(opening, index++))).append("\" class=\"");
    result.append(kindClass(opening.kind)).append("\">");
    copied = opening.range.end;
  }
  return result.append(body.substr(copied));
}

std::string wrapStructuralSections(std::string_view body) {
  static constexpr std::string_view kFootnotes = "<section class=\"footnotes\">";
  const std::vector<StructuralH1Opening> openings = findStructuralH1Openings(body);
  if (openings.empty()) return std::string(body);
  size_t last = body.rfind(kFootnotes);
  if (last == std::string_view::npos || last < openings.back().range.end) last = body.size();
  std::string result(body.substr(0, openings.front().range.start));
  for (size_t i = 0; i < openings.size(); ++i) {
    const size_t start = openings[i].range.start;
    const size_t end = i + 1 < openings.size() ? openings[i + 1].range.start : last;
    const bool isPart = openings[i].kind == StructuralH1Kind::part;
    result.append("<section class=\"").append(kindClass(openings[i].kind));
    result.append("\" epub:type=\"").append(isPart ? "part" : "chapter").append("\">\n");
    result.append(body.substr(start, end - start)).append("</section>\n");
  }
  return result.append(body.substr(last));
}

std::string buildNestedNavList(const std::vector<StructuralTOCEntry>& structure) {
  std::string list = "<ol>\n";
  bool isInPart = false;
  for (size_t i = 0; i < structure.size(); ++i) {
    const bool isPart = structure[i].kind == StructuralH1Kind::part;
    const bool isLast = i + 1 == structure.size();
    const bool isNextPart = !isLast && structure[i + 1].kind == StructuralH1Kind::part;
    list.append("<li>").append(navLink(structure[i].id, structure[i].title));
    if (isPart && !isLast && !isNextPart) {
      list.append("\n<ol>\n");
      isInPart = true;
      continue;
    }
    list.append("</li>\n");
    if (isInPart && (isLast || isNextPart)) list.append("</ol>\n</li>\n");
    if (isLast || isNextPart) isInPart = false;
  }
  return list.append("</ol>\n");
}

std::string makeNavXHTML(std::string_view bookTitle,
                         const std::vector<StructuralTOCEntry>& structure, bool tocVisible,
                         std::string_view language) {
  const std::string tag = xmlEscape(language);
  std::string nav = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE html>\n";
  nav.append("<html xmlns=\"http://www.w3.org/1999/xhtml\" ");
  nav.append("xmlns:epub=\"http://www.idpf.org/2007/ops\" lang=\"").append(tag);
  nav.append("\" xml:lang=\"").append(tag).append("\">\n<head>\n<meta charset=\"utf-8\"/>\n");
  nav.append("<title>").append(kNavTitle).append("</title>\n</head>\n<body>\n");
  nav.append("<nav epub:type=\"toc\"").append(tocVisible ? "" : " hidden=\"\"").append(">\n<h1>");
  nav.append(kNavTitle).append("</h1>\n");
  nav.append(structure.empty() ? "<ol>\n<li>" + navLink("", bookTitle) + "</li>\n</ol>\n"
                               : buildNestedNavList(structure));
  return nav.append("</nav>\n</body>\n</html>\n");
}

}  // namespace lk::LKBindEPUBBuilder
