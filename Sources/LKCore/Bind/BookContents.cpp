#include <algorithm>
#include <array>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/BookPasses.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindEngine {

namespace {

struct Level {
  TOCEntry::Kind kind;
  std::string_view opening;
  std::string_view className;
  std::string_view identifier;
};

constexpr std::array<Level, 2> kLevels = {{
    {TOCEntry::Kind::part, "<h1 class=\"bind-part\">", "bind-part", "bind-toc-part-"},
    {TOCEntry::Kind::chapter, "<h1 class=\"bind-chapter\">", "bind-chapter", "bind-toc-chapter-"},
}};

struct Heading {
  const Level* level = nullptr;
  size_t line = 0;
  size_t place = 0;  // of the opening tag in its line
  std::string title;
  std::string identifier;
};

std::string titleBehind(std::string_view line, size_t place) {
  const size_t start = line.find('>', place) + 1;
  std::string title(line.substr(start, line.find("</h1>", start) - start));
  for (const std::string_view lineBreak : {"<br>", "<br/>", "<br />"}) {
    title = text::replacingAll(title, lineBreak, " ");
  }
  return html::decoded(title);
}

std::vector<Heading> headingsOf(const std::vector<std::string_view>& lines) {
  std::vector<Heading> headings;
  std::array<size_t, kLevels.size()> counts{};
  CodeFenceWalk fences;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (fences.take(lines[i]) != CodeFenceWalk::Line::outside) continue;
    for (size_t level = 0; level < kLevels.size(); ++level) {
      const size_t place = lines[i].find(kLevels[level].opening);
      if (place == std::string_view::npos) continue;
      headings.push_back(
          {&kLevels[level], i, place, titleBehind(lines[i], place),
           std::string(kLevels[level].identifier) + std::to_string(++counts[level])});
      break;
    }
  }
  return headings;
}

// Parts are the first level of a book that has any, chapters the level below.
bool isListed(const Heading& heading, const LKBindSpec& spec, bool hasParts) {
  const bool isPart = heading.level->kind == TOCEntry::Kind::part;
  const int64_t depth = isPart || !hasParts ? 1 : 2;
  const LKBindHeading& style = isPart ? spec.headings.part : spec.headings.h1;
  return style.includeInToc && depth <= spec.frontMatter.tableOfContents.maxDepth;
}

std::string withIdentifier(std::string_view line, const Heading& heading) {
  std::string result(line.substr(0, heading.place));
  result.append("<h1 class=\"").append(heading.level->className);
  result.append("\" id=\"").append(heading.identifier).append("\">");
  return result.append(line.substr(heading.place + heading.level->opening.size()));
}

}  // namespace

std::string buildTOCHTML(const std::vector<TOCEntry>& entries, std::string_view title) {
  std::string html =
      "<nav class=\"bind-toc\" aria-label=\"Contents\">\n<h1 class=\"bind-toc-title\">";
  html.append(LKBindAssembler::headingHTML(title)).append("</h1>\n<ol class=\"bind-toc-list\">\n");
  for (const TOCEntry& entry : entries) {
    html.append("<li class=\"bind-toc-entry bind-toc-entry-");
    html.append(entry.kind == TOCEntry::Kind::part ? "part" : "chapter").append("\"><a href=\"#");
    html.append(entry.identifier).append("\">");
    html.append(LKBindAssembler::headingHTML(entry.title)).append("</a>");
    html.append("<span class=\"toc-page\" data-target-id=\"").append(entry.identifier);
    html.append("\"></span></li>\n");
  }
  return html.append("</ol>\n</nav>\n\n");
}

std::string injectTOC(std::string_view manuscript, const LKBindSpec& spec) {
  if (!spec.frontMatter.tableOfContents.include) return std::string(manuscript);
  const std::vector<std::string_view> lines = text::split(manuscript, '\n');
  const std::vector<Heading> headings = headingsOf(lines);
  const bool hasParts = std::ranges::any_of(
      headings, [](const Heading& heading) { return heading.level->kind == TOCEntry::Kind::part; });
  std::vector<TOCEntry> entries;
  for (const Heading& heading : headings) {
    if (!isListed(heading, spec, hasParts)) continue;
    entries.push_back({heading.level->kind, heading.title, heading.identifier});
  }
  if (entries.empty()) return std::string(manuscript);

  std::string result;
  result.reserve(manuscript.size() + 160 * entries.size());
  auto heading = headings.begin();
  for (size_t i = 0; i < lines.size(); ++i) {
    const bool isHeading = heading != headings.end() && heading->line == i;
    if (isHeading && heading == headings.begin()) {
      result.append(buildTOCHTML(entries, spec.frontMatter.tableOfContents.title));
    }
    const bool links = isHeading && isListed(*heading, spec, hasParts);
    result.append(links ? withIdentifier(lines[i], *heading) : std::string(lines[i]));
    if (isHeading) ++heading;
    if (i + 1 < lines.size()) result.push_back('\n');
  }
  return result;
}

}  // namespace lk::LKBindEngine
