#include "LKCore/DOCX/BodyBlocks.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKBindDOCXBuilder {

namespace {

constexpr size_t kMostColumns = 63;  // of a table in Word
constexpr size_t kDeepestLevel = 8;
constexpr size_t kLongestImageLine = 8192;  // of an image that stands alone

// Three or more of one mark with blanks between.
bool isSceneBreakLine(std::string_view trimmed) {
  if (trimmed.size() < 3 || std::string_view("-*_").find(trimmed[0]) == trimmed.npos) return false;
  const char allowed[] = {trimmed[0], ' ', '\t'};
  return trimmed.find_first_not_of(std::string_view(allowed, 3)) == trimmed.npos &&
         std::ranges::count(trimmed, trimmed[0]) >= 3;
}

struct ListMark {
  size_t level = 0;
  std::optional<int64_t> number;
  std::string_view text;
};

// Four blanks or a tab are a level.
size_t indentOf(std::string_view line) {
  size_t columns = 0;
  for (const char c : line) {
    if (c != ' ' && c != '\t') break;
    columns += c == '\t' ? 4 : 1;
  }
  return columns;
}

std::optional<ListMark> listMark(std::string_view line) {
  const std::string_view rest = text::trimmedLeading(line);
  ListMark mark;
  mark.level = std::min((indentOf(line) + 2) / 4, kDeepestLevel);
  if (rest.starts_with("- ") || rest.starts_with("* ") || rest.starts_with("+ ")) {
    mark.text = text::trimmed(rest.substr(2));
    return mark;
  }
  const size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
  if (digits == 0 || digits > 9 || digits + 1 >= rest.size()) return std::nullopt;
  if ((rest[digits] != '.' && rest[digits] != ')') || rest[digits + 1] != ' ') return std::nullopt;
  int64_t number = 0;
  if (!text::parseInteger(rest.substr(0, digits), number)) return std::nullopt;
  mark.number = number;
  mark.text = text::trimmed(rest.substr(digits + 2));
  return mark;
}

struct HeadingLine {
  int level = 1;
  std::string_view text;
};

std::optional<HeadingLine> headingLine(std::string_view trimmed) {
  const size_t marks = std::min(trimmed.find_first_not_of('#'), trimmed.size());
  if (marks < 1 || marks > 6 || marks == trimmed.size() || trimmed[marks] != ' ') {
    return std::nullopt;
  }
  std::string_view words = text::trimmed(trimmed.substr(marks));
  const size_t last = words.find_last_not_of('#');  // "## Night ##"
  if (last == words.npos) {
    words = {};
  } else if (last + 1 < words.size() && words[last] == ' ') {
    words = text::trimmed(words.substr(0, last));
  }
  return HeadingLine{static_cast<int>(marks), words};
}

bool isDelimiterLine(std::string_view trimmed) {
  return trimmed.find('|') != trimmed.npos && trimmed.find('-') != trimmed.npos &&
         trimmed.find_first_not_of("|-: \t") == trimmed.npos;
}

// At most so many cells; what is beyond stands in the last one.
std::vector<std::string> cellsOf(std::string_view row, size_t most) {
  row = text::trimmed(row);
  if (row.starts_with('|')) row.remove_prefix(1);
  if (row.ends_with('|') && !row.ends_with("\\|")) row.remove_suffix(1);
  std::vector<std::string> cells;
  std::string cell;
  for (size_t i = 0; i < row.size(); ++i) {
    if (row[i] == '\\' && i + 1 < row.size() && row[i + 1] == '|') {
      cell.push_back(row[++i]);
    } else if (row[i] == '|' && cells.size() + 1 < most) {
      cells.emplace_back(text::trimmed(cell));
      cell.clear();
    } else {
      cell.push_back(row[i]);
    }
  }
  cells.emplace_back(text::trimmed(cell));
  return cells;
}

BodyBlocks::TableAlignment alignmentOf(std::string_view cell) {
  if (!cell.ends_with(':')) return BodyBlocks::TableAlignment::left;
  return cell.starts_with(':') ? BodyBlocks::TableAlignment::center
                               : BodyBlocks::TableAlignment::right;
}

bool endsInBreak(std::string_view line) {
  return line.ends_with("  ") || line.ends_with('\\');
}

class BlockReader {
 public:
  BlockReader(std::string_view body, LKBindParagraphStyle style)
      : lines_(text::split(body, '\n')), style_(style) {}

