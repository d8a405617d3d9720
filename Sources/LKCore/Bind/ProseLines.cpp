#include "LKCore/Bind/ProseLines.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk {

namespace {

bool isListDigit(char c) {
  return c >= '0' && c <= '9';
}

bool beginsListItem(std::string_view line) {
  size_t mark = 0;
  while (mark < line.size() && mark < 9 && isListDigit(line[mark])) ++mark;
  const bool isNumbered =
      mark > 0 && mark < line.size() && (line[mark] == '.' || line[mark] == ')');
  const bool isBullet =
      mark == 0 && !line.empty() && std::string_view("-*+").find(line[0]) != line.npos;
  if (!isNumbered && !isBullet) return false;
  return mark + 1 == line.size() || line[mark + 1] == ' ' || line[mark + 1] == '\t';
}

// A run of one mark with blanks between: a thematic break, the line below a heading.
bool isRuleLine(std::string_view line) {
  if (line.empty() || std::string_view("-*_=").find(line.front()) == line.npos) return false;
  const char allowed[] = {line.front(), ' ', '\t'};
  return line.find_first_not_of(std::string_view(allowed, 3)) == std::string_view::npos;
}

bool isHeadingLine(std::string_view line) {
  const size_t marks = std::min(line.find_first_not_of('#'), line.size());
  return marks >= 1 && marks <= 6 && (marks == line.size() || line[marks] == ' ');
}

bool opensHTML(std::string_view line) {
  static const Pattern block(
      R"((?i)^<(?:[!?]|/?(?:address|article|aside|base|basefont|blockquote|body|caption|center|col|)"
      R"(colgroup|dd|details|dialog|dir|div|dl|dt|fieldset|figcaption|figure|footer|form|frame|)"
      R"(frameset|h[1-6]|head|header|hr|html|iframe|legend|li|link|main|menu|menuitem|nav|noframes|)"
      R"(ol|optgroup|option|p|param|section|source|summary|table|tbody|td|tfoot|th|thead|title|tr|)"
      R"(track|ul)(?:\s|/?>|$)|/?[a-z][^<>]*>$))");
  return line.starts_with('<') && block.matches(line);
}

// Where HTML keeps its blank lines: up to the end of such an element.
bool opensVerbatim(std::string_view line) {
  static const Pattern verbatim(R"((?i)^<(?:pre|textarea)(?:\s|>|$))");
  return line.starts_with('<') && verbatim.matches(line);
}

bool closesVerbatim(std::string_view line) {
  static const Pattern verbatim(R"((?i)</(?:pre|textarea)>)");
  return line.find("</") != std::string_view::npos && verbatim.matches(line);
}

bool isDelimiterRow(std::string_view line) {
  return line.find('|') != std::string_view::npos && line.find('-') != std::string_view::npos &&
         line.find_first_not_of("|-: \t\r") == std::string_view::npos;
}

class ProseWalk {
 public:
  // Whether an empty line belongs before the line; `next` is the line below, for tables.
  bool needsGap(std::string_view line, std::string_view next) {
    const std::string_view trimmed = text::trimmed(line);
    if (block_ == Block::verbatim) {
      if (closesVerbatim(line)) block_ = Block::html;
      return false;
    }
    if (fences_.take(line) != CodeFenceWalk::Line::outside) {
      isBehindGap_ = false;
      if (block_ != Block::list) block_ = Block::other;
      return false;
    }
    if (trimmed.empty()) {
      if (block_ != Block::list) block_ = Block::none;
      isBehindGap_ = true;
      return false;
    }
    const bool wasBehindGap = std::exchange(isBehindGap_, false);
    const Block before = block_;
    block_ = blockOf(line, trimmed, next, wasBehindGap);
    return block_ == Block::prose && before != Block::none && !wasBehindGap;
  }

 private:
  enum class Block { none, prose, list, table, html, verbatim, code, other };

  Block blockOf(std::string_view line, std::string_view trimmed, std::string_view next,
                bool isBehindGap) const {
    const bool isIndented = line.starts_with("    ");
    const bool isInList = block_ == Block::list && (line.front() == ' ' || line.front() == '\t');
    if (block_ == Block::html) return Block::html;
    if (isIndented && (block_ == Block::code || (isBehindGap && !isInList))) return Block::code;
    if (opensVerbatim(trimmed)) return closesVerbatim(trimmed) ? Block::html : Block::verbatim;
    if (trimmed.starts_with("<!--") && trimmed.ends_with("-->")) return Block::other;
    if (opensHTML(trimmed)) return Block::html;
    if (beginsListItem(trimmed) && !isRuleLine(trimmed)) return Block::list;
    if (isInList) return Block::list;
    if (block_ == Block::table && trimmed.find('|') != std::string_view::npos) return block_;
    if (trimmed.starts_with('|') || isDelimiterRow(text::trimmed(next))) return Block::table;
    const bool isMarked = trimmed.starts_with('>') || isRuleLine(trimmed) ||
                          isHeadingLine(trimmed) ||
                          LKMarkdownToHTML::footnoteDefinition(line).has_value() ||
                          (block_ == Block::other && line.starts_with('\t'));
    return isMarked ? Block::other : Block::prose;
  }

  CodeFenceWalk fences_;
  Block block_ = Block::none;
  bool isBehindGap_ = true;
};

}  // namespace

std::string proseLinesAsParagraphs(std::string_view markdown) {
  std::string result;
  result.reserve(markdown.size() + markdown.size() / 16);
  ProseWalk walk;
  const std::vector<std::string_view> lines = text::split(markdown, '\n');
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string_view next = i + 1 < lines.size() ? lines[i + 1] : std::string_view();
    const bool needsGap = walk.needsGap(lines[i], next);
    if (needsGap) result.push_back('\n');
    // Indented prose behind an empty line would be code.
    result.append(needsGap ? text::trimmedLeading(lines[i]) : lines[i]);
    if (i + 1 < lines.size()) result.push_back('\n');
  }
  return result;
}

}  // namespace lk
