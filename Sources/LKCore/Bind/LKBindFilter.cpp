#include "LKCore/Bind/LKBindFilter.h"

#include <algorithm>
#include <optional>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"

namespace lk::LKBindFilter {

namespace {

constexpr std::string_view kDiagramCaption = "*(diagram — view on Mac)*";

bool isASCIILetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isTagCharacter(char c) {
  return isASCIILetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '/' || c == '-';
}

// Calls `line(text, kind)` for every line, without its line feed, and joins what it appends. A text
// whose last line goes keeps its final line feed.
template <typename TakeLine>
std::string eachLine(std::string_view text, const TakeLine& takeLine) {
  std::string result;
  result.reserve(text.size());
  CodeFenceWalk fences;
  while (!text.empty()) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    const bool isOutside = fences.take(line) == CodeFenceWalk::Line::outside;
    const bool stays = takeLine(line, isOutside, result);
    if (end == std::string_view::npos) break;
    if (stays) result.push_back('\n');
    text.remove_prefix(end + 1);
  }
  return result;
}

// A block of "key: value" lines between two lines of hyphens. A scene break at the start with
// prose below it is no such block, and prose must not go.
std::string_view withoutPropertyBlock(std::string_view body) {
  const std::string_view rest = LKMarkdownToHTML::stripFrontMatter(body);
  if (rest.size() == body.size()) return body;
  static const Pattern property(
      R"(^(?:[\p{L}\p{N}_][\p{L}\p{N}_ .\-]{0,80}:(?:\s|$)|\s+\S|-\s|#))");
  const std::string_view block = body.substr(0, body.size() - rest.size());
  bool isFirst = true;
  for (const std::string_view line : text::split(block, '\n')) {
    const std::string_view trimmed = text::trimmed(line);
    if (trimmed.empty() || trimmed == "---") continue;
    if (!property.matches(line) || (isFirst && line.find(':') == std::string_view::npos)) {
      return body;
    }
    isFirst = false;
  }
  return rest;
}

// Comments begin outside of fences and end wherever they end; one that never ends stays.
std::string withoutComments(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  CodeFenceWalk fences;
  bool mayEnd = true;
  while (!text.empty()) {
    const size_t lineEnd = std::min(text.find('\n'), text.size());
    const bool isOutside = fences.take(text.substr(0, lineEnd)) == CodeFenceWalk::Line::outside;
    size_t taken = 0;
    size_t end = lineEnd;  // of the line that the last comment ends in
    size_t start = isOutside ? text.substr(0, end).find("<!--") : std::string_view::npos;
    while (start != std::string_view::npos && mayEnd) {
      const size_t close = text.find("-->", start + 4);
      mayEnd = close != std::string_view::npos;
      if (!mayEnd) break;
      result.append(text.substr(taken, start - taken));
      taken = close + 3;
      end = std::min(text.find('\n', taken), text.size());
      start = text.substr(0, end).find("<!--", taken);
    }
    const size_t next = std::min(end + 1, text.size());
    result.append(text.substr(taken, next - taken));
    text.remove_prefix(next);
  }
  return result;
}

std::string withoutTaskWords(std::string_view line) {
  static const Pattern words(R"(\b(due|done|priority|id):[^\s]+)");
  const std::string stripped = words.replacingAll(line, "");
  std::string single;
  for (const char c : stripped) {
    if (c != ' ' || !single.ends_with(' ')) single.push_back(c);
  }
  return std::string(text::trimmed(single));
}

// Where the run of backticks at `start` is closed by one of its length: behind that one; else
// behind the run itself.
size_t codeSpanEnd(std::string_view line, size_t start) {
  const size_t inside = std::min(line.find_first_not_of('`', start), line.size());
  const size_t length = inside - start;
  for (size_t run = line.find('`', inside); run != std::string_view::npos;) {
    const size_t end = std::min(line.find_first_not_of('`', run), line.size());
    if (end - run == length) return end;
    run = line.find('`', end);
  }
  return inside;
}

// Where the tag of HTML at `start` ends, in which "#" begins a place or a colour; else behind "<".
size_t elementTagEnd(std::string_view line, size_t start) {
  const size_t name = start + (line.substr(start).starts_with("</") ? 2 : 1);
  const size_t end = line.find_first_of("<>", start + 1);
  const bool isTag = name < line.size() && isASCIILetter(line[name]) && end != line.npos;
  return isTag && line[end] == '>' ? end + 1 : start + 1;
}

bool beginsTag(std::string_view line, size_t sign) {
  if (sign + 1 >= line.size() || !isASCIILetter(line[sign + 1])) return false;
  if (sign == 0) return true;
  if (line[sign - 1] == '/' || line[sign - 1] == '&') return false;
  if (sign >= 2 && line.substr(sign - 2, 2) == "](") return false;
  const char32_t before = text::decodeBefore(line, sign).scalar;
  return !text::isLetter(before) && !text::isDecimalDigit(before) && before != '_';
}

void appendWithoutTags(std::string& result, std::string_view line) {
  size_t copied = 0;
  for (size_t i = line.find_first_of("#`<"); i != std::string_view::npos;
       i = line.find_first_of("#`<", i)) {
    if (line[i] == '`') {
      i = codeSpanEnd(line, i);
    } else if (line[i] == '<') {
      i = elementTagEnd(line, i);
    } else if (!beginsTag(line, i)) {
      ++i;
    } else {
      result.append(line.substr(copied, i - copied));
      ++i;
      while (i < line.size() && isTagCharacter(line[i])) ++i;
      copied = i;
    }
  }
  result.append(line.substr(copied));
}

}  // namespace