  std::vector<BodyBlock> read() {
    while (at_ < lines_.size()) readBlock();
    return std::move(blocks_);
  }

 private:
  void readBlock() {
    const std::string_view trimmed = text::trimmed(lines_[at_]);
    const bool wasOpen = std::exchange(isProseOpen_, false);
    if (trimmed.empty()) {
      ++at_;
      return;
    }
    if (takeCode() || takeFootnote() || takeImage(trimmed)) return;
    if (isSceneBreakLine(trimmed)) {
      ++at_;
      blocks_.emplace_back(BodyBlocks::SceneBreak{});
      return;
    }
    if (const auto heading = headingLine(trimmed)) {
      ++at_;
      blocks_.emplace_back(BodyBlocks::SubHeading{heading->level, std::string(heading->text)});
      return;
    }
    if (takeTable(trimmed) || takeList() || takeQuote(trimmed)) return;
    takeProse(wasOpen);
  }

  bool takeCode() {
    CodeFenceWalk fence;
    if (fence.take(lines_[at_]) != CodeFenceWalk::Line::opening) return false;
    BodyBlocks::CodeBlock code;
    std::string_view info = text::trimmed(lines_[at_]);
    info = text::trimmed(info.substr(std::min(info.find_first_not_of("`~"), info.size())));
    if (!info.empty()) code.language = std::string(info);
    for (++at_; at_ < lines_.size(); ++at_) {
      if (fence.take(lines_[at_]) == CodeFenceWalk::Line::closing) {
        ++at_;
        break;
      }
      code.lines.emplace_back(lines_[at_]);
    }
    blocks_.emplace_back(std::move(code));
    return true;
  }

  bool takeFootnote() {
    const auto definition = LKMarkdownToHTML::footnoteDefinition(lines_[at_]);
    if (!definition) return false;
    BodyBlocks::FootnoteDefinition note{std::string(definition->label), {}};
    note.lines.emplace_back(text::trimmed(definition->content));
    for (++at_; at_ < lines_.size() && lines_[at_].starts_with('\t'); ++at_) {
      note.lines.emplace_back(text::trimmed(lines_[at_]));
    }
    blocks_.emplace_back(std::move(note));
    return true;
  }

  bool takeImage(std::string_view trimmed) {
    if (!trimmed.starts_with("![") || !trimmed.ends_with(')') ||
        (trimmed.size() > kLongestImageLine && trimmed.find("](data:") == trimmed.npos)) {
      return false;
    }
    auto image = LKInlineImageParser::parse(trimmed);
    if (!image) return false;
    ++at_;
    blocks_.emplace_back(BodyBlocks::Image{std::move(*image)});
    return true;
  }

  bool takeTable(std::string_view trimmed) {
    if (at_ + 1 >= lines_.size() || trimmed.find('|') == trimmed.npos) return false;
    const std::string_view delimiter = text::trimmed(lines_[at_ + 1]);
    if (!isDelimiterLine(delimiter)) return false;
    BodyBlocks::Table table;
    table.rows.push_back(cellsOf(trimmed, kMostColumns));
    const size_t columns = table.rows.front().size();
    for (const std::string& cell : cellsOf(delimiter, columns)) {
      table.alignments.push_back(alignmentOf(cell));
    }
    table.alignments.resize(columns, BodyBlocks::TableAlignment::left);
    const bool hasEdge = trimmed.starts_with('|');
    for (at_ += 2; at_ < lines_.size(); ++at_) {
      const std::string_view row = text::trimmed(lines_[at_]);
      if (hasEdge ? !row.starts_with('|') : row.find('|') == row.npos) break;
      table.rows.push_back(cellsOf(row, columns));
    }
    blocks_.emplace_back(std::move(table));
    return true;
  }

