#include "LKCore/Bind/CodeFence.h"

#include <algorithm>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

size_t fenceMarks(std::string_view text, char mark) {
  return std::min(text.find_first_not_of(mark), text.size());
}

bool closesFence(std::string_view line, char mark, size_t count) {
  const std::string_view trimmed = text::trimmed(line);
  const size_t marks = fenceMarks(trimmed, mark);
  return marks >= count && marks == trimmed.size();
}

}  // namespace

std::optional<CodeFenceOpening> parseCodeFenceStart(std::string_view line) {
  const std::string_view trimmed = text::trimmed(line);
  const size_t count = fenceMarks(trimmed, '`');
  const std::string_view rest = text::trimmed(trimmed.substr(count));
  if (count < 3 || rest.find('`') != std::string_view::npos) return std::nullopt;
  CodeFenceOpening opening{count, std::nullopt};
  if (!rest.empty()) opening.language = std::string(rest);
  return opening;
}

bool isCodeFenceClose(std::string_view line, const CodeFenceOpening& opening) {
  return closesFence(line, '`', opening.backtickCount);
}

CodeFenceWalk::Line CodeFenceWalk::take(std::string_view line) {
  if (mark_ != 0) {
    if (!closesFence(line, mark_, count_)) return Line::inside;
    mark_ = 0;
    return Line::closing;
  }
  const std::string_view trimmed = text::trimmed(line);
  if (const auto opening = parseCodeFenceStart(trimmed)) {
    mark_ = '`';
    count_ = opening->backtickCount;
  } else if (trimmed.starts_with("~~~")) {
    mark_ = '~';
    count_ = fenceMarks(trimmed, '~');
  }
  return mark_ != 0 ? Line::opening : Line::outside;
}

std::optional<std::string> CodeFenceWalk::closingLine() const {
  if (mark_ == 0) return std::nullopt;
  return std::string(count_, mark_);
}

}  // namespace lk