std::string apply(std::string_view body, const LKBindFilters& filters) {
  if (filters.stripFrontmatter) body = withoutPropertyBlock(body);
  std::string text(body);
  if (filters.stripComments && text.find("<!--") != std::string::npos) {
    text = withoutComments(text);
  }
  text = applyTaskFilter(text, filters.stripTasks);
  if (filters.stripTags) text = stripTags(text);
  if (!filters.renderMermaid) text = replaceMermaidBlocks(text, kDiagramCaption);
  return text;
}

std::string applyTaskFilter(std::string_view text, LKBindStripTasks mode) {
  if (mode == LKBindStripTasks::keep || text.find("- [") == std::string_view::npos) {
    return std::string(text);
  }
  const bool keepsTasks = mode == LKBindStripTasks::metadata;
  std::string result =
      eachLine(text, [&](std::string_view line, bool isOutside, std::string& lines) {
        if (!isOutside || !lineIsTask(line)) {
          lines.append(line);
          return true;
        }
        if (keepsTasks) lines.append(withoutTaskWords(line));
        return keepsTasks;
      });
  // A text that ended without a line feed, and whose last line went, ends without one again.
  if (!text.ends_with('\n') && result.ends_with('\n')) result.pop_back();
  return result;
}

std::string stripTags(std::string_view text) {
  if (text.find('#') == std::string_view::npos) return std::string(text);
  return eachLine(text, [](std::string_view line, bool isOutside, std::string& lines) {
    if (isOutside) {
      appendWithoutTags(lines, line);
    } else {
      lines.append(line);
    }
    return true;
  });
}

std::string replaceMermaidBlocks(std::string_view text, std::string_view caption) {
  if (text.find("```mermaid") == std::string_view::npos) return std::string(text);
  std::string result;
  result.reserve(text.size());
  CodeFenceWalk fences;
  std::optional<size_t> diagram;  // where the result's open diagram begins
  for (const std::string_view line : text::split(text, '\n')) {
    const CodeFenceWalk::Line kind = fences.take(line);
    const auto opening =
        kind == CodeFenceWalk::Line::opening ? parseCodeFenceStart(line) : std::nullopt;
    if (opening && opening->language == "mermaid") diagram = result.size();
    if (kind == CodeFenceWalk::Line::closing && diagram) {
      result.erase(*diagram);
      result.append(caption);
      diagram.reset();
    } else {
      result.append(line);
    }
    result.push_back('\n');
  }
  result.pop_back();  // the last line's end was not there
  return result;
}

bool lineIsTask(std::string_view line) {
  const std::string_view rest = text::trimmedSpacesTabs(line);
  return rest.starts_with("- [") && rest.size() > 4 &&
         std::string_view(" xX/-").find(rest[3]) != std::string_view::npos && rest[4] == ']';
}

}  // namespace lk::LKBindFilter
