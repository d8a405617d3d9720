#include "LKCore/ParagraphModel/ParagraphPasses.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace lk {

namespace {

// The rows behind `first` and before `last`.
std::span<Paragraph> rowsBetween(std::span<Paragraph> paragraphs, size_t first, size_t last) {
  return paragraphs.subspan(first + 1, last - first - 1);
}

void becomeComment(Paragraph& paragraph) {
  paragraph.inComment = true;
  paragraph.type = {};
  paragraph.inCodeBlock = false;
  paragraph.isUnpairedFence = false;
  paragraph.inTable = false;
  paragraph.tableRole = TableRole::none;
  paragraph.tableID = {};
}

}  // namespace

int countQuoteLevel(std::string_view line) {
  const std::string_view head = line.substr(0, line.find_first_not_of("> \t"));
  return std::max(static_cast<int>(std::ranges::count(head, '>')), 1);
}

void pairCodeBlockFences(std::span<Paragraph> paragraphs) {
  std::optional<size_t> opening;
  for (size_t i = 0; i < paragraphs.size(); ++i) {
    Paragraph& paragraph = paragraphs[i];
    paragraph.inCodeBlock = false;
    paragraph.isUnpairedFence = false;
    const bool isFence = paragraph.type.kind == ParagraphKind::codeBlockFence;
    if (!isFence || paragraph.childrenAreFolded) continue;
    if (!opening) {
      opening = i;
      continue;
    }
    for (Paragraph& code : rowsBetween(paragraphs, *opening, i)) {
      code.inCodeBlock = true;
      code.type = {};
    }
    opening.reset();
  }
  if (opening) paragraphs[*opening].isUnpairedFence = true;
}

void pairCommentBlocks(std::span<Paragraph> paragraphs) {
  for (Paragraph& paragraph : paragraphs) paragraph.inComment = false;
  for (size_t i = 0; i < paragraphs.size(); ++i) {
    if (paragraphs[i].type.kind != ParagraphKind::htmlCommentOpen) continue;
    size_t close = i + 1;
    while (close < paragraphs.size() &&
           paragraphs[close].type.kind != ParagraphKind::htmlCommentClose) {
      ++close;
    }
    if (close == paragraphs.size()) return;  // nor is there one behind any later opening line
    for (Paragraph& comment : rowsBetween(paragraphs, i, close)) becomeComment(comment);
    i = close;
  }
}

}  // namespace lk