  bool takeList() {
    const auto first = listMark(lines_[at_]);
    if (!first) return false;
    const bool isNumbered = first->number.has_value();
    std::vector<DOCXListItem> items;
    size_t end = at_;  // behind the last line of the list
    for (size_t i = at_; i < lines_.size(); ++i) {
      const std::string_view trimmed = text::trimmed(lines_[i]);
      if (trimmed.empty()) continue;
      const auto mark = isSceneBreakLine(trimmed) ? std::nullopt : listMark(lines_[i]);
      const bool isNext = i == end;
      if (mark) {
        const size_t level = std::max(mark->level, first->level) - first->level;
        if (level == 0 && mark->number.has_value() != isNumbered) break;
        items.push_back({std::string(mark->text), level, mark->number});
      } else if (isNext && continuesItem(lines_[i], trimmed)) {
        items.back().text.append(endsInBreak(lines_[i - 1]) ? "<br>" : " ").append(trimmed);
      } else {
        break;
      }
      end = i + 1;
    }
    at_ = end;
    if (isNumbered) {
      blocks_.emplace_back(BodyBlocks::NumberedList{std::move(items)});
    } else {
      blocks_.emplace_back(BodyBlocks::BulletedList{std::move(items)});
    }
    return true;
  }

  // An indented line right below an item that begins nothing of its own.
  static bool continuesItem(std::string_view line, std::string_view trimmed) {
    const bool isIndented = line.starts_with(' ') || line.starts_with('\t');
    return isIndented && !trimmed.starts_with("```") && !trimmed.starts_with("~~~") &&
           !trimmed.starts_with('|') && !trimmed.starts_with("![");
  }

  bool takeQuote(std::string_view trimmed) {
    if (!trimmed.starts_with('>')) return false;
    BodyBlocks::BlockQuote quote;
    for (; at_ < lines_.size(); ++at_) {
      std::string_view line = text::trimmedLeading(lines_[at_]);
      if (!line.starts_with('>')) break;
      line.remove_prefix(std::min(line.find_first_not_of("> \t"), line.size()));
      quote.lines.emplace_back(line);
    }
    blocks_.emplace_back(std::move(quote));
    return true;
  }

  void takeProse(bool wasOpen) {
    const std::string_view line = lines_[at_++];
    const std::string_view trimmed = text::trimmed(line);
    auto* const open = blocks_.empty() ? nullptr : std::get_if<BodyBlocks::Prose>(&blocks_.back());
    const bool isCommonmark = style_ == LKBindParagraphStyle::commonmark;
    isProseOpen_ = true;
    if (open == nullptr) {
      blocks_.emplace_back(BodyBlocks::Prose{{std::string(trimmed)}});
    } else if (!isCommonmark || !wasOpen) {
      open->lines.emplace_back(trimmed);
    } else {
      std::string& paragraph = open->lines.back();
      const bool breaks = endsInBreak(lines_[at_ - 2]);
      if (paragraph.ends_with('\\') && breaks) paragraph.pop_back();
      paragraph.append(breaks ? "<br>" : " ").append(trimmed);
    }
  }

  std::vector<std::string_view> lines_;
  LKBindParagraphStyle style_;
  std::vector<BodyBlock> blocks_;
  size_t at_ = 0;
  bool isProseOpen_ = false;  // the line above is prose
};

}  // namespace

std::vector<BodyBlock> parseBodyBlocks(std::string_view body, LKBindParagraphStyle paragraphStyle) {
  return BlockReader(body, paragraphStyle).read();
}

}  // namespace lk::LKBindDOCXBuilder
