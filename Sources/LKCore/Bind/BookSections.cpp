// A body taken apart at its level-1 headings, and titles as HTML.

#include <utility>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/Bind/LKBindRoleKeywords.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKBindAssembler {

namespace {

std::optional<std::string_view> firstLevelHeading(std::string_view line) {
  if (!line.starts_with("# ")) return std::nullopt;
  return text::trimmed(line.substr(2));
}

// Calls `heading(text)` and `other(line)` in the order of the lines; lines of code are others.
template <typename TakeHeading, typename TakeOther>
void eachHeading(std::string_view body, const TakeHeading& heading, const TakeOther& other) {
  CodeFenceWalk fences;
  for (const std::string_view line : text::split(body, '\n')) {
    const bool isOutside = fences.take(line) == CodeFenceWalk::Line::outside;
    const auto title = isOutside ? firstLevelHeading(line) : std::nullopt;
    if (title) {
      heading(*title);
    } else {
      other(line);
    }
  }
}

BookBodySection sectionBelow(std::string_view heading) {
  if (auto match = LKBindRoleKeywords::matchKeywordPrefix(heading)) {
    return {match->role, std::move(match->title), ""};
  }
  return {LKBindNoteRole::chapter, std::string(heading), ""};
}

// "A [[B]]" as "A B": in a heading a link's title is words like others.
std::string withoutWikiLinks(std::string_view title) {
  std::string result;
  size_t copied = 0;
  for (auto link = LKMarkdownToHTML::nextWikiLink(title, 0); link;
       link = LKMarkdownToHTML::nextWikiLink(title, copied)) {
    result.append(title.substr(copied, link->range.start - copied)).append(link->title);
    copied = link->range.end;
  }
  return result.append(title.substr(copied));
}

}  // namespace

SplitBody splitFirstH1(std::string_view body) {
  std::string_view rest = body;
  while (!rest.empty()) {
    const size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (text::trimmed(line).empty()) continue;
    const auto title = firstLevelHeading(line);
    if (!title) break;
    return {std::string(*title), std::string(rest)};
  }
  return {std::nullopt, std::string(body)};
}

BookBody parseBookBody(std::string_view body) {
  BookBody book;
  const auto target = [&]() -> std::string& {
    return book.sections.empty() ? book.preamble : book.sections.back().body;
  };
  eachHeading(
      body, [&](std::string_view heading) { book.sections.push_back(sectionBelow(heading)); },
      [&](std::string_view line) { target().append(line).append("\n"); });
  if (target().ends_with('\n')) target().pop_back();  // the last line's end was not there
  return book;
}

bool bodyContainsRolePrefixH1(std::string_view body) {
  bool contains = false;
  eachHeading(
      body,
      [&](std::string_view heading) {
        contains = contains || LKBindRoleKeywords::matchKeywordPrefix(heading).has_value();
      },
      [](std::string_view) {});
  return contains;
}

std::string headingWords(std::string_view title) {
  return withoutWikiLinks(text::trimmed(title));
}

std::string headingHTML(std::string_view title) {
  // Where a pass over the manuscript's lines would begin to read the dialect: that character is
  // written by its number.
  static const Pattern dialect(R"(\[(?=[\^\[])|=(?==)|:(?=:)|(?<![^\s>])(?:#(?=[A-Za-z])|@(?=\d))|)"
                               R"((?<=\sdue|\sdone|\spriority|\sid):)");
  const std::string html = html::escaped(headingWords(title));
  const std::string broken = text::replacingAll(html, "\n", "<br>");
  std::string result;
  size_t copied = 0;
  for (const Pattern::Match& match : dialect.findAll(broken)) {
    const size_t place = match[0]->start;
    result.append(broken, copied, place - copied);
    result.append("&#").append(std::to_string(static_cast<int>(broken[place]))).append(";");
    copied = place + 1;
  }
  return result.append(broken, copied);
}

}  // namespace lk::LKBindAssembler
